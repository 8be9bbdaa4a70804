# Installs BUILD_DIR and moves the result to PREFIX, so that everything that uses it also shows that it can be moved.
file(REMOVE_RECURSE ${PREFIX} ${PREFIX}-before-the-move)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${CONFIG} --prefix ${PREFIX}-before-the-move
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${PREFIX}-before-the-move ${PREFIX})
