#pragma once

/// @file
/// Reading a text file by lines and fields.

#include <charconv>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <type_traits>

namespace plate {

/// Goes through a text file line by line and through a line field by field, and knows where it is: whatever is not as
/// it should be becomes a MeshError with the file and line.
class Lines {
 public:
  explicit Lines(std::string const& file);

  /// The next line, or false at the end of the file.
  bool next();
  /// The next line, which has to be there.
  void require(std::string const& what);
  /// The number of the line, from 1.
  std::size_t number() const { return number_; }

  /// The next field of the line, empty at its end.
  std::string_view field();
  /// The next field as a whole number that is not below `least`.
  long long count(const char* what, long long least = 0);
  /// The next field as a whole number of any sign.
  long long whole(const char* what) { return value<long long>(what); }
  /// The next field as a finite number.
  double coordinate();
  /// The line has to be this word.
  void word(std::string const& expected);
  /// The line has to end here.
  void end();

  /// Throws MeshError with the place of the line.
  [[noreturn]] void fail(std::string const& what) const;
  /// A field as a message can show it, whatever bytes it holds.
  static std::string quoted(std::string_view text);

 private:
  template <class T>
  T value(const char* what) {
    const std::string_view found = field();
    if (found.empty()) fail(std::string(what) + " is missing");
    T result{};
    const auto [end, error] = std::from_chars(found.data(), found.data() + found.size(), result);
    if (error == std::errc::result_out_of_range) fail(std::string(what) + " is out of range: " + quoted(found));
    if (error != std::errc() || end != found.data() + found.size()) {
      fail(std::string(what) + " is not a " + (std::is_integral_v<T> ? "whole " : "") + "number: " + quoted(found));
    }
    return result;
  }

  std::string file_;
  std::ifstream stream_;
  std::string text_;
  std::string_view rest_;  // what is left of text_
  std::size_t number_ = 0;
};

}  // namespace plate
