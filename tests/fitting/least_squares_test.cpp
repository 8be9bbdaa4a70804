#include <talvo/fitting/least_squares.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "fitting/plain_fit.h"
#include "fitting/private_members.h"
#include "support/bits.h"
#include "support/failures.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::OpenLeastSquares;
using talvo::test::plain_curve;
using talvo::test::plain_polynomial;
using talvo::test::plain_power;
using talvo::test::plain_sine;
using talvo::test::PlainFit;
using talvo::test::Points;
using talvo::test::Random;
using talvo::test::throws_exactly;
using Talvo::Util::LeastSquares;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Limits = std::numeric_limits<double>;
constexpr double kInfinity = Limits::infinity();
constexpr double kNaN = Limits::quiet_NaN();
constexpr double kUnknownFit = 1.7976931348623157e308;

constexpr auto kTwo = static_cast<LeastSquares::Fit>(2);

constexpr const char* kUnknown = "Unknown fit type";
constexpr const char* kTooFew = "Insufficient points for selected order";
constexpr const char* kNoPoints = "No data points supplied for least squares fit";
constexpr const char* kSingular = "Singular matrix - cannot fit curve";
constexpr const char* kMissing = "invalid vector subscript";

const Points kLine{{0, 1}, {1, 3}, {2, 5}};
const Points kOneAbscissa{{1, 0}, {1, 1}};

/// Everything that a fit keeps, bit by bit.
void expect_same_state(OpenLeastSquares const& actual, OpenLeastSquares const& expected) {
  EXPECT_EQ(actual.fit(), expected.fit());
  EXPECT_EQ(actual.order(), expected.order());
  EXPECT_TRUE(equal_bits(actual.limits().first, expected.limits().first));
  EXPECT_TRUE(equal_bits(actual.limits().second, expected.limits().second));
  ASSERT_EQ(actual.coefficients().size(), expected.coefficients().size());
  for (std::size_t k = 0; k < expected.coefficients().size(); ++k) {
    EXPECT_TRUE(equal_bits(actual.coefficients()[k], expected.coefficients()[k]));
  }
  EXPECT_TRUE(equal_bits(actual.Rsquared(), expected.Rsquared()));
  EXPECT_TRUE(equal_bits(actual.Norm(), expected.Norm()));
}

/// An object whose every member differs from the default.
OpenLeastSquares fitted_sine() {
  OpenLeastSquares fit;
  fit.CalculateCoeff({{0, 0}, {1, 2}, {2, 3}, {3, 1}, {4, 0.5}}, LeastSquares::Sine, 3);
  fit.set_limits(-1.0, 7.0);
  return fit;
}

// --- The object ---

TEST(LeastSquares, NumbersItsFitsInThirtyTwoBits) {
  static_assert(std::is_same_v<std::underlying_type_t<LeastSquares::Fit>, std::int32_t>);
  EXPECT_EQ(static_cast<int>(LeastSquares::Polynomial), 0);
  EXPECT_EQ(static_cast<int>(LeastSquares::Sine), 1);
}

TEST(LeastSquares, BeginsAsAnEmptyPolynomialOfOrderOne) {
  const OpenLeastSquares fit;
  EXPECT_EQ(fit.fit(), LeastSquares::Polynomial);
  EXPECT_EQ(fit.order(), 1U);
  EXPECT_TRUE(equal_bits(fit.limits().first, 0.0));
  EXPECT_TRUE(equal_bits(fit.limits().second, 0.0));
  EXPECT_THAT(fit.coefficients(), IsEmpty());
  EXPECT_TRUE(equal_bits(fit.Rsquared(), 0.0));
  EXPECT_TRUE(equal_bits(fit.Norm(), 0.0));
}

TEST(LeastSquares, IsReadWithoutBeingChanged) {
  static_assert(std::is_invocable_r_v<double, decltype(&LeastSquares::Ordinate), LeastSquares const&, double>);
  static_assert(std::is_invocable_r_v<double, decltype(&LeastSquares::Rsquared), LeastSquares const&>);
  static_assert(std::is_invocable_r_v<double, decltype(&LeastSquares::Norm), LeastSquares const&>);
  static_assert(std::is_invocable_r_v<std::string, decltype(&LeastSquares::Equation), LeastSquares const&, bool>);
}

TEST(LeastSquares, CopiesEveryMember) {
  const OpenLeastSquares original = fitted_sine();
  const OpenLeastSquares copy(original);  // NOLINT(performance-unnecessary-copy-initialization): it is what is tested
  expect_same_state(copy, original);
  OpenLeastSquares assigned;
  assigned = original;
  expect_same_state(assigned, original);
  expect_same_state(original, fitted_sine());
}

TEST(LeastSquares, LeavesItsCopiesAloneWhenItIsFittedAgain) {
  OpenLeastSquares original = fitted_sine();
  const OpenLeastSquares copy(original);
  original.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  expect_same_state(copy, fitted_sine());
}

TEST(LeastSquares, MovesEveryMemberAndLeavesNoCoefficients) {
  OpenLeastSquares source = fitted_sine();
  OpenLeastSquares moved(std::move(source));
  expect_same_state(moved, fitted_sine());
  EXPECT_THAT(source.coefficients(), IsEmpty());  // NOLINT(bugprone-use-after-move): what is promised
  EXPECT_EQ(source.Equation(false), "");

  OpenLeastSquares assigned;
  assigned = std::move(moved);
  expect_same_state(assigned, fitted_sine());
  EXPECT_THAT(moved.coefficients(), IsEmpty());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(moved.Equation(true), "");
}

TEST(LeastSquares, CanBeFittedAgainAfterAMove) {
  OpenLeastSquares source = fitted_sine();
  const OpenLeastSquares moved(std::move(source));
  source.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);  // NOLINT(bugprone-use-after-move)
  OpenLeastSquares fresh;
  fresh.set_limits(-1.0, 7.0);
  fresh.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  expect_same_state(source, fresh);
}

