#pragma once

/// @file
/// std::source_location, also for compilers that do not have it yet (clang 14 and 15 with libstdc++).

#include <talvo/export.h>

#include <cstdint>
#include <source_location>
#include <version>

namespace talvo::core {

#if defined(__cpp_lib_source_location)

using source_location = std::source_location;

#else

/// Stands in for std::source_location, with the same members.
class source_location {
 public:
#if defined(__clang__) || defined(__GNUC__)
  static constexpr source_location current(const char* file = __builtin_FILE(),
                                           const char* function = __builtin_FUNCTION(),
                                           std::uint_least32_t line = __builtin_LINE()) noexcept {
    source_location here;
    here.file_ = file;
    here.function_ = function;
    here.line_ = line;
    return here;
  }
#else
  static constexpr source_location current() noexcept { return {}; }
#endif
  constexpr const char* file_name() const noexcept { return file_; }
  constexpr const char* function_name() const noexcept { return function_; }
  constexpr std::uint_least32_t line() const noexcept { return line_; }
  constexpr std::uint_least32_t column() const noexcept { return 0; }

 private:
  const char* file_ = "";
  const char* function_ = "";
  std::uint_least32_t line_ = 0;
};

#endif

}  // namespace talvo::core
