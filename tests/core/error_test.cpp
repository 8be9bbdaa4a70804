#include <talvo/core/error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace {

using talvo::core::BaseException;
using talvo::core::error_in_talvo_core;
using talvo::core::source_location;
using ::testing::HasSubstr;
using ::testing::StrEq;
using ::testing::ThrowsMessage;

namespace message = talvo::core::message;

[[noreturn]] void fail_with(std::string const& text) { throw error_in_talvo_core(text, source_location::current()); }

// ---------------------------------------------------------------- the exception

TEST(CoreError, DerivesFromBaseExceptionAndThatFromTheStandardOne) {
  static_assert(std::is_base_of_v<std::exception, BaseException>);
  static_assert(std::is_base_of_v<BaseException, error_in_talvo_core>);
  static_assert(std::is_convertible_v<error_in_talvo_core*, BaseException*>);
  static_assert(std::is_convertible_v<error_in_talvo_core*, std::exception*>);
  static_assert(std::has_virtual_destructor_v<BaseException>);
}

TEST(CoreError, IsBuiltFromAMessageAndAPlace) {
  static_assert(std::is_constructible_v<error_in_talvo_core, std::string const&, source_location>);
  static_assert(!std::is_constructible_v<error_in_talvo_core, std::string const&>);
}

#if defined(__cpp_lib_source_location)
TEST(CoreError, TakesTheStandardSourceLocationWhereThereIsOne) {
  static_assert(std::is_same_v<source_location, std::source_location>);
}
#endif

TEST(CoreError, IsCaughtAsItself) {
  EXPECT_THAT([] { fail_with("a check failed"); }, ThrowsMessage<error_in_talvo_core>(StrEq("a check failed")));
}

TEST(CoreError, IsCaughtAsBaseException) {
  EXPECT_THAT([] { fail_with("a check failed"); }, ThrowsMessage<BaseException>(StrEq("a check failed")));
}

TEST(CoreError, IsCaughtAsStandardException) {
  EXPECT_THAT([] { fail_with("a check failed"); }, ThrowsMessage<std::exception>(StrEq("a check failed")));
}

TEST(CoreError, KeepsItsTypeWhenCaughtAsABase) {
  try {
    fail_with("a check failed");
  } catch (std::exception const& e) {
    EXPECT_EQ(typeid(e), typeid(error_in_talvo_core));
  }
}

// Its base is no standard error class: a handler for those must not swallow a failed core check.
TEST(CoreError, IsNeitherALogicErrorNorARuntimeError) {
  static_assert(!std::is_base_of_v<std::logic_error, error_in_talvo_core>);
  static_assert(!std::is_base_of_v<std::runtime_error, error_in_talvo_core>);
}

struct MessageCase {
  const char* name;
  std::string text;

  friend void PrintTo(MessageCase const& c, std::ostream* out) { *out << c.name; }
};

class CoreErrorMessage : public ::testing::TestWithParam<MessageCase> {};

TEST_P(CoreErrorMessage, ComesBackAsItWasGiven) {
  std::string const& text = GetParam().text;
  const error_in_talvo_core e(text, source_location::current());
  EXPECT_EQ(e.what(), text);
  EXPECT_EQ(BaseException(text).what(), text);
}

// A message is finished text: braces and percent signs in it have no meaning.
INSTANTIATE_TEST_SUITE_P(SpecialTexts, CoreErrorMessage,
                         ::testing::Values(MessageCase{"empty", ""}, MessageCase{"words", "a check failed"},
                                           MessageCase{"braces", "{} {0} {"}, MessageCase{"percent_signs", "%s %n"},
                                           MessageCase{"two_lines", "two\nlines"},
                                           MessageCase{"very_long", std::string(100000, 'x')}),
                         [](auto const& i) { return std::string(i.param.name); });

TEST(CoreError, KeepsItsMessageWhenTheCallersStringChanges) {
  std::string text = "before";
  const error_in_talvo_core e(text, source_location::current());
  text = "after!";
  EXPECT_STREQ(e.what(), "before");
}

TEST(CoreError, TellsThePlaceItWasGiven) {
  const source_location here = source_location::current();
  const error_in_talvo_core e("text", here);
  EXPECT_STREQ(e.file_name(), here.file_name());
  EXPECT_STREQ(e.function_name(), here.function_name());
  EXPECT_EQ(e.line(), here.line());
}

TEST(CoreError, NamesFileFunctionAndLineOfTheThrow) {
  const auto line_before = static_cast<std::uint_least32_t>(__LINE__);
  const error_in_talvo_core e("text", source_location::current());
  EXPECT_STREQ(e.file_name(), __FILE__);
  EXPECT_EQ(e.line(), line_before + 1);
  EXPECT_THAT(e.function_name(), HasSubstr("TestBody"));
}

// ---------------------------------------------------------------- copies

TEST(CoreErrorCopy, CannotThrow) {
  static_assert(std::is_nothrow_copy_constructible_v<error_in_talvo_core>);
  static_assert(std::is_nothrow_copy_assignable_v<error_in_talvo_core>);
  static_assert(std::is_nothrow_copy_constructible_v<BaseException>);
  static_assert(std::is_nothrow_copy_assignable_v<BaseException>);
}