// --- Values by hand ---

TEST(PolynomialFit, ThreePointsOnALineGiveTheLine) {
  OpenLeastSquares fit;
  const double r_squared = fit.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  ASSERT_THAT(fit.coefficients(), SizeIs(2));
  EXPECT_DOUBLE_EQ(fit.coefficients()[0], 1.0);
  EXPECT_DOUBLE_EQ(fit.coefficients()[1], 2.0);
  EXPECT_EQ(r_squared, 1.0);
  EXPECT_EQ(fit.Rsquared(), 1.0);
  // Three residuals of a unit in the last place of 5 at most.
  EXPECT_NEAR(fit.Norm(), 0.0, 3 * 5 * Limits::epsilon());
  EXPECT_DOUBLE_EQ(fit.Ordinate(3), 7.0);
}

TEST(PolynomialFit, OrderZeroIsTheMean) {
  OpenLeastSquares fit;
  // Mean 4; residuals -3, 0, 3; SSR = SST = 18.
  EXPECT_EQ(fit.CalculateCoeff({{7, 1}, {7, 4}, {-2, 7}}, LeastSquares::Polynomial, 0), 0.0);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(4.0));
  EXPECT_DOUBLE_EQ(fit.Norm(), std::sqrt(18.0));
}

TEST(PolynomialFit, TakesTheZerothPowerOfZeroAsOne) {
  OpenLeastSquares fit;
  fit.CalculateCoeff({{0, 3}, {0, 5}}, LeastSquares::Polynomial, 0);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(4.0));
}

TEST(PolynomialFit, LeavesTheResidualsOfFourPointsAboutALine) {
  // Points (-3, 1), (-1, -1), (1, 1), (3, 7): Σx = 0, Σx² = 20, Σy = 8, Σxy = -3 + 1 + 1 + 21 = 20, so y = 2 + x.
  // Residuals 2, -2, -2, 2: SSR = 16. SST = 1 + 9 + 1 + 25 = 36. All sums are exact; 1 - 16/36 = 5/9.
  OpenLeastSquares fit;
  const double r_squared = fit.CalculateCoeff({{-3, 1}, {-1, -1}, {1, 1}, {3, 7}}, LeastSquares::Polynomial, 1);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(2.0, 1.0));
  EXPECT_DOUBLE_EQ(r_squared, 5.0 / 9.0);
  EXPECT_EQ(fit.Norm(), 4.0);
}

TEST(PolynomialFit, PassesThroughAsManyPointsAsItHasCoefficients) {
  // Through (-1, 6), (0, 1), (1, 2): c0 = 1, c2 = (6 + 2)/2 - 1 = 3, c1 = (2 - 6)/2 = -2.
  OpenLeastSquares fit;
  fit.CalculateCoeff({{-1, 6}, {0, 1}, {1, 2}}, LeastSquares::Polynomial, 2);
  ASSERT_THAT(fit.coefficients(), SizeIs(3));
  // The normal matrix [[3, 0, 2], [0, 2, 0], [2, 0, 2]] has condition number 5 + 2·sqrt(6) ≈ 10.
  const double bound = 8 * 10 * Limits::epsilon();
  EXPECT_NEAR(fit.coefficients()[0], 1.0, bound);
  EXPECT_NEAR(fit.coefficients()[1], -2.0, bound);
  EXPECT_NEAR(fit.coefficients()[2], 3.0, bound);
  EXPECT_NEAR(fit.Ordinate(2.0), 9.0, 7 * bound);
}

TEST(SineFit, FindsTheAmplitudesOfASeries) {
  // At t_j = πj/N, j = 0..N, the sines 1..N-1 are orthogonal with squared length N/2: nothing is lost.
  constexpr int kIntervals = 12;
  Points points;
  for (int j = 0; j <= kIntervals; ++j) {
    const double t = std::numbers::pi * j / kIntervals;
    points.push_back({100.0 + 5.0 * j, 3 * std::sin(t) - 2 * std::sin(2 * t) + 0.5 * std::sin(3 * t)});
  }
  OpenLeastSquares fit;
  const double r_squared = fit.CalculateCoeff(points, LeastSquares::Sine, 3);
  ASSERT_THAT(fit.coefficients(), SizeIs(3));
  // Sines near 1 whose arguments carry an error of 3π·eps at most.
  const double bound = 16 * Limits::epsilon();
  EXPECT_NEAR(fit.coefficients()[0], 3.0, bound);
  EXPECT_NEAR(fit.coefficients()[1], -2.0, bound);
  EXPECT_NEAR(fit.coefficients()[2], 0.5, bound);
  EXPECT_NEAR(r_squared, 1.0, bound);
  EXPECT_NEAR(fit.Norm(), 0.0, 13 * bound);
}

TEST(SineFit, IsTheDiscreteSineTransformOfEquallySpacedPoints) {
  constexpr int kIntervals = 16;
  Random random(31);
  Points points;
  for (int j = 0; j <= kIntervals; ++j) points.push_back({0.25 * j - 3.0, random.uniform(-1.0, 1.0)});
  OpenLeastSquares fit;
  fit.CalculateCoeff(points, LeastSquares::Sine, 7);
  ASSERT_THAT(fit.coefficients(), SizeIs(7));
  for (int k = 1; k <= 7; ++k) {
    SCOPED_TRACE(::testing::Message() << "seed 31, harmonic " << k);
    long double sum = 0.0L;
    for (int j = 0; j <= kIntervals; ++j) {
      sum += std::sin(std::numbers::pi_v<long double> * k * j / kIntervals) *
             static_cast<long double>(points[static_cast<std::size_t>(j)].y);
    }
    // 17 products of magnitude 1 and arguments up to 7π.
    EXPECT_NEAR(fit.coefficients()[static_cast<std::size_t>(k) - 1], static_cast<double>(2 * sum / kIntervals),
                7 * 17 * Limits::epsilon());
  }
}

