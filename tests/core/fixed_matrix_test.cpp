#include <talvo/core/fixed_matrix.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <type_traits>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::core::BaseException;
using talvo::core::error_in_talvo_core;
using talvo::core::FixedMatrix;
using talvo::test::equal_bits;
using talvo::test::Random;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::Gt;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Property;
using ::testing::StrEq;
using ::testing::Throws;
using ::testing::ThrowsMessage;

auto refuses_row(std::int64_t index, std::size_t rows) {
  return ThrowsMessage<error_in_talvo_core>(
      StrEq("Index " + std::to_string(index) + " is invalid for FixedMatrix with " + std::to_string(rows) + " rows!"));
}

// ---------------------------------------------------------------- every size of the library

template <class Size>
class SquareFixedMatrix : public ::testing::Test {};

template <std::size_t N>
using Size = std::integral_constant<std::size_t, N>;
using AllSizes = ::testing::Types<Size<1>, Size<2>, Size<3>>;

struct SizeName {
  template <class S>
  static std::string GetName(int) {
    return "N" + std::to_string(S::value);
  }
};
TYPED_TEST_SUITE(SquareFixedMatrix, AllSizes, SizeName);

TYPED_TEST(SquareFixedMatrix, IsZeroWhenDefaultBuilt) {
  constexpr auto kN = static_cast<std::int64_t>(TypeParam::value);
  const FixedMatrix<double, TypeParam::value, TypeParam::value> m;
  for (std::int64_t r = 0; r < kN; ++r) {
    for (std::int64_t c = 0; c < kN; ++c) EXPECT_TRUE(equal_bits(m(r, c), 0.0)) << r << ", " << c;
  }
}