TEST(CoreErrorCopy, OutlivesTheOriginal) {
  auto original = std::make_unique<error_in_talvo_core>("text", source_location::current());
  const std::uint_least32_t line = original->line();
  const error_in_talvo_core copy = *original;
  original.reset();
  EXPECT_STREQ(copy.what(), "text");
  EXPECT_STREQ(copy.file_name(), __FILE__);
  EXPECT_THAT(copy.function_name(), HasSubstr("TestBody"));
  EXPECT_EQ(copy.line(), line);
}

TEST(CoreErrorCopy, IsAssignedMessageAndPlace) {
  const error_in_talvo_core first("first", source_location::current());
  error_in_talvo_core second("second", source_location::current());
  ASSERT_NE(first.line(), second.line());
  second = first;
  EXPECT_STREQ(second.what(), "first");
  EXPECT_EQ(second.line(), first.line());
}

TEST(CoreErrorCopy, IsLeftAloneByAssignmentToItself) {
  error_in_talvo_core e("text", source_location::current());
  error_in_talvo_core const& same = e;
  e = same;
  EXPECT_STREQ(e.what(), "text");
}

TEST(CoreErrorCopy, IsMadeWhenAKeptErrorIsThrown) {
  const error_in_talvo_core kept("text", source_location::current());
  try {
    throw kept;
  } catch (error_in_talvo_core const& thrown) {
    EXPECT_NE(&thrown, &kept);
    EXPECT_STREQ(thrown.what(), "text");
    EXPECT_EQ(thrown.line(), kept.line());
  }
}

TEST(CoreErrorCopy, KeepsTheMessageWhenSlicedToItsBase) {
  const error_in_talvo_core e("text", source_location::current());
  BaseException base("other");
  base = e;
  EXPECT_STREQ(base.what(), "text");
}

TEST(CoreErrorCopy, TravelsInAnExceptionPointer) {
  std::exception_ptr stored;
  try {
    fail_with("text");
  } catch (...) {
    stored = std::current_exception();
  }
  EXPECT_THAT([&] { std::rethrow_exception(stored); }, ThrowsMessage<error_in_talvo_core>(StrEq("text")));
}

// ---------------------------------------------------------------- the texts

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

TEST(CoreMessage, InvalidSizeNamesWantedSizeOriginAndGivenSize) {
  EXPECT_EQ(message::invalid_size(2, "from a list", 3),
            "It is not sensible to create a FixedVector<2, ...> from a list of size 3!");
  EXPECT_EQ(message::invalid_size(3, "from a list", 2),
            "It is not sensible to create a FixedVector<3, ...> from a list of size 2!");
}

TEST(CoreMessage, InvalidSizePrintsSignedNumbersInFull) {
  EXPECT_EQ(message::invalid_size(1, "x", -1), "It is not sensible to create a FixedVector<1, ...> x of size -1!");
  EXPECT_EQ(message::invalid_size(8, "x", kMax),
            "It is not sensible to create a FixedVector<8, ...> x of size 9223372036854775807!");
  EXPECT_EQ(message::invalid_size(8, "x", kMin),
            "It is not sensible to create a FixedVector<8, ...> x of size -9223372036854775808!");
}

TEST(CoreMessage, InvalidSizeTakesTheOriginAsText) {
  EXPECT_EQ(message::invalid_size(1, "", 2), "It is not sensible to create a FixedVector<1, ...>  of size 2!");
  EXPECT_EQ(message::invalid_size(1, "{}", 2), "It is not sensible to create a FixedVector<1, ...> {} of size 2!");
  // A view of the middle of a longer text, with no terminating zero behind it.
  EXPECT_EQ(message::invalid_size(1, std::string_view("from a list").substr(5, 1), 2),
            "It is not sensible to create a FixedVector<1, ...> a of size 2!");
}

TEST(CoreMessage, DivisionByZeroIsFixed) {
  EXPECT_EQ(message::division_by_zero(), "Division by zero in FixedVector operator/=");
}

TEST(CoreMessage, InvalidRowNamesIndexAndRows) {
  EXPECT_EQ(message::invalid_row(3, 3), "Index 3 is invalid for FixedMatrix with 3 rows!");
  EXPECT_EQ(message::invalid_row(-1, 3), "Index -1 is invalid for FixedMatrix with 3 rows!");
  EXPECT_EQ(message::invalid_row(1, 1), "Index 1 is invalid for FixedMatrix with 1 rows!");
  EXPECT_EQ(message::invalid_row(kMin, 2), "Index -9223372036854775808 is invalid for FixedMatrix with 2 rows!");
  EXPECT_EQ(message::invalid_row(kMax, 2), "Index 9223372036854775807 is invalid for FixedMatrix with 2 rows!");
}

TEST(CoreMessage, InvalidElementNamesIndexContainerAndSize) {
  EXPECT_EQ(message::invalid_element("FixedVector", 5, 3), "Index 5 is invalid for FixedVector of size 3!");
  EXPECT_EQ(message::invalid_element("{}", std::numeric_limits<std::uint64_t>::max(), 0),
            "Index 18446744073709551615 is invalid for {} of size 0!");
}

}  // namespace