TEST(SineFit, MapsTheSpanWhateverTheOrderOfThePoints) {
  // Extremes in the middle of the list. t = π/2, 0, π: only (1, 5) has a sine, so c1 = 5.
  OpenLeastSquares fit;
  fit.CalculateCoeff({{1, 5}, {-3, 0}, {5, 0}}, LeastSquares::Sine, 1);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(5.0));
}

TEST(SineFit, OfOrderZeroStoresNoCoefficientAndIsZero) {
  // Mean 3, SST = 4 + 0 + 4 = 8, Σy² = 1 + 9 + 25 = 35: R² = 1 - 35/8.
  OpenLeastSquares fit;
  EXPECT_EQ(fit.CalculateCoeff({{0, 1}, {1, 3}, {2, 5}}, LeastSquares::Sine, 0), 1.0 - 35.0 / 8.0);
  EXPECT_EQ(fit.Rsquared(), 1.0 - 35.0 / 8.0);
  EXPECT_DOUBLE_EQ(fit.Norm(), std::sqrt(35.0));
  EXPECT_THAT(fit.coefficients(), IsEmpty());
  EXPECT_TRUE(equal_bits(fit.Ordinate(1.0), 0.0));
  EXPECT_EQ(fit.Equation(false), "");
}

TEST(SineFit, LeavesTheAbscissaLimitsOfTheObjectAlone) {
  OpenLeastSquares fit;
  fit.CalculateCoeff({{1, 5}, {-3, 0}, {5, 0}}, LeastSquares::Sine, 1);
  EXPECT_EQ(fit.limits(), std::pair(0.0, 0.0));
  fit.set_limits(-2.0, 9.0);
  fit.CalculateCoeff({{1, 5}, {-3, 0}, {5, 0}}, LeastSquares::Sine, 1);
  EXPECT_EQ(fit.limits(), std::pair(-2.0, 9.0));
}

// --- R² without a guard ---

TEST(Rsquared, IsMinusInfinityForEqualOrdinatesThatTheCurveMisses) {
  OpenLeastSquares fit;
  EXPECT_EQ(fit.CalculateCoeff({{0, 2}, {1, 2}, {2, 2}, {3, 2}}, LeastSquares::Sine, 0), -kInfinity);
  EXPECT_EQ(fit.Rsquared(), -kInfinity);
  EXPECT_EQ(fit.Norm(), 4.0);
}

TEST(Rsquared, IsNaNForEqualOrdinatesThatTheCurveMeets) {
  OpenLeastSquares fit;
  EXPECT_TRUE(std::isnan(fit.CalculateCoeff({{0, 2}, {1, 2}, {2, 2}, {3, 2}}, LeastSquares::Polynomial, 0)));
  EXPECT_TRUE(std::isnan(fit.Rsquared()));
  EXPECT_EQ(fit.Norm(), 0.0);
  EXPECT_TRUE(std::isnan(fit.CalculateCoeff({{0, 0}}, LeastSquares::Sine, 0)));
}

TEST(Rsquared, IsNegativeForASineThatFitsWorseThanTheMean) {
  // t = 0, π/2, π; c1 = 1. Residuals 10, 0, 10 (sin π is 1.2e-16): SSR = 200. SST = 2·9 + 36 = 54.
  OpenLeastSquares fit;
  EXPECT_NEAR(fit.CalculateCoeff({{0, 10}, {1, 1}, {2, 10}}, LeastSquares::Sine, 1), 1.0 - 200.0 / 54.0, 1e-14);
}

TEST(Rsquared, LetsNonFiniteDataThrough) {
  for (const double y : {kInfinity, -kInfinity, kNaN}) {
    OpenLeastSquares fit;
    EXPECT_TRUE(std::isnan(fit.CalculateCoeff({{0, 1}, {1, y}, {2, 5}}, LeastSquares::Polynomial, 1))) << y;
    EXPECT_TRUE(std::isnan(fit.Norm())) << y;
  }
}

// --- Failures ---

struct FailingFit {
  const char* name;
  Points points;
  LeastSquares::Fit fit;
  int order;
  const char* message;

  friend void PrintTo(FailingFit const& c, std::ostream* out) { *out << c.name; }
};

const Points kNone;

class RefusedFit : public ::testing::TestWithParam<FailingFit> {};

TEST_P(RefusedFit, ThrowsInvalidArgument) {
  FailingFit const& c = GetParam();
  OpenLeastSquares object = fitted_sine();
  EXPECT_TRUE(
      throws_exactly<std::invalid_argument>([&] { object.CalculateCoeff(c.points, c.fit, c.order); }, c.message));
}

