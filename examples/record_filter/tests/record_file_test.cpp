#include "record_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

namespace {

using record::read_record;
using record::Record;
using record::RecordError;

/// The record in a file with this text.
Record read_text(std::string const& text) {
  const std::string file = testing::TempDir() + "record_" + std::to_string(getpid()) + ".txt";
  std::ofstream(file, std::ios::binary) << text;
  struct Remover {
    std::string const& file;
    ~Remover() { std::remove(file.c_str()); }
  } const remover{file};
  return read_record(file);
}

/// The message with which this text is refused, without the file's name and folder; empty when it is read.
std::string refusal(std::string const& text) {
  try {
    read_text(text);
  } catch (RecordError const& error) {
    const std::string message = error.what();
    EXPECT_EQ(message.find(testing::TempDir()), 0u) << message;
    return message.substr(message.find(".txt:") + 5);
  }
  return "";
}

TEST(RecordFile, HasItsStepAndSamplesInTheirOrder) {
  const Record record = read_text("dt 0.25\n1 2\n3\n");
  EXPECT_EQ(record.step, 0.25);
  EXPECT_EQ(record.samples, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(record.duration(), 0.5);
}

TEST(RecordFile, MayHaveCommentsBlankLinesAndCarriageReturns) {
  const Record record = read_text("# dt 9\r\n\r\n \tdt\t0.25 # s\r\n# 7 8\r\n1#2\r\n\r\n  3 \r\n");
  EXPECT_EQ(record.step, 0.25);
  EXPECT_EQ(record.samples, (std::vector<double>{1, 3}));
}

TEST(RecordFile, MayEndWithoutANewLine) { EXPECT_EQ(read_text("dt 1\n1 2").samples, (std::vector<double>{1, 2})); }

TEST(RecordFile, TakesNumbersInEveryUsualForm) {
  EXPECT_EQ(read_text("dt +1e-2\n+1.5 -.5 2. 1e3 -2E-1\n").samples, (std::vector<double>{1.5, -0.5, 2, 1000, -0.2}));
}

TEST(RecordFile, HasALongLineOfSamples) {
  std::string text = "dt 1\n";
  for (int i = 0; i < 10000; ++i) text += std::to_string(i) + " ";
  const Record record = read_text(text);
  ASSERT_EQ(record.samples.size(), 10000u);
  EXPECT_EQ(record.samples.back(), 9999);
}

struct BadText {
  const char* name;
  const char* text;
  const char* message;
};

void PrintTo(BadText const& bad, std::ostream* out) { *out << bad.name; }

class BadRecordFile : public testing::TestWithParam<BadText> {};

TEST_P(BadRecordFile, IsRefusedInOneLine) { EXPECT_EQ(refusal(GetParam().text), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(
    TimeStep, BadRecordFile,
    testing::Values(BadText{"empty_file", "", " has no time step such as 'dt 0.01'"},
                    BadText{"comments_only", "# dt 0.01\n\n", " has no time step such as 'dt 0.01'"},
                    BadText{"samples_only", "# none\n1 2\n", "2: a time step such as 'dt 0.01' has to come first: '1'"},
                    BadText{"no_number", "dt # 0.01\n1\n", "1: the time step is missing after 'dt'"},
                    BadText{"word", "dt fast\n1\n", "1: the time step is not a number: 'fast'"},
                    BadText{"zero", "dt 0\n1\n", "1: the time step is not positive: '0'"},
                    BadText{"negative", "\ndt -0.01\n1\n", "2: the time step is not positive: '-0.01'"},
                    BadText{"infinite", "dt inf\n1\n", "1: the time step is not finite: 'inf'"},
                    BadText{"more_on_the_line", "dt 0.01 s\n1\n", "1: more on the line than the time step: 's'"}),
    [](auto const& bad) { return std::string(bad.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Samples, BadRecordFile,
    testing::Values(BadText{"none", "dt 1\n# 5\n", " has no samples"},
                    BadText{"word", "dt 1\n1 2\n\n3 four\n", "4: a sample is not a number: 'four'"},
                    BadText{"unit", "dt 1\n1 2g\n", "2: a sample is not a number: '2g'"},
                    BadText{"comma", "dt 1\n1,2\n", "2: a sample is not a number: '1,2'"},
                    BadText{"two_signs", "dt 1\n+-1\n", "2: a sample is not a number: '+-1'"},
                    BadText{"sign_only", "dt 1\n+\n", "2: a sample is not a number: '+'"},
                    BadText{"not_a_number", "dt 1\n1 nan\n", "2: a sample is not finite: 'nan'"},
                    BadText{"infinite", "dt 1\n-inf\n", "2: a sample is not finite: '-inf'"},
                    BadText{"too_large", "dt 1\n1e999\n", "2: a sample is out of range: '1e999'"},
                    BadText{"second_time_step", "dt 1\n1\ndt 2\n", "3: a sample is not a number: 'dt'"},
                    BadText{"unprintable", "dt 1\n7\xff\n", "2: a sample is not a number: '7?'"},
                    BadText{"long_word", "dt 1\n123456789a123456789b123456789c123\n",
                            "2: a sample is not a number: '123456789a123456789b123456789c...'"}),
    [](auto const& bad) { return std::string(bad.param.name); });

TEST(RecordFile, ThatIsNotThereOrAFolderIsNamed) {
  const auto message = [](std::string const& file) -> std::string {
    try {
      read_record(file);
    } catch (RecordError const& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(message("no_such.txt"), "no_such.txt: cannot be opened: No such file or directory");
  EXPECT_EQ(message("."), ".: is a directory");
}

}  // namespace
