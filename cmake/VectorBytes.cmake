# Sets TALVO_LIBRARY_VECTOR_BYTES: the widest vectors (16, 32 or 64 bytes) that the flags of this build allow. The headers
# compare it with the program that includes them.
include(CheckCXXSourceCompiles)

function(talvo_measure_vector_bytes result)
  # The options come as a target, and in this build's configuration, so that generator expressions in them count too.
  get_directory_property(options COMPILE_OPTIONS)
  add_library(talvo_directory_options INTERFACE IMPORTED)
  target_compile_options(talvo_directory_options INTERFACE ${options})
  set(CMAKE_REQUIRED_LIBRARIES talvo_directory_options)
  set(CMAKE_TRY_COMPILE_CONFIGURATION ${CMAKE_BUILD_TYPE})
  set(CMAKE_REQUIRED_QUIET ON)
  # The answers belong to these flags: another set asks again.
  string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
  string(MD5 flags "${CMAKE_CXX_COMPILER} ${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${config}} ${config} ${options}")
  check_cxx_source_compiles("#ifndef __AVX512F__\n#error no\n#endif\nint main() {}" TALVO_HAS_AVX512F_${flags})
  check_cxx_source_compiles("#ifndef __AVX__\n#error no\n#endif\nint main() {}" TALVO_HAS_AVX_${flags})
  set(bytes 16)
  if(TALVO_HAS_AVX_${flags})
    set(bytes 32)
  endif()
  if(TALVO_HAS_AVX512F_${flags})
    set(bytes 64)
  endif()
  set(${result} ${bytes} PARENT_SCOPE)
endfunction()

talvo_measure_vector_bytes(TALVO_LIBRARY_VECTOR_BYTES)