TEST_P(RefusedFit, KeepsTheNewTypeAndOrderAndNothingElse) {
  FailingFit const& c = GetParam();
  OpenLeastSquares object = fitted_sine();
  EXPECT_THROW(object.CalculateCoeff(c.points, c.fit, c.order), std::invalid_argument);
  // A negative order widens to a very large one.
  OpenLeastSquares expected(c.fit, static_cast<std::uint64_t>(static_cast<std::int64_t>(c.order)), {});
  expected.set_limits(-1.0, 7.0);
  expect_same_state(object, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, RefusedFit,
    ::testing::Values(
        // The type is looked at first.
        FailingFit{"fit_type_2", kLine, kTwo, 1, kUnknown},
        FailingFit{"fit_type_2_without_points_and_order", kNone, kTwo, -1, kUnknown},
        FailingFit{"fit_type_minus_1", kLine, static_cast<LeastSquares::Fit>(-1), 1, kUnknown},
        FailingFit{"fit_type_of_the_largest_number", kLine, static_cast<LeastSquares::Fit>(INT_MAX), 9, kUnknown},
        // As many points as the order: one is missing.
        FailingFit{"order_2_with_two_points", {{0, 1}, {1, 3}}, LeastSquares::Polynomial, 2, kTooFew},
        FailingFit{"sine_order_2_with_two_points", {{0, 1}, {1, 3}}, LeastSquares::Sine, 2, kTooFew},
        FailingFit{"order_minus_1", kLine, LeastSquares::Polynomial, -1, kTooFew},
        FailingFit{"sine_order_minus_1", kLine, LeastSquares::Sine, -1, kTooFew},
        FailingFit{"smallest_order", kLine, LeastSquares::Polynomial, INT_MIN, kTooFew},
        FailingFit{"largest_order", kLine, LeastSquares::Polynomial, INT_MAX, kTooFew},
        FailingFit{"sine_largest_order", kLine, LeastSquares::Sine, INT_MAX, kTooFew},
        // The size is looked at before the absence of points.
        FailingFit{"no_points", kNone, LeastSquares::Polynomial, 0, kTooFew},
        FailingFit{"sine_without_points", kNone, LeastSquares::Sine, 0, kTooFew},
        FailingFit{"sine_order_minus_1_without_points", kNone, LeastSquares::Sine, -1, kTooFew},
        // Too few points that would be singular too.
        FailingFit{"too_few_points_at_one_abscissa", kOneAbscissa, LeastSquares::Polynomial, 2, kTooFew}),
    [](auto const& row) { return std::string(row.param.name); });

TEST(SingularFit, TwoPointsAtOneAbscissaGiveNoLine) {
  // The normal matrix [[2, 2], [2, 2]] has rank 1.
  OpenLeastSquares object = fitted_sine();
  EXPECT_TRUE(throws_exactly<std::runtime_error>(
      [&] { object.CalculateCoeff(kOneAbscissa, LeastSquares::Polynomial, 1); }, kSingular));
  OpenLeastSquares expected(LeastSquares::Polynomial, 1, {});
  expected.set_limits(-1.0, 7.0);
  expect_same_state(object, expected);
}

TEST(SingularFit, PointsAtFewerAbscissaeThanCoefficientsGiveNoPolynomial) {
  LeastSquares fit;
  EXPECT_TRUE(throws_exactly<std::runtime_error>(
      [&] {
        fit.CalculateCoeff({{-1, 0}, {1, 1}, {-1, 2}, {1, 3}}, LeastSquares::Polynomial, 2);
      },
      kSingular));
  EXPECT_NO_THROW(fit.CalculateCoeff({{-1, 0}, {1, 1}, {-1, 2}, {1, 3}}, LeastSquares::Polynomial, 1));
}

TEST(SingularFit, PointsWithoutASpanGiveNoSine) {
  // t = 0/0 for every point.
  OpenLeastSquares object = fitted_sine();
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { object.CalculateCoeff(kOneAbscissa, LeastSquares::Sine, 1); },
                                                 kSingular));
  OpenLeastSquares expected(LeastSquares::Sine, 1, {});
  expected.set_limits(-1.0, 7.0);
  expect_same_state(object, expected);
}

TEST(SingularFit, TwoSinesCannotBeToldApartByThreePoints) {
  // t = 0, π/2, π: sin 2t is 0 at all of them, but for the rounding of π. A has the entries 1 and 1e-32, and the second
  // is below the threshold of the rank.
  LeastSquares fit;
  EXPECT_TRUE(throws_exactly<std::runtime_error>(
      [&] {
        fit.CalculateCoeff({{0, 1}, {1, 2}, {2, 3}}, LeastSquares::Sine, 2);
      },
      kSingular));
}

TEST(SingularFit, IsDecidedRelativeToTheLargestPivot) {
  // Abscissae ±h: A = [[2, 0], [0, 2h²]]. The rank counts pivots above 2·eps = 2^-51 times the largest. h² = 2^-50 is
  // above it, 2^-52 is not.
  const double h = 0x1p-25;
  LeastSquares fit;
  EXPECT_NO_THROW(fit.CalculateCoeff({{-h, 0}, {h, 1}}, LeastSquares::Polynomial, 1));
  const double too_close = 0x1p-26;
  EXPECT_TRUE(throws_exactly<std::runtime_error>(
      [&] {
        fit.CalculateCoeff({{-too_close, 0}, {too_close, 1}}, LeastSquares::Polynomial, 1);
      },
      kSingular));
}

TEST(Refit, ForgetsTheFitBefore) {
  OpenLeastSquares object = fitted_sine();
  object.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  OpenLeastSquares expected;
  expected.set_limits(-1.0, 7.0);
  expected.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  expect_same_state(object, expected);
}

TEST(Refit, KeepsTheCapacityOfTheCoefficients) {
  OpenLeastSquares object = fitted_sine();
  const std::size_t capacity = object.coefficients().capacity();
  EXPECT_THROW(object.CalculateCoeff(kLine, kTwo, 1), std::invalid_argument);
  EXPECT_GE(object.coefficients().capacity(), capacity);
}

// --- The steps by themselves ---

TEST(FitSteps, CalculateWithoutTouchingTypeAndOrder) {
  OpenLeastSquares fit;
  EXPECT_EQ(fit.CalculatePoly({{-3, 1}, {-1, -1}, {1, 1}, {3, 7}}, 0), 0.0);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(2.0));
  EXPECT_EQ(fit.Rsquared(), 0.0);
  EXPECT_EQ(fit.Norm(), 6.0);
  EXPECT_EQ(fit.fit(), LeastSquares::Polynomial);
  EXPECT_EQ(fit.order(), 1U);

  fit.CalculateSine({{1, 5}, {-3, 0}, {5, 0}}, 1);
  EXPECT_THAT(fit.coefficients(), ::testing::ElementsAre(5.0));
  EXPECT_EQ(fit.fit(), LeastSquares::Polynomial);
}

