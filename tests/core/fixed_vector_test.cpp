#include <talvo/core/fixed_vector.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::core::BaseException;
using talvo::core::error_in_talvo_core;
using talvo::core::FixedVector;
using talvo::core::VectorBackendWrapper;
using talvo::test::equal_bits;
using talvo::test::Random;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::Gt;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Property;
using ::testing::StrEq;
using ::testing::Throws;
using ::testing::ThrowsMessage;

constexpr std::string_view kDivisionByZero = "Division by zero in FixedVector operator/=";
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

template <std::size_t N>
FixedVector<double, N> any_vector(Random& random) {
  FixedVector<double, N> v;
  for (double& element : v) element = random.any_double();
  return v;
}

template <std::size_t N>
void expect_equal_bits(FixedVector<double, N> const& actual, FixedVector<double, N> const& expected) {
  for (std::uint64_t i = 0; i < N; ++i) EXPECT_TRUE(equal_bits(actual[i], expected[i])) << "element " << i;
}

template <std::size_t N>
void build_from(std::vector<double> const& list) {
  (void)FixedVector<double, N>(list);
}

// ---------------------------------------------------------------- every size of the library

template <class Size>
class FixedVectorOf : public ::testing::Test {};

template <std::size_t N>
using Size = std::integral_constant<std::size_t, N>;
using AllSizes = ::testing::Types<Size<1>, Size<2>, Size<3>, Size<4>, Size<5>, Size<6>, Size<7>, Size<8>>;

struct SizeName {
  template <class S>
  static std::string GetName(int) {
    return "N" + std::to_string(S::value);
  }
};
TYPED_TEST_SUITE(FixedVectorOf, AllSizes, SizeName);

TYPED_TEST(FixedVectorOf, IsPolymorphicOverTheNamedBackend) {
  constexpr std::size_t kN = TypeParam::value;
  using Vector = FixedVector<double, kN>;
  using Base = VectorBackendWrapper<std::array<double, kN>, "FixedVector", error_in_talvo_core, std::uint64_t>;
  static_assert(std::is_polymorphic_v<Vector>);
  static_assert(std::has_virtual_destructor_v<Vector>);
  static_assert(std::is_base_of_v<Base, Vector>);
  static_assert(std::is_convertible_v<Vector*, Base*>);
  static_assert(std::is_same_v<typename Vector::size_type, std::uint64_t>);
  static_assert(std::is_same_v<typename Vector::value_type, double>);
  // The elements themselves and the pointer to the virtual table, nothing else.
  EXPECT_EQ(sizeof(Vector), sizeof(void*) + kN * sizeof(double));
}

TYPED_TEST(FixedVectorOf, IsDestroyedThroughItsBase) {
  constexpr std::size_t kN = TypeParam::value;
  using Base = VectorBackendWrapper<std::array<double, kN>, "FixedVector", error_in_talvo_core, std::uint64_t>;
  const std::unique_ptr<Base> base = std::make_unique<FixedVector<double, kN>>();
  EXPECT_NE((dynamic_cast<FixedVector<double, kN>*>(base.get())), nullptr);
}

TYPED_TEST(FixedVectorOf, IsZeroWhenDefaultBuilt) {
  const FixedVector<double, TypeParam::value> v;
  EXPECT_EQ(v.size(), TypeParam::value);
  for (double element : v) EXPECT_TRUE(equal_bits(element, 0.0));
}

TYPED_TEST(FixedVectorOf, CopiesAListBitForBit) {
  Random random(TypeParam::value);
  for (int i = 0; i < 100; ++i) {
    std::vector<double> list(TypeParam::value);
    for (double& element : list) element = random.any_double();
    const FixedVector<double, TypeParam::value> v(list);
    for (std::size_t k = 0; k < list.size(); ++k) {
      EXPECT_TRUE(equal_bits(v[k], list[k])) << "seed " << TypeParam::value << ", case " << i << ", element " << k;
    }
  }
}

