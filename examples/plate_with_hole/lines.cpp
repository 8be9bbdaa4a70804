#include "lines.h"

#include "mesh.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace plate {

Lines::Lines(std::string const& file) : file_(file), stream_(file) {
  if (!stream_) throw MeshError(file, std::string("cannot be opened: ") + std::strerror(errno));
  if (std::filesystem::is_directory(file)) throw MeshError(file, "is a directory");
}

bool Lines::next() {
  if (!std::getline(stream_, text_)) return false;
  ++number_;
  rest_ = text_;
  return true;
}

void Lines::require(std::string const& what) {
  if (!next()) fail("the file ends where " + what + " is expected");
}

std::string_view Lines::field() {
  constexpr const char* blanks = " \t\r";
  rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
  const std::string_view found = rest_.substr(0, rest_.find_first_of(blanks));
  rest_.remove_prefix(found.size());
  return found;
}

long long Lines::count(const char* what, long long least) {
  const auto number = value<long long>(what);
  if (number < least) fail(std::string(what) + " cannot be " + std::to_string(number));
  return number;
}

double Lines::coordinate() {
  const auto number = value<double>("a coordinate");
  if (!std::isfinite(number)) fail("a coordinate is not finite");
  return number;
}

void Lines::word(std::string const& expected) {
  const std::string_view found = field();
  if (found != expected) fail(expected + " expected, not " + quoted(found));
  end();
}

void Lines::end() {
  const std::string_view found = field();
  if (!found.empty()) fail("more on the line than expected: " + quoted(found));
}

void Lines::fail(std::string const& what) const {
  throw MeshError(file_, std::max<std::size_t>(number_, 1), what);  // an empty file has its fault in line 1
}

std::string Lines::quoted(std::string_view text) {
  constexpr std::size_t longest = 30;
  const auto is_unprintable = [](char c) { return c < ' ' || c > '~'; };
  std::string shown(text.substr(0, longest));
  std::replace_if(shown.begin(), shown.end(), is_unprintable, '?');
  return "'" + shown + (text.size() > longest ? "...'" : "'");
}

}  // namespace plate