TEST(FitSteps, EmptyTheCoefficientsBeforeTheyCheckAndKeepTheQuality) {
  const OpenLeastSquares before = fitted_sine();
  for (const int order : {-1, 3}) {
    SCOPED_TRACE(order);
    OpenLeastSquares fit = fitted_sine();
    EXPECT_TRUE(throws_exactly<std::invalid_argument>([&] { fit.CalculatePoly(kLine, order); }, kTooFew));
    EXPECT_THAT(fit.coefficients(), IsEmpty());
    EXPECT_TRUE(equal_bits(fit.Rsquared(), before.Rsquared()));
    EXPECT_TRUE(equal_bits(fit.Norm(), before.Norm()));

    fit = fitted_sine();
    EXPECT_TRUE(throws_exactly<std::invalid_argument>([&] { fit.CalculateSine(kLine, order); }, kTooFew));
    EXPECT_THAT(fit.coefficients(), IsEmpty());
    EXPECT_TRUE(equal_bits(fit.Rsquared(), before.Rsquared()));
    EXPECT_TRUE(equal_bits(fit.Norm(), before.Norm()));
  }
}

TEST(FitSteps, EmptyTheCoefficientsOfASingularFit) {
  OpenLeastSquares fit = fitted_sine();
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { fit.CalculatePoly(kOneAbscissa, 1); }, kSingular));
  EXPECT_THAT(fit.coefficients(), IsEmpty());
  fit = fitted_sine();
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { fit.CalculateSine(kOneAbscissa, 1); }, kSingular));
  EXPECT_THAT(fit.coefficients(), IsEmpty());
}

// --- The curve ---

TEST(Ordinate, OfAPolynomialIsItsSum) {
  const OpenLeastSquares fit(LeastSquares::Polynomial, 2, {1.0, -2.0, 3.0});
  EXPECT_EQ(fit.Ordinate(0.0), 1.0);
  EXPECT_EQ(fit.Ordinate(2.0), 9.0);   // 1 - 4 + 12
  EXPECT_EQ(fit.Ordinate(-1.0), 6.0);  // 1 + 2 + 3
  EXPECT_EQ(fit.PolyOrdinate(-1.0), 6.0);
  EXPECT_TRUE(std::isnan(fit.Ordinate(kNaN)));
  EXPECT_TRUE(std::isnan(fit.Ordinate(kInfinity)));  // 1 - infinity + infinity
}

TEST(Ordinate, AddsTermByTermAndNotByHorner) {
  // -x + 1e-200·x² at 1e200: the square overflows; by Horner's rule x·(-1 + 1e-200·x) would be 0.
  EXPECT_EQ(OpenLeastSquares(LeastSquares::Polynomial, 2, {0.0, -1.0, 1e-200}).Ordinate(1e200), kInfinity);
}

TEST(Ordinate, ReadsTheStoredOrderNotTheNumberOfCoefficients) {
  OpenLeastSquares fit;
  fit.CalculatePoly({{-1, 6}, {0, 1}, {1, 2}}, 2);
  ASSERT_THAT(fit.coefficients(), SizeIs(3));
  // Order 1 is still stored: c0 + c1·x.
  EXPECT_TRUE(equal_bits(fit.Ordinate(2.0), fit.coefficients()[0] + fit.coefficients()[1] * 2.0));
  fit.CalculatePoly({{-1, 6}, {0, 1}, {1, 2}}, 0);
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(2.0); }, kMissing));
}

TEST(Ordinate, OfAnObjectNeverFittedThrows) {
  const OpenLeastSquares fit;
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(0.0); }, kMissing));
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.PolyOrdinate(0.0); }, kMissing));
  // The sine of order 1 has no term to read.
  EXPECT_TRUE(equal_bits(fit.SineOrdinate(0.0), 0.0));
}

TEST(Ordinate, AfterAFailedFitThrows) {
  OpenLeastSquares fit = fitted_sine();
  EXPECT_THROW(fit.CalculateCoeff(kOneAbscissa, LeastSquares::Polynomial, 1), std::runtime_error);
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(0.0); }, kMissing));
  EXPECT_THROW(fit.CalculateCoeff({{0, 1}, {1, 2}, {2, 3}}, LeastSquares::Sine, 2), std::runtime_error);
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(0.0); }, kMissing));
  EXPECT_THROW(fit.CalculateCoeff(kOneAbscissa, LeastSquares::Sine, 1), std::runtime_error);
  EXPECT_TRUE(equal_bits(fit.Ordinate(0.0), 0.0));
}

TEST(Ordinate, OfTheOrderMinusOneDoesNotRunForEver) {
  OpenLeastSquares fit;
  for (const auto type : {LeastSquares::Polynomial, LeastSquares::Sine}) {
    SCOPED_TRACE(static_cast<int>(type));
    EXPECT_THROW(fit.CalculateCoeff(kLine, type, -1), std::invalid_argument);
    EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(1.0); }, kMissing));
    // With coefficients, from the step that does not store its order.
    fit.CalculatePoly(kLine, 1);
    EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(1.0); }, kMissing));
  }
}

TEST(Ordinate, OfAMovedFitThrowsInTheSource) {
  OpenLeastSquares source;
  source.CalculateCoeff(kLine, LeastSquares::Polynomial, 1);
  const OpenLeastSquares moved(std::move(source));
  EXPECT_DOUBLE_EQ(moved.Ordinate(3.0), 7.0);
  EXPECT_TRUE(
      throws_exactly<std::out_of_range>([&] { source.Ordinate(3.0); }, kMissing));  // NOLINT(bugprone-use-after-move)
}

