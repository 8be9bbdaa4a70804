#pragma once

/// @file
/// What the core containers throw. Everything else in the library throws standard exceptions.

#include <talvo/core/source_location.h>
#include <talvo/export.h>

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>

namespace talvo::core {

/// The base of the core library's exceptions: a message, and what() that gives it.
class TALVO_EXPORT BaseException : public std::exception {
 public:
  explicit BaseException(std::string const& message);
  BaseException(BaseException const&) noexcept = default;
  BaseException& operator=(BaseException const&) noexcept = default;
  ~BaseException() override;

  const char* what() const noexcept override;

 private:
  // Holds the message because copying it cannot throw: its string is shared.
  std::runtime_error message_;
};

/// A check of a core container failed.
///
/// Besides the message it tells where the check stands: in the container's header, never in the code that called it.
class TALVO_EXPORT error_in_talvo_core : public BaseException {
 public:
  /// @param where  the place of the check that failed.
  error_in_talvo_core(std::string const& message, source_location where)
      : error_in_talvo_core(message, where.file_name(), where.function_name(), where.line()) {}

  error_in_talvo_core(error_in_talvo_core const&) noexcept = default;
  error_in_talvo_core& operator=(error_in_talvo_core const&) noexcept = default;
  ~error_in_talvo_core() override;

  /// The header that holds the failed check.
  const char* file_name() const noexcept { return file_; }
  /// The function that holds the failed check, spelled as the compiler does.
  const char* function_name() const noexcept { return function_; }
  /// The line of the failed check.
  std::uint_least32_t line() const noexcept { return line_; }

 private:
  // A source_location differs between compilers, so that its parts are kept and handed on instead: a program and the
  // library may come from different ones.
  error_in_talvo_core(std::string const& message, const char* file, const char* function, std::uint_least32_t line);

  const char* file_;
  const char* function_;
  std::uint_least32_t line_;
};

/// The texts of the containers' messages, one function a message.
namespace message {

/// "It is not sensible to create a FixedVector<3, ...> from a list of size 2!"
TALVO_EXPORT std::string invalid_size(std::int64_t expected, std::string_view what, std::int64_t size);
/// "Division by zero in FixedVector operator/="
TALVO_EXPORT std::string division_by_zero();
/// "Index 3 is invalid for FixedMatrix with 3 rows!"
TALVO_EXPORT std::string invalid_row(std::int64_t index, std::int64_t rows);
/// "Index 5 is invalid for FixedVector of size 3!"
TALVO_EXPORT std::string invalid_element(std::string_view name, std::uint64_t index, std::uint64_t size);

}  // namespace message
}  // namespace talvo::core
