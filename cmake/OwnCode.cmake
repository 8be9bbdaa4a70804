# talvo_own_code(target): the flags of talvo's own sources. All are private, so that no user of the library inherits them.
function(talvo_own_code target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    # Contraction would fuse a * b + c where the target can, and change the last bits.
    target_compile_options(${target} PRIVATE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    if(TALVO_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()