TEST(Ordinate, OfAnUnknownFitIsTheLargestNumber) {
  OpenLeastSquares fit;
  EXPECT_TRUE(throws_exactly<std::invalid_argument>([&] { fit.CalculateCoeff(kLine, kTwo, 1); }, kUnknown));
  EXPECT_EQ(fit.Ordinate(0.0), kUnknownFit);
  EXPECT_EQ(fit.Ordinate(kNaN), kUnknownFit);
  EXPECT_EQ(kUnknownFit, Limits::max());
  EXPECT_EQ(fit.Equation(false), "");
  EXPECT_EQ(fit.Equation(true), "");
}

TEST(SineOrdinate, OfOrderOneIsZeroForAnyAbscissa) {
  const OpenLeastSquares fit(LeastSquares::Sine, 1, {5.0});
  for (const double x : {0.0, 1.0, -3.5, 1e300, kInfinity, kNaN}) {
    EXPECT_TRUE(equal_bits(fit.SineOrdinate(x), 0.0)) << x;
    EXPECT_TRUE(equal_bits(fit.Ordinate(x), 0.0)) << x;
  }
}

TEST(SineOrdinate, OfOrderZeroIsZero) {
  const OpenLeastSquares fit(LeastSquares::Sine, 0, {});
  EXPECT_TRUE(equal_bits(fit.SineOrdinate(kNaN), 0.0));
}

TEST(SineOrdinate, OfAFitIsNaNBecauseTheObjectHasNoLimits) {
  OpenLeastSquares fit;
  fit.CalculateCoeff({{0, 0}, {1, 2}, {2, 3}, {3, 1}, {4, 0.5}}, LeastSquares::Sine, 2);
  for (const double x : {0.0, 2.0, -1.0, kInfinity}) EXPECT_TRUE(std::isnan(fit.Ordinate(x))) << x;
}

TEST(SineOrdinate, LeavesOutTheHighestHarmonic) {
  OpenLeastSquares fit(LeastSquares::Sine, 3, {2.0, 10.0, 1000.0});
  fit.set_limits(2.0, 6.0);
  // x = 4 is the middle: w = π/2, and sin 2w is sin of the double next to π.
  const double pi = 3.141592653589793;
  EXPECT_TRUE(equal_bits(fit.Ordinate(4.0), 0.0 + std::sin(pi / 2) * 2.0 + std::sin(pi) * 10.0));
  // x = 3: w = π/4; 2·sin 45° + 10·sin 90° = sqrt 2 + 10.
  EXPECT_DOUBLE_EQ(fit.Ordinate(3.0), std::numbers::sqrt2 + 10.0);
}

TEST(SineOrdinate, UsesTheLimitsOfTheObjectThatWasCopied) {
  OpenLeastSquares fit(LeastSquares::Sine, 2, {2.0, 10.0});
  fit.set_limits(0.0, 1.0);
  const OpenLeastSquares copy(fit);
  EXPECT_DOUBLE_EQ(copy.Ordinate(0.5), 2.0);
}

TEST(SineOrdinate, ReadsTheStoredOrderNotTheNumberOfCoefficients) {
  OpenLeastSquares fit(LeastSquares::Sine, 4, {2.0, 10.0});
  fit.set_limits(0.0, 1.0);
  EXPECT_TRUE(throws_exactly<std::out_of_range>([&] { fit.Ordinate(0.5); }, kMissing));
  // The order one above the last coefficient reads all of them.
  OpenLeastSquares complete(LeastSquares::Sine, 3, {2.0, 10.0});
  complete.set_limits(0.0, 1.0);
  EXPECT_NO_THROW(complete.Ordinate(0.5));
}

// --- Small operations ---

TEST(AbscissaLimits, OfNoPointsThrows) {
  EXPECT_TRUE(throws_exactly<std::invalid_argument>([] { LeastSquares::AbscissaLimits({}); }, kNoPoints));
}

TEST(AbscissaLimits, OfOnePointIsItsAbscissaTwice) {
  EXPECT_EQ(LeastSquares::AbscissaLimits({{-2.5, 9}}), std::pair(-2.5, -2.5));
}

TEST(AbscissaLimits, FindsBothEndsWherever) {
  EXPECT_EQ(LeastSquares::AbscissaLimits({{3, 0}, {-1, 50}, {7, -50}, {2, 0}}), std::pair(-1.0, 7.0));
  EXPECT_EQ(LeastSquares::AbscissaLimits({{9, 0}, {3, 0}}), std::pair(3.0, 9.0));
  EXPECT_EQ(LeastSquares::AbscissaLimits({{1, 0}, {-kInfinity, 0}, {kInfinity, 0}}), std::pair(-kInfinity, kInfinity));
}

TEST(AbscissaLimits, AreNotReplacedByNaN) {
  EXPECT_EQ(LeastSquares::AbscissaLimits({{1, 0}, {kNaN, 0}, {2, 0}, {kNaN, 0}}), std::pair(1.0, 2.0));
}

TEST(AbscissaLimits, KeepANaNThatComesFirst) {
  const auto [min, max] = LeastSquares::AbscissaLimits({{kNaN, 0}, {1, 0}, {2, 0}});
  EXPECT_TRUE(std::isnan(min));
  EXPECT_TRUE(std::isnan(max));
}

TEST(AbscissaLimits, KeepTheFirstOfTwoZeros) {
  const auto [min, max] = LeastSquares::AbscissaLimits({{0.0, 0}, {-0.0, 0}});
  EXPECT_FALSE(std::signbit(min));
  EXPECT_FALSE(std::signbit(max));
  const auto [negative_min, negative_max] = LeastSquares::AbscissaLimits({{-0.0, 0}, {0.0, 0}});
  EXPECT_TRUE(std::signbit(negative_min));
  EXPECT_TRUE(std::signbit(negative_max));
}

