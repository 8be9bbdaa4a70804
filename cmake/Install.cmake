# The installed library: for CMake, for pkg-config, and movable as a whole, since no file of it names its own place.
install(TARGETS talvo EXPORT talvoTargets FILE_SET HEADERS)
install(EXPORT talvoTargets NAMESPACE talvo:: DESTINATION ${TALVO_CMAKE_DIR})
install(FILES ${PROJECT_BINARY_DIR}/talvoConfig.cmake ${PROJECT_BINARY_DIR}/talvoConfigVersion.cmake
  DESTINATION ${TALVO_CMAKE_DIR})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Folders below the prefix, unless the user gave absolute ones, which win.
set(pc_includedir "\${prefix}")
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
# From the .pc file up to the prefix.
file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/talvo.pc.in ${PROJECT_BINARY_DIR}/talvo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/talvo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