TYPED_TEST(FixedVectorOf, RefusesAListOfAnyOtherSize) {
  constexpr std::size_t kN = TypeParam::value;
  for (std::size_t size = 0; size <= 10; ++size) {
    const auto build = [&] { build_from<kN>(std::vector<double>(size)); };
    if (size == kN) {
      EXPECT_NO_THROW(build());
    } else {
      EXPECT_THAT(build, ThrowsMessage<error_in_talvo_core>(StrEq("It is not sensible to create a FixedVector<" +
                                                                  std::to_string(kN) + ", ...> from a list of size " +
                                                                  std::to_string(size) + "!")));
    }
  }
}

TYPED_TEST(FixedVectorOf, EnsureValidSizeAcceptsItsOwnSizeOnly) {
  constexpr auto kN = static_cast<std::int64_t>(TypeParam::value);
  using Vector = FixedVector<double, TypeParam::value>;
  EXPECT_NO_THROW(Vector::ensure_valid_size(kN, "from a list"));
  // Beside the neighbours: sizes that a 32-bit or an unsigned comparison would take for N.
  for (std::int64_t size : {kN - 1, kN + 1, -kN, kN + (std::int64_t{1} << 32), kN - (std::int64_t{1} << 32),
                            std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_THAT(
        [size] { Vector::ensure_valid_size(size, "of mine"); },
        ThrowsMessage<error_in_talvo_core>(StrEq("It is not sensible to create a FixedVector<" + std::to_string(kN) +
                                                 ", ...> of mine of size " + std::to_string(size) + "!")));
  }
}

TYPED_TEST(FixedVectorOf, DividesEachElementBitForBit) {
  constexpr std::size_t kN = TypeParam::value;
  Random random(100 + kN);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << 100 + kN << ", case " << i);
    const FixedVector<double, kN> v = any_vector<kN>(random);
    double d = random.any_double();
    while (d == 0.0) d = random.any_double();
    FixedVector<double, kN> in_place = v;
    in_place /= d;
    FixedVector<double, kN> expected;
    for (std::uint64_t k = 0; k < kN; ++k) expected[k] = v[k] / d;
    expect_equal_bits(in_place, expected);
    expect_equal_bits(v / d, expected);
  }
}

TYPED_TEST(FixedVectorOf, AddsSubtractsAndScalesEachElementBitForBit) {
  constexpr std::size_t kN = TypeParam::value;
  Random random(200 + kN);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << 200 + kN << ", case " << i);
    const FixedVector<double, kN> a = any_vector<kN>(random);
    const FixedVector<double, kN> b = any_vector<kN>(random);
    const double k = random.any_double();
    FixedVector<double, kN> sum;
    FixedVector<double, kN> difference;
    FixedVector<double, kN> product;
    for (std::uint64_t e = 0; e < kN; ++e) {
      sum[e] = a[e] + b[e];
      difference[e] = a[e] - b[e];
      product[e] = a[e] * k;
    }
    expect_equal_bits(a + b, sum);
    expect_equal_bits(a - b, difference);
    expect_equal_bits(a * k, product);
    expect_equal_bits(k * a, product);
  }
}

