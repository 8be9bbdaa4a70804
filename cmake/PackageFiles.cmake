# talvoConfig.cmake and its version file in the build tree. Together with the targets exported there they let a program
# use this build without an installation: talvo_DIR or CMAKE_PREFIX_PATH is the build folder.
include(CMakePackageConfigHelpers)

set(TALVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/talvo)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/talvoConfig.cmake.in ${PROJECT_BINARY_DIR}/talvoConfig.cmake
  INSTALL_DESTINATION ${TALVO_CMAKE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/talvoConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)

# A project that adds talvo as a folder has the target itself, and may have an Eigen that cannot be exported.
if(PROJECT_IS_TOP_LEVEL)
  export(TARGETS talvo NAMESPACE talvo:: FILE ${PROJECT_BINARY_DIR}/talvoTargets.cmake)
endif()
