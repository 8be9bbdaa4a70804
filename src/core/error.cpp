#include <fmt/format.h>
#include <talvo/core/error.h>

namespace talvo::core {

// NOLINTNEXTLINE(bugprone-throw-keyword-missing): the member only holds the text
BaseException::BaseException(std::string const& message) : message_(message) {}
BaseException::~BaseException() = default;
const char* BaseException::what() const noexcept { return message_.what(); }

error_in_talvo_core::error_in_talvo_core(std::string const& message, const char* file, const char* function,
                                         std::uint_least32_t line)
    : BaseException(message), file_(file), function_(function), line_(line) {}
error_in_talvo_core::~error_in_talvo_core() = default;

namespace message {

std::string invalid_size(std::int64_t expected, std::string_view what, std::int64_t size) {
  return fmt::vformat("It is not sensible to create a FixedVector<{}, ...> {} of size {}!",
                      fmt::make_format_args(expected, what, size));
}

std::string division_by_zero() { return "Division by zero in FixedVector operator/="; }

std::string invalid_row(std::int64_t index, std::int64_t rows) {
  return fmt::vformat("Index {} is invalid for FixedMatrix with {} rows!", fmt::make_format_args(index, rows));
}

std::string invalid_element(std::string_view name, std::uint64_t index, std::uint64_t size) {
  return fmt::vformat("Index {} is invalid for {} of size {}!", fmt::make_format_args(index, name, size));
}

}  // namespace message
}  // namespace talvo::core