TYPED_TEST(FixedVectorOf, IsUnchangedByAFailedDivision) {
  constexpr std::size_t kN = TypeParam::value;
  Random random(300 + kN);
  for (double zero : {0.0, -0.0}) {
    FixedVector<double, kN> v = any_vector<kN>(random);
    const FixedVector<double, kN> before = v;
    EXPECT_THAT([&] { v /= zero; }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
    expect_equal_bits(v, before);
  }
}

// ---------------------------------------------------------------- lists

TEST(FixedVector, OfTwoRefusesAListOfThree) {
  const std::vector<double> list{1.0, 2.0, 3.0};
  EXPECT_THAT([&] { build_from<2>(list); },
              ThrowsMessage<error_in_talvo_core>(
                  StrEq("It is not sensible to create a FixedVector<2, ...> from a list of size 3!")));
}

TEST(FixedVector, OfThreeRefusesAListOfTwo) {
  const std::vector<double> list{1.0, 2.0};
  EXPECT_THAT([&] { build_from<3>(list); },
              ThrowsMessage<error_in_talvo_core>(
                  StrEq("It is not sensible to create a FixedVector<3, ...> from a list of size 2!")));
}

TEST(FixedVector, RefusesAnEmptyList) {
  const std::vector<double> list;
  EXPECT_THAT([&] { build_from<1>(list); },
              ThrowsMessage<error_in_talvo_core>(
                  StrEq("It is not sensible to create a FixedVector<1, ...> from a list of size 0!")));
}

TEST(FixedVector, AFailedConstructionLeavesTheListAsItWas) {
  const std::vector<double> list{1.0, 2.0, 3.0};
  EXPECT_THROW(build_from<2>(list), error_in_talvo_core);
  EXPECT_THAT(list, ElementsAre(1.0, 2.0, 3.0));
}

TEST(FixedVector, DoesNotFollowTheListItWasBuiltFrom) {
  std::vector<double> list{1.0, 2.0};
  const FixedVector<double, 2> v(list);
  list[0] = 9.0;
  EXPECT_THAT(v, ElementsAre(1.0, 2.0));
}

TEST(FixedVector, EnsureValidSizeIsAPublicStaticMember) {
  static_assert(
      std::is_same_v<decltype(&FixedVector<double, 3>::ensure_valid_size), void (*)(std::int64_t, std::string_view)>);
}

// ---------------------------------------------------------------- elements

TEST(FixedVector, ReadsAndWritesElements) {
  FixedVector<double, 3> v(std::vector<double>{1.0, 2.0, 3.0});
  v[1] = 20.0;
  FixedVector<double, 3> const& read_only = v;
  EXPECT_EQ(read_only[0], 1.0);
  EXPECT_EQ(read_only[1], 20.0);
  EXPECT_EQ(read_only[2], 3.0);
}

TEST(FixedVector, IteratesInOrderAndInPlace) {
  FixedVector<double, 3> v(std::vector<double>{1.0, 2.0, 3.0});
  EXPECT_EQ(v.end() - v.begin(), 3);
  for (double& element : v) element *= 2.0;
  FixedVector<double, 3> const& read_only = v;
  EXPECT_EQ((std::vector<double>(read_only.begin(), read_only.end())), (std::vector<double>{2.0, 4.0, 6.0}));
}

TEST(FixedVector, CheckedAccessNamesTheFixedVector) {
  FixedVector<double, 3> v;
  EXPECT_NO_THROW((void)v.at(2));
  EXPECT_THAT([&] { (void)v.at(3); },
              ThrowsMessage<error_in_talvo_core>(StrEq("Index 3 is invalid for FixedVector of size 3!")));
}

TEST(FixedVector, IsCopiedAsAValue) {
  FixedVector<double, 2> v(std::vector<double>{1.0, 2.0});
  FixedVector<double, 2> copy = v;
  v[0] = 9.0;
  EXPECT_THAT(copy, ElementsAre(1.0, 2.0));
  copy = v;
  v[0] = 5.0;
  EXPECT_THAT(copy, ElementsAre(9.0, 2.0));
}

TEST(FixedVector, HoldsOtherTypesThanDouble) {
  FixedVector<int, 2> v(std::vector<int>{7, -9});
  EXPECT_THAT(v / 2, ElementsAre(3, -4));
  EXPECT_THAT([&] { v /= 0; }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
}

TEST(FixedVector, IsEqualWhenAllElementsAre) {
  const FixedVector<double, 2> v(std::vector<double>{1.0, 0.0});
  EXPECT_EQ(v, (FixedVector<double, 2>(std::vector<double>{1.0, -0.0})));
  EXPECT_NE(v, (FixedVector<double, 2>(std::vector<double>{2.0, 0.0})));
  EXPECT_NE(v, (FixedVector<double, 2>(std::vector<double>{1.0, 2.0})));
  const FixedVector<double, 2> nan(std::vector<double>{kNan, 0.0});
  EXPECT_NE(nan, nan);
}

// ---------------------------------------------------------------- arithmetic

TEST(FixedVector, CompoundOperatorsChangeAndReturnTheVector) {
  const FixedVector<double, 2> other(std::vector<double>{10.0, 20.0});
  FixedVector<double, 2> v(std::vector<double>{1.0, 2.0});
  EXPECT_EQ(&(v += other), &v);
  EXPECT_THAT(v, ElementsAre(11.0, 22.0));
  EXPECT_EQ(&(v -= other), &v);
  EXPECT_THAT(v, ElementsAre(1.0, 2.0));
  EXPECT_EQ(&(v *= 3.0), &v);
  EXPECT_THAT(v, ElementsAre(3.0, 6.0));
  EXPECT_EQ(&(v /= 2.0), &v);
  EXPECT_THAT(v, ElementsAre(1.5, 3.0));
}

TEST(FixedVector, ByValueOperatorsLeaveTheirArgumentsAlone) {
  const FixedVector<double, 2> a(std::vector<double>{1.0, 2.0});
  const FixedVector<double, 2> b(std::vector<double>{10.0, 20.0});
  EXPECT_THAT(a + b, ElementsAre(11.0, 22.0));
  EXPECT_THAT(b - a, ElementsAre(9.0, 18.0));
  EXPECT_THAT(a * 3.0, ElementsAre(3.0, 6.0));
  EXPECT_THAT(3.0 * a, ElementsAre(3.0, 6.0));
  EXPECT_THAT(a / 2.0, ElementsAre(0.5, 1.0));
  EXPECT_THAT(a, ElementsAre(1.0, 2.0));
  EXPECT_THAT(b, ElementsAre(10.0, 20.0));
}

TEST(FixedVector, MayBeAddedToAndSubtractedFromItself) {
  FixedVector<double, 2> v(std::vector<double>{1.0, 2.0});
  FixedVector<double, 2> const& same = v;
  v += same;
  EXPECT_THAT(v, ElementsAre(2.0, 4.0));
  v -= same;
  EXPECT_THAT(v, ElementsAre(0.0, 0.0));
}

TEST(FixedVector, DividedByItsOwnElementUsesTheOldValueThroughout) {
  for (std::uint64_t i = 0; i < 3; ++i) {
    const FixedVector<double, 3> before(std::vector<double>{2.0, 4.0, 8.0});
    FixedVector<double, 3> v = before;
    v /= v[i];
    for (std::uint64_t k = 0; k < 3; ++k) EXPECT_EQ(v[k], before[k] / before[i]) << "element " << k << " by " << i;
  }
}

TEST(FixedVector, ScaledByItsOwnElementUsesTheOldValueThroughout) {
  FixedVector<double, 3> v(std::vector<double>{2.0, 4.0, 8.0});
  v *= v[0];
  EXPECT_THAT(v, ElementsAre(4.0, 8.0, 16.0));
}

// ---------------------------------------------------------------- division by zero

TEST(FixedVectorDivision, ByZeroOfEitherSignThrows) {
  FixedVector<double, 2> v(std::vector<double>{1.0, 2.0});
  EXPECT_THAT([&] { v /= 0.0; }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
  EXPECT_THAT([&] { v /= -0.0; }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
}

TEST(FixedVectorDivision, ByValueByZeroThrowsTheSameAndLeavesTheVector) {
  const FixedVector<double, 2> v(std::vector<double>{1.0, 2.0});
  EXPECT_THAT([&] { (void)(v / 0.0); }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
  EXPECT_THAT([&] { (void)(v / -0.0); }, ThrowsMessage<error_in_talvo_core>(StrEq(std::string(kDivisionByZero))));
  EXPECT_THAT(v, ElementsAre(1.0, 2.0));
}

TEST(FixedVectorDivision, ByAZeroElementOfItsOwnThrowsAndLeavesTheVector) {
  FixedVector<double, 3> v(std::vector<double>{1.0, 0.0, 3.0});
  EXPECT_THROW(v /= v[1], error_in_talvo_core);
  EXPECT_THAT(v, ElementsAre(1.0, 0.0, 3.0));
}

TEST(FixedVectorDivision, ByATinyNumberDoesNotThrow) {
  FixedVector<double, 2> v(std::vector<double>{1e-300, -2e-300});
  EXPECT_NO_THROW(v /= 1e-300);
  EXPECT_THAT(v, ElementsAre(1.0, -2.0));
}

// The comparison with zero is exact: the smallest number there is divides, to infinity if it must.
TEST(FixedVectorDivision, ByTheSmallestDenormalDoesNotThrow) {
  for (double sign : {1.0, -1.0}) {
    FixedVector<double, 2> v(std::vector<double>{1.0, 0.0});
    EXPECT_NO_THROW(v /= sign * std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(v[0], sign * kInfinity);
    EXPECT_TRUE(equal_bits(v[1], sign * 0.0));
  }
}

TEST(FixedVectorDivision, ByNanOrInfinityDoesNotThrow) {
  const FixedVector<double, 2> v(std::vector<double>{1.0, -1.0});
  const FixedVector<double, 2> by_infinity = v / kInfinity;
  EXPECT_TRUE(equal_bits(by_infinity[0], 0.0));
  EXPECT_TRUE(equal_bits(by_infinity[1], -0.0));
  const FixedVector<double, 2> by_nan = v / kNan;
  EXPECT_TRUE(std::isnan(by_nan[0]) && std::isnan(by_nan[1]));
}

// A product with the reciprocal would give 0.99999999999999989 here: 1 / 49 is rounded.
TEST(FixedVectorDivision, IsNotAProductWithTheReciprocal) {
  FixedVector<double, 1> v(std::vector<double>{49.0});
  v /= 49.0;
  EXPECT_EQ(v[0], 1.0);
}

// ---------------------------------------------------------------- who is told, and where it happened

TEST(FixedVectorError, IsCaughtAsAnyOfItsBases) {
  FixedVector<double, 2> v;
  EXPECT_THAT([&] { v /= 0.0; }, ThrowsMessage<BaseException>(StrEq(std::string(kDivisionByZero))));
  EXPECT_THAT([&] { v /= 0.0; }, ThrowsMessage<std::exception>(StrEq(std::string(kDivisionByZero))));
  const auto build = [] { build_from<2>(std::vector<double>(3)); };
  EXPECT_THAT(build, ThrowsMessage<BaseException>(HasSubstr("from a list of size 3!")));
  EXPECT_THAT(build, ThrowsMessage<std::exception>(HasSubstr("from a list of size 3!")));
}

/// Matches an error whose place is in the vector's header, in a function of this name, and not in this file.
auto located_in(std::string const& function) {
  return Throws<error_in_talvo_core>(
      AllOf(Property("file_name", &error_in_talvo_core::file_name, EndsWith("talvo/core/fixed_vector.h")),
            Property("function_name", &error_in_talvo_core::function_name,
                     AllOf(HasSubstr(function), Not(HasSubstr("the_caller")))),
            Property("line", &error_in_talvo_core::line, Gt(0U))));
}

// Callers with a name that must not turn up.
void the_caller_divides(FixedVector<double, 2>& v) { v /= 0.0; }
void the_caller_divides_by_value(FixedVector<double, 2> const& v) { (void)(v / 0.0); }
void the_caller_builds() { (void)FixedVector<double, 1>(std::vector<double>(2)); }
void the_caller_checks() { FixedVector<double, 1>::ensure_valid_size(2, "from a list"); }

TEST(FixedVectorError, OfADivisionIsLocatedInTheOperator) {
  FixedVector<double, 2> v;
  EXPECT_THAT([&] { the_caller_divides(v); }, located_in("operator/="));
  EXPECT_THAT([&] { the_caller_divides_by_value(v); }, located_in("operator/="));
}

TEST(FixedVectorError, OfASizeIsLocatedInEnsureValidSize) {
  EXPECT_THAT([] { the_caller_checks(); }, located_in("ensure_valid_size"));
  EXPECT_THAT([] { the_caller_builds(); }, located_in("ensure_valid_size"));
}

#if defined(__cpp_lib_source_location)
TEST(FixedVectorError, NamesTheClassWhereTheCompilerSpellsFunctionsInFull) {
  EXPECT_THAT([] { the_caller_builds(); }, located_in("FixedVector<"));
}
#endif

TEST(FixedVectorError, OfTwoChecksHasTwoLines) {
  std::uint_least32_t line_of_size = 0;
  std::uint_least32_t line_of_division = 0;
  try {
    the_caller_checks();
  } catch (error_in_talvo_core const& e) {
    line_of_size = e.line();
  }
  FixedVector<double, 2> v;
  try {
    the_caller_divides(v);
  } catch (error_in_talvo_core const& e) {
    line_of_division = e.line();
  }
  EXPECT_NE(line_of_size, line_of_division);
}

}  // namespace
