#include "record_file.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace record {
namespace {

constexpr const char* blanks = " \t\r";

/// One field of the file, and where it stands.
struct Field {
  std::string const& file;
  std::size_t line;
  std::string_view text;

  [[noreturn]] void fail(std::string const& what) const {
    constexpr std::size_t longest = 30;
    std::string shown(text.substr(0, longest));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    throw RecordError(file, line, what + ": '" + shown + (text.size() > longest ? "...'" : "'"));
  }

  double number(std::string const& what) const {
    // from_chars takes no plus sign, which records often have.
    const bool has_plus = text.starts_with('+') && !text.starts_with("+-");
    const std::string_view digits = text.substr(has_plus ? 1 : 0);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc::result_out_of_range) fail(what + " is out of range");
    if (error != std::errc() || end != digits.data() + digits.size()) fail(what + " is not a number");
    if (!std::isfinite(value)) fail(what + " is not finite");
    return value;
  }
};

/// The fields of a line, without its comment.
std::vector<std::string_view> fields_of(std::string_view line) {
  std::vector<std::string_view> fields;
  line = line.substr(0, line.find('#'));
  for (std::size_t from = 0; (from = line.find_first_not_of(blanks, from)) != std::string_view::npos;) {
    const std::size_t to = std::min(line.find_first_of(blanks, from), line.size());
    fields.push_back(line.substr(from, to - from));
    from = to;
  }
  return fields;
}

/// The time step of a line that has to be `dt` and a positive number.
double time_step(std::string const& file, std::size_t line, std::vector<std::string_view> const& fields) {
  const Field first{file, line, fields[0]};
  if (first.text != "dt") first.fail("a time step such as 'dt 0.01' has to come first");
  if (fields.size() == 1) throw RecordError(file, line, "the time step is missing after 'dt'");
  const Field second{file, line, fields[1]};
  const double step = second.number("the time step");
  if (!(step > 0)) second.fail("the time step is not positive");
  if (fields.size() > 2) Field{file, line, fields[2]}.fail("more on the line than the time step");
  return step;
}

}  // namespace

Record read_record(std::string const& file) {
  std::ifstream stream(file);
  if (!stream) throw RecordError(file, std::string("cannot be opened: ") + std::strerror(errno));
  if (std::filesystem::is_directory(file)) throw RecordError(file, "is a directory");

  Record record{file, 0, {}};
  std::string text;
  for (std::size_t line = 1; std::getline(stream, text); ++line) {
    const std::vector<std::string_view> fields = fields_of(text);
    if (fields.empty()) continue;
    if (record.step == 0) {
      record.step = time_step(file, line, fields);
      continue;
    }
    for (const std::string_view field : fields) record.samples.push_back(Field{file, line, field}.number("a sample"));
  }
  if (stream.bad()) throw RecordError(file, "cannot be read to its end");
  if (record.step == 0) throw RecordError(file, "has no time step such as 'dt 0.01'");
  if (record.samples.empty()) throw RecordError(file, "has no samples");
  return record;
}

}  // namespace record