TYPED_TEST(SquareFixedMatrix, AcceptsItsOwnRowsOnly) {
  constexpr auto kN = static_cast<std::int64_t>(TypeParam::value);
  const FixedMatrix<double, TypeParam::value, TypeParam::value> m;
  for (std::int64_t index = 0; index < kN; ++index) EXPECT_NO_THROW(m.ensure_valid_index(index)) << index;
  // Beside the neighbours: indices that a 32-bit comparison would take for a row.
  for (std::int64_t index : {std::int64_t{-1}, kN, kN + 1, -kN, std::int64_t{1} << 32, -(std::int64_t{1} << 32),
                             std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_THAT([&] { m.ensure_valid_index(index); }, refuses_row(index, TypeParam::value));
  }
}

TYPED_TEST(SquareFixedMatrix, ChecksTheRowOfEveryAccess) {
  constexpr auto kN = static_cast<std::int64_t>(TypeParam::value);
  FixedMatrix<double, TypeParam::value, TypeParam::value> m;
  auto const& read_only = m;
  for (std::int64_t row : {std::int64_t{-1}, kN}) {
    EXPECT_THAT([&] { m(row, 0) = 1.0; }, refuses_row(row, TypeParam::value));
    EXPECT_THAT([&] { (void)read_only(row, 0); }, refuses_row(row, TypeParam::value));
  }
  EXPECT_EQ(m, (FixedMatrix<double, TypeParam::value, TypeParam::value>()));
}

TYPED_TEST(SquareFixedMatrix, KeepsWhatIsWrittenBitForBit) {
  constexpr auto kN = static_cast<std::int64_t>(TypeParam::value);
  Random random(TypeParam::value);
  for (int i = 0; i < 100; ++i) {
    double written[3][3];
    FixedMatrix<double, TypeParam::value, TypeParam::value> m;
    for (std::int64_t r = 0; r < kN; ++r) {
      for (std::int64_t c = 0; c < kN; ++c) m(r, c) = written[r][c] = random.any_double();
    }
    auto const copy = m;
    for (std::int64_t r = 0; r < kN; ++r) {
      for (std::int64_t c = 0; c < kN; ++c) {
        SCOPED_TRACE(::testing::Message() << "seed " << kN << ", case " << i << ", entry " << r << ", " << c);
        EXPECT_TRUE(equal_bits(m(r, c), written[r][c]));
        EXPECT_TRUE(equal_bits(copy(r, c), written[r][c]));
      }
    }
  }
}

// ---------------------------------------------------------------- single cases

TEST(FixedMatrix, OfThreeRowsRefusesThreeAndMinusOne) {
  const FixedMatrix<double, 3, 3> m;
  EXPECT_THAT([&] { m.ensure_valid_index(3); },
              ThrowsMessage<error_in_talvo_core>(StrEq("Index 3 is invalid for FixedMatrix with 3 rows!")));
  EXPECT_THAT([&] { m.ensure_valid_index(-1); },
              ThrowsMessage<error_in_talvo_core>(StrEq("Index -1 is invalid for FixedMatrix with 3 rows!")));
  EXPECT_NO_THROW(m.ensure_valid_index(0));
  EXPECT_NO_THROW(m.ensure_valid_index(1));
  EXPECT_NO_THROW(m.ensure_valid_index(2));
}

TEST(FixedMatrix, EnsureValidIndexIsAPublicConstMember) {
  using M = FixedMatrix<double, 3, 3>;
  static_assert(std::is_same_v<decltype(&M::ensure_valid_index), void (M::*)(std::int64_t) const>);
}

TEST(FixedMatrix, ThatIsNotSquareCountsItsRows) {
  const FixedMatrix<double, 2, 3> wide;
  EXPECT_NO_THROW(wide.ensure_valid_index(1));
  EXPECT_THAT([&] { wide.ensure_valid_index(2); }, refuses_row(2, 2));
  const FixedMatrix<double, 3, 2> tall;
  EXPECT_NO_THROW(tall.ensure_valid_index(2));
  EXPECT_THAT([&] { tall.ensure_valid_index(3); }, refuses_row(3, 3));
}

TEST(FixedMatrix, ThatIsNotSquareKeepsEachEntryApart) {
  FixedMatrix<double, 2, 3> wide;
  FixedMatrix<double, 3, 2> tall;
  for (std::int64_t r = 0; r < 2; ++r) {
    for (std::int64_t c = 0; c < 3; ++c) wide(r, c) = tall(c, r) = static_cast<double>(10 * r + c);
  }
  for (std::int64_t r = 0; r < 2; ++r) {
    for (std::int64_t c = 0; c < 3; ++c) {
      EXPECT_EQ(wide(r, c), static_cast<double>(10 * r + c));
      EXPECT_EQ(tall(c, r), static_cast<double>(10 * r + c));
    }
  }
}

TEST(FixedMatrix, KnowsItsShape) {
  static_assert(FixedMatrix<double, 2, 3>::rows() == 2);
  static_assert(FixedMatrix<double, 2, 3>::columns() == 3);
}

TEST(FixedMatrix, IsCopiedAsAValue) {
  FixedMatrix<double, 2, 2> m;
  m(0, 1) = 1.0;
  const FixedMatrix<double, 2, 2> copy = m;
  m(0, 1) = 2.0;
  EXPECT_EQ(copy(0, 1), 1.0);
}

TEST(FixedMatrix, IsEqualWhenAllEntriesAre) {
  const FixedMatrix<double, 2, 2> m;
  for (std::int64_t r = 0; r < 2; ++r) {
    for (std::int64_t c = 0; c < 2; ++c) {
      FixedMatrix<double, 2, 2> other;
      EXPECT_EQ(m, other);
      other(r, c) = 1.0;
      EXPECT_NE(m, other) << r << ", " << c;
    }
  }
}

// ---------------------------------------------------------------- who is told, and where it happened

TEST(FixedMatrixError, IsCaughtAsAnyOfItsBases) {
  const FixedMatrix<double, 3, 3> m;
  EXPECT_THAT([&] { (void)m(3, 0); },
              ThrowsMessage<BaseException>(StrEq("Index 3 is invalid for FixedMatrix with 3 rows!")));
  EXPECT_THAT([&] { (void)m(3, 0); },
              ThrowsMessage<std::exception>(StrEq("Index 3 is invalid for FixedMatrix with 3 rows!")));
}

// Callers with a name that must not turn up.
void the_caller_checks(FixedMatrix<double, 2, 2> const& m) { m.ensure_valid_index(2); }
void the_caller_reads(FixedMatrix<double, 2, 2> const& m) { (void)m(2, 0); }
void the_caller_writes(FixedMatrix<double, 2, 2>& m) { m(2, 0) = 1.0; }

TEST(FixedMatrixError, IsLocatedInEnsureValidIndex) {
  const auto located = [] {
    return Throws<error_in_talvo_core>(
        AllOf(Property("file_name", &error_in_talvo_core::file_name, EndsWith("talvo/core/fixed_matrix.h")),
              Property("function_name", &error_in_talvo_core::function_name,
                       AllOf(HasSubstr("ensure_valid_index"), Not(HasSubstr("the_caller")))),
              Property("line", &error_in_talvo_core::line, Gt(0U))));
  };
  FixedMatrix<double, 2, 2> m;
  EXPECT_THAT([&] { the_caller_checks(m); }, located());
  EXPECT_THAT([&] { the_caller_reads(m); }, located());
  EXPECT_THAT([&] { the_caller_writes(m); }, located());
}

}  // namespace