TEST(Sinc, IsZeroAtInfinityAndOneAtZero) {
  const OpenLeastSquares fit;
  EXPECT_TRUE(equal_bits(fit.sinc(kInfinity), 0.0));
  EXPECT_TRUE(equal_bits(fit.sinc(-kInfinity), 0.0));
  EXPECT_EQ(fit.sinc(0.0), 1.0);
  EXPECT_EQ(fit.sinc(-0.0), 1.0);
  EXPECT_TRUE(std::isnan(fit.sinc(kNaN)));
}

TEST(Sinc, ChangesFromTheSeriesToTheQuotientAtItsThreshold) {
  constexpr double kThreshold = 0.00040283203125;
  const OpenLeastSquares fit;
  for (const double sign : {1.0, -1.0}) {
    const double below = sign * std::nextafter(kThreshold, 0.0);
    EXPECT_TRUE(equal_bits(fit.sinc(below), 1.0 - below * below / 6.0));
    for (const double x : {kThreshold, std::nextafter(kThreshold, 1.0), 1.0, 3.0, 1e10, Limits::max()}) {
      EXPECT_TRUE(equal_bits(fit.sinc(sign * x), std::sin(sign * x) / (sign * x))) << x;
    }
  }
}

TEST(Sinc, NeedsNoMoreThanTwoTermsBelowItsThreshold) {
  // The third term is x⁴/120 = 2.2e-16 at the threshold, a unit in the last place of 1.
  const OpenLeastSquares fit;
  Random random(5);
  for (int i = 0; i < 1000; ++i) {
    const double x = random.uniform(1e-6, 5e-4);
    const auto exact = static_cast<double>(std::sin(static_cast<long double>(x)) / static_cast<long double>(x));
    EXPECT_NEAR(fit.sinc(x), exact, 2 * Limits::epsilon()) << "seed 5, case " << i;
  }
}

TEST(Fraction, DividesUnsignedNumbers) {
  EXPECT_EQ(OpenLeastSquares::fraction(1, 2), 0.5);
  EXPECT_EQ(OpenLeastSquares::fraction(7, 3), 7.0 / 3.0);
  EXPECT_TRUE(equal_bits(OpenLeastSquares::fraction(0, 5), 0.0));
  EXPECT_EQ(OpenLeastSquares::fraction(1, 0), kInfinity);
  EXPECT_TRUE(std::isnan(OpenLeastSquares::fraction(0, 0)));
}

TEST(Fraction, TakesTheUpperHalfOfTheRangeAsPositive) {
  constexpr unsigned long long kHalf = 1ULL << 63U;
  EXPECT_EQ(OpenLeastSquares::fraction(kHalf, 1), 0x1p63);
  EXPECT_EQ(OpenLeastSquares::fraction(1, kHalf), 0x1p-63);
  EXPECT_EQ(OpenLeastSquares::fraction(kHalf + 2048, kHalf), 1.0 + 0x1p-52);
  EXPECT_EQ(OpenLeastSquares::fraction(ULLONG_MAX, 1), 0x1p64);
  EXPECT_EQ(OpenLeastSquares::fraction(ULLONG_MAX, ULLONG_MAX), 1.0);
}

TEST(CheckSize, AsksForOnePointMoreThanTheOrder) {
  const Points points(3);
  EXPECT_NO_THROW(OpenLeastSquares::check_size(points, 0));
  EXPECT_NO_THROW(OpenLeastSquares::check_size(points, 2));
  for (const int order : {3, 4, INT_MAX, -1, -3, INT_MIN}) {
    EXPECT_TRUE(throws_exactly<std::invalid_argument>([&] { OpenLeastSquares::check_size(points, order); }, kTooFew))
        << order;
  }
  EXPECT_TRUE(throws_exactly<std::invalid_argument>([] { OpenLeastSquares::check_size({}, 0); }, kTooFew));
}

TEST(CheckNonsingular, AsksForEquality) {
  EXPECT_NO_THROW(OpenLeastSquares::check_nonsingular(0, 0));
  EXPECT_NO_THROW(OpenLeastSquares::check_nonsingular(3, 3));
  constexpr long long kWide = (1LL << 32U) + 3;
  for (const long long rank : {2LL, 4LL, 0LL, -3LL, kWide}) {
    EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { OpenLeastSquares::check_nonsingular(rank, 3); }, kSingular))
        << rank;
  }
}

// --- Bit for bit ---

void expect_plain(OpenLeastSquares const& fit, double returned, PlainFit const& plain) {
  EXPECT_TRUE(equal_bits(returned, plain.r_squared));
  EXPECT_TRUE(equal_bits(fit.Rsquared(), plain.r_squared));
  EXPECT_TRUE(equal_bits(fit.Norm(), plain.norm));
  ASSERT_EQ(fit.coefficients().size(), plain.coefficients.size());
  for (std::size_t k = 0; k < plain.coefficients.size(); ++k) {
    EXPECT_TRUE(equal_bits(fit.coefficients()[k], plain.coefficients[k])) << "coefficient " << k;
  }
}

/// Fits by the library as the literal fit does it, or refuses what it finds singular; true for a fit.
template <class Plain>
bool expect_fit_of(Points const& points, LeastSquares::Fit type, int order, Plain plain_fit) {
  OpenLeastSquares fit;
  if (auto const plain = plain_fit(points, order)) {
    double returned = kNaN;
    EXPECT_NO_THROW(returned = fit.CalculateCoeff(points, type, order));
    expect_plain(fit, returned, *plain);
    return true;
  }
  EXPECT_TRUE(throws_exactly<std::runtime_error>([&] { fit.CalculateCoeff(points, type, order); }, kSingular));
  return false;
}

constexpr int kCases = 1500;

/// `least` to `least` + 59 points, in one of several kinds: ordinary ones, repeated abscissae, a wide range, and with
/// awkward values.
Points random_points(Random& random, std::uint64_t least) {
  const auto count = least + random.below(60);
  const auto kind = random.below(8);
  const double scale = std::exp(random.uniform(-8.0, 8.0));
  Points points;
  for (std::uint64_t i = 0; i < count; ++i) {
    double x = random.uniform(-1.0, 1.0);
    if (kind == 1) x = static_cast<double>(random.below(5));
    if (kind == 2) x = static_cast<double>(i);
    if (kind == 3) x *= scale;
    if (kind == 4) x = 1000.0 + x;
    if (kind == 5 && random.below(6) == 0) x = random.any_double();
    double y = random.uniform(-10.0, 10.0);
    if (kind == 6 && random.below(10) == 0) y = random.any_double();
    points.push_back({x, y});
  }
  return points;
}

TEST(PolynomialFit, HasTheBitsOfTheLiteralForm) {
  Random random(101);
  int fits = 0;
  for (int i = 0; i < kCases; ++i) {
    const int order = static_cast<int>(random.below(11));
    SCOPED_TRACE(::testing::Message() << "seed 101, case " << i << ", order " << order);
    const Points points = random_points(random, static_cast<std::uint64_t>(order) + 1);
    if (expect_fit_of(points, LeastSquares::Polynomial, order, plain_polynomial)) ++fits;
    if (HasFailure()) return;
  }
  // Both ends were tried, and often.
  EXPECT_GT(fits, kCases / 4);
  EXPECT_LT(fits, kCases - kCases / 20);
}

TEST(SineFit, HasTheBitsOfTheLiteralForm) {
  Random random(102);
  int fits = 0;
  for (int i = 0; i < kCases; ++i) {
    const int order = static_cast<int>(random.below(11));
    SCOPED_TRACE(::testing::Message() << "seed 102, case " << i << ", order " << order);
    const Points points = random_points(random, static_cast<std::uint64_t>(order) + 1);
    if (expect_fit_of(points, LeastSquares::Sine, order, plain_sine)) ++fits;
    if (HasFailure()) return;
  }
  // Both ends were tried, and often.
  EXPECT_GT(fits, kCases / 4);
  EXPECT_LT(fits, kCases - kCases / 20);
}

/// A number whose second power by pow is not the product, as one in a thousand; any number where pow is exact.
double with_inexact_square(Random& random) {
  double x = 1.0;
  for (int i = 0; i < 1000000; ++i) {
    x = random.uniform(-4.0, 4.0);
    if (plain_power(x, 2) != x * x) break;
  }
  return x;
}

TEST(PolynomialFit, TakesPowersByPowAndSquaresOfResidualsByMultiplication) {
  Random random(106);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 106, case " << i);
    const double x = with_inexact_square(random);
    EXPECT_TRUE(
        equal_bits(OpenLeastSquares(LeastSquares::Polynomial, 2, {0.0, 0.0, 1.0}).Ordinate(x), plain_power(x, 2)));
    // Zeros beside the one number, so that its last bit is not lost in a sum.
    expect_fit_of({{x, 1.0}, {0.0, 0.3}}, LeastSquares::Polynomial, 1, plain_polynomial);
    expect_fit_of({{0.0, x}, {1.0, 0.0}, {2.0, 0.0}}, LeastSquares::Sine, 0, plain_sine);
  }
}

TEST(PolynomialFit, HasTheBitsOfTheLiteralFormForLongLists) {
  Random random(103);
  Points points;
  for (int i = 0; i < 1000; ++i) points.push_back({random.uniform(0.0, 4.0), random.uniform(-10.0, 10.0)});
  for (int order = 0; order <= 8; ++order) {
    SCOPED_TRACE(::testing::Message() << "seed 103, order " << order);
    EXPECT_TRUE(expect_fit_of(points, LeastSquares::Polynomial, order, plain_polynomial));
    EXPECT_TRUE(expect_fit_of(points, LeastSquares::Sine, order, plain_sine));
  }
}

TEST(Ordinate, HasTheBitsOfTheLiteralForm) {
  Random random(104);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 104, case " << i);
    std::vector<double> coefficients;
    for (auto n = 1 + random.below(12); n > 0; --n) {
      coefficients.push_back(random.below(8) == 0 ? random.any_double() : random.uniform(-10.0, 10.0));
    }
    const OpenLeastSquares fit(LeastSquares::Polynomial, coefficients.size() - 1, coefficients);
    const double x = random.below(2) == 0 ? random.any_double() : random.uniform(-10.0, 10.0);
    EXPECT_TRUE(equal_bits(fit.Ordinate(x), plain_curve(coefficients, plain_power, x))) << x;
  }
}

TEST(SineOrdinate, HasTheBitsOfTheLiteralForm) {
  Random random(105);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 105, case " << i);
    std::vector<double> coefficients;
    for (auto n = 1 + random.below(12); n > 0; --n) coefficients.push_back(random.uniform(-10.0, 10.0));
    OpenLeastSquares fit(LeastSquares::Sine, coefficients.size(), coefficients);
    const double min = random.uniform(-5.0, 5.0);
    const double max = random.uniform(-5.0, 5.0);
    fit.set_limits(min, max);
    const double x = random.below(4) == 0 ? random.any_double() : random.uniform(-10.0, 10.0);
    const double w = ((x - min) * 3.141592653589793) / (max - min);
    double sum = 0.0;
    for (std::size_t k = 1; k < coefficients.size(); ++k) {
      sum += std::sin(static_cast<double>(k) * w) * coefficients[k - 1];
    }
    EXPECT_TRUE(equal_bits(fit.Ordinate(x), sum)) << x;
  }
}

}  // namespace
