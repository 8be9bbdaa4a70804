#include <talvo/core/tens2.h>

#include <gtest/gtest.h>
#include <math.h>  // hypotf, which <cmath> need not declare outside namespace std

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::Random;

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr long double kRoundoff = 0x1p-53L;

template <class T>
::testing::Message show(Tens2<T> const& t) {
  return ::testing::Message() << std::setprecision(17) << "[[" << t.xx << ", " << t.xy << "], [" << t.yx << ", " << t.yy
                              << "]]";
}

template <class T>
void expect_equal_bits(Tens2<T> const& actual, Tens2<T> const& expected) {
  EXPECT_TRUE(equal_bits(actual.xx, expected.xx)) << "xx";
  EXPECT_TRUE(equal_bits(actual.xy, expected.xy)) << "xy";
  EXPECT_TRUE(equal_bits(actual.yx, expected.yx)) << "yx";
  EXPECT_TRUE(equal_bits(actual.yy, expected.yy)) << "yy";
}

Tens2<double> any_tensor(Random& random) {
  return {random.any_double(), random.any_double(), random.any_double(), random.any_double()};
}

/// Components of both signs whose magnitudes differ by up to 2^20, all scaled by 2^exponent. Every other tensor has a
/// nearly equal diagonal, where the difference of its entries cancels.
Tens2<double> ordinary_tensor(Random& random, int exponent) {
  const auto component = [&] {
    const double mantissa = random.uniform(-1.0, 1.0);
    return std::ldexp(mantissa, exponent + static_cast<int>(random.below(21)) - 10);
  };
  const double xx = component();
  const double xy = component();
  const double yy = random.below(2) == 0 ? component() : random.near(xx, 1000);
  return {xx, xy, xy, yy};
}

/// The same tensor in long double.
struct LongTensor {
  explicit LongTensor(Tens2<double> const& t) : xx(t.xx), xy(t.xy), yx(t.yx), yy(t.yy) {}
  long double xx, xy, yx, yy;
};

/// The eigenvalues of [[xx, xy], [xy, yy]], the larger first, from one Jacobi rotation with the smaller angle
/// (G. H. Golub, C. F. Van Loan, "Matrix Computations", section "Jacobi methods").
std::pair<long double, long double> eigenvalues(LongTensor const& m) {
  if (m.xy == 0.0L) return {std::max(m.xx, m.yy), std::min(m.xx, m.yy)};
  const long double tau = (m.yy - m.xx) / (2.0L * m.xy);
  const long double t = std::copysign(1.0L, tau) / (std::fabs(tau) + std::sqrt(1.0L + tau * tau));
  const long double a = m.xx - t * m.xy;
  const long double b = m.yy + t * m.xy;
  return {std::max(a, b), std::min(a, b)};
}

// ---------------------------------------------------------------- the value itself

template <class T>
class Tens2Of : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Tens2Of, Scalars);

TYPED_TEST(Tens2Of, IsAPlainAggregateRowByRow) {
  using M = Tens2<TypeParam>;
  static_assert(std::is_aggregate_v<M>);
  static_assert(std::is_standard_layout_v<M>);
  static_assert(std::is_trivially_copyable_v<M>);
  EXPECT_EQ(sizeof(M), 4 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(M, xx), 0 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(M, xy), 1 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(M, yx), 2 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(M, yy), 3 * sizeof(TypeParam));
}

TEST(Tens2, OfDoublesTakesThirtyTwoBytes) { EXPECT_EQ(sizeof(Tens2<double>), 32U); }

TYPED_TEST(Tens2Of, IsZeroWhenDefaultBuilt) { expect_equal_bits(Tens2<TypeParam>(), Tens2<TypeParam>{0, 0, 0, 0}); }

TYPED_TEST(Tens2Of, IsWrittenAsABracedList) {
  const Tens2<TypeParam> t{1, 2, 3, 4};
  EXPECT_EQ(t.xx, TypeParam{1});
  EXPECT_EQ(t.xy, TypeParam{2});
  EXPECT_EQ(t.yx, TypeParam{3});
  EXPECT_EQ(t.yy, TypeParam{4});
}

TYPED_TEST(Tens2Of, IsEqualWhenAllFourComponentsAre) {
  using M = Tens2<TypeParam>;
  EXPECT_EQ((M{1, 2, 3, 4}), (M{1, 2, 3, 4}));
  EXPECT_NE((M{1, 2, 3, 4}), (M{9, 2, 3, 4}));
  EXPECT_NE((M{1, 2, 3, 4}), (M{1, 9, 3, 4}));
  EXPECT_NE((M{1, 2, 3, 4}), (M{1, 2, 9, 4}));
  EXPECT_NE((M{1, 2, 3, 4}), (M{1, 2, 3, 9}));
}

TEST(Tens2, ACopyHasTheSameBits) {
  Random random(1);
  const Tens2<double> original = any_tensor(random);
  const Tens2<double> copy = original;
  expect_equal_bits(copy, original);
}

// ---------------------------------------------------------------- Principal

struct PrincipalCase {
  const char* name;
  Tens2<double> tensor;
  double larger;
  double smaller;

  friend void PrintTo(PrincipalCase const& c, std::ostream* out) { *out << c.name; }
};

class PrincipalByHand : public ::testing::TestWithParam<PrincipalCase> {};

TEST_P(PrincipalByHand, InDouble) {
  expect_equal_bits(GetParam().tensor.Principal(), Tens2<double>{GetParam().larger, 0.0, 0.0, GetParam().smaller});
}

TEST_P(PrincipalByHand, InFloat) {
  const Tens2<double>& t = GetParam().tensor;
  const Tens2<float> narrow{static_cast<float>(t.xx), static_cast<float>(t.xy), static_cast<float>(t.yx),
                            static_cast<float>(t.yy)};
  expect_equal_bits(narrow.Principal(), Tens2<float>{static_cast<float>(GetParam().larger), 0.0F, 0.0F,
                                                     static_cast<float>(GetParam().smaller)});
}

// Mean and radius of Mohr's circle are whole or half numbers, by way of 3-4-5 and 5-12-13 triangles, so that every
// result is exact.
// clang-format off
INSTANTIATE_TEST_SUITE_P(ExactCircles, PrincipalByHand, ::testing::Values(
    PrincipalCase{"zero",                     { 0.0,  0.0,  0.0,  0.0},   0.0,   0.0},
    PrincipalCase{"equal_diagonal_no_shear",  { 3.5,  0.0,  0.0,  3.5},   3.5,   3.5},
    PrincipalCase{"equal_negative_diagonal",  {-3.5,  0.0,  0.0, -3.5},  -3.5,  -3.5},
    PrincipalCase{"pure_shear",               { 0.0,  2.0,  2.0,  0.0},   2.0,  -2.0},
    PrincipalCase{"pure_negative_shear",      { 0.0, -2.0, -2.0,  0.0},   2.0,  -2.0},
    PrincipalCase{"larger_first_already",     { 7.0,  0.0,  0.0,  1.0},   7.0,   1.0},
    PrincipalCase{"larger_comes_to_front",    { 1.0,  0.0,  0.0,  7.0},   7.0,   1.0},
    PrincipalCase{"larger_by_sign_not_size",  {-7.0,  0.0,  0.0, -1.0},  -1.0,  -7.0},
    PrincipalCase{"yx_ignored",               { 1.0,  2.0, 99.0,  4.0},   5.0,   0.0},  // 2.5 -+ hypot(-1.5, 2)
    PrincipalCase{"yx_nan_ignored",           { 1.0,  2.0, kNan,  4.0},   5.0,   0.0},
    PrincipalCase{"negative_mean",            {-4.0,  2.0,  2.0, -1.0},   0.0,  -5.0},  // -2.5 -+ hypot(-1.5, 2)
    PrincipalCase{"five_twelve_thirteen",     {10.0, 12.0, 12.0,  0.0},  18.0,  -8.0}), // 5 -+ hypot(5, 12)
    [](auto const& i) { return std::string(i.param.name); });
// clang-format on

TEST(Tens2Principal, OfAnEqualDiagonalWithoutShearIsThatDiagonal) {
  Random random(2);
  for (int i = 0; i < 1000; ++i) {
    // Up to half of the largest double: beyond it the sum of the diagonal overflows.
    const double d = random.finite_double() * 0.5;
    SCOPED_TRACE(::testing::Message() << "seed 2, case " << i);
    const Tens2<double> p = Tens2<double>{d, 0.0, 0.0, d}.Principal();
    EXPECT_EQ(p.xx, d);
    EXPECT_EQ(p.yy, d);
    EXPECT_TRUE(equal_bits(p.xy, 0.0));
    EXPECT_TRUE(equal_bits(p.yx, 0.0));
  }
}

// The mean is half of a sum, not the sum of two halves.
TEST(Tens2Principal, OverflowsWhereTheSumOfTheDiagonalDoes) {
  const double large = std::numeric_limits<double>::max();
  expect_equal_bits(Tens2<double>{large, 0.0, 0.0, large}.Principal(), Tens2<double>{kInfinity, 0.0, 0.0, kInfinity});
}

// A shear whose square would overflow or vanish: hypot forms no square.
TEST(Tens2Principal, KeepsAShearOfAnySize) {
  expect_equal_bits(Tens2<double>{0.0, 1e300, 1e300, 0.0}.Principal(), Tens2<double>{1e300, 0.0, 0.0, -1e300});
  expect_equal_bits(Tens2<double>{0.0, 1e-300, 1e-300, 0.0}.Principal(), Tens2<double>{1e-300, 0.0, 0.0, -1e-300});
}

TEST(Tens2Principal, IsMeanAndRadiusBitForBit) {
  Random random(3);
  for (int i = 0; i < 30000; ++i) {
    Tens2<double> t = any_tensor(random);
    if (random.below(4) == 0) t.yy = random.near(t.xx);
    SCOPED_TRACE(::testing::Message() << "seed 3, case " << i << ", " << show(t));
    const double a = (t.xx + t.yy) * 0.5;
    const double h = std::hypot((t.xx - t.yy) * 0.5, t.xy);
    expect_equal_bits(t.Principal(), Tens2<double>{a + h, 0.0, 0.0, a - h});
  }
}

TEST(Tens2Principal, OfFloatsIsMeanAndRadiusInFloatBitForBit) {
  Random random(4);
  const auto any_float = [&] { return std::bit_cast<float>(static_cast<std::uint32_t>(random.below(1ULL << 32U))); };
  const auto ordinary_float = [&] { return static_cast<float>(random.uniform(-100.0, 100.0)); };
  for (int i = 0; i < 30000; ++i) {
    const Tens2<float> t = i % 2 == 0 ? Tens2<float>{any_float(), any_float(), any_float(), any_float()}
                                      : Tens2<float>{ordinary_float(), ordinary_float(), 0.0F, ordinary_float()};
    SCOPED_TRACE(::testing::Message() << "seed 4, case " << i << ", " << show(t));
    const float a = (t.xx + t.yy) * 0.5F;
    const float h = ::hypotf((t.xx - t.yy) * 0.5F, t.xy);
    expect_equal_bits(t.Principal(), Tens2<float>{a + h, 0.0F, 0.0F, a - h});
  }
}

// All arithmetic is in float: the mean of 2^24 and 1 is 2^23 there, since 2^24 + 1 is a tie that rounds to even. In
// double the mean would be 8388608.5 and the smaller value 1.
TEST(Tens2Principal, OfFloatsRoundsTheMeanToFloat) {
  const Tens2<float> t{16777216.0F, 0.0F, 0.0F, 1.0F};
  // The half difference, (2^24 - 1) / 2 = 8388607.5, is exact; a + h = 16777215.5 and a - h = 0.5, where the first is a
  // tie again, between 16777215 and the even 16777216.
  expect_equal_bits(t.Principal(), Tens2<float>{16777216.0F, 0.0F, 0.0F, 0.5F});
}

// u: unit roundoff. a is rounded once; h has the rounding of the half difference and the ulp (2u) of hypot; the last
// sum rounds once more. Together 2u|a| + 4u h; the fifth u covers the second order and the reference's own error.
TEST(Tens2Principal, AreTheEigenvaluesToFiveRoundings) {
  Random random(5);
  for (int i = 0; i < 20000; ++i) {
    const int exponent = static_cast<int>(random.below(1801)) - 900;
    const Tens2<double> t = ordinary_tensor(random, exponent);
    SCOPED_TRACE(::testing::Message() << "seed 5, case " << i << ", " << show(t));
    const auto [larger, smaller] = eigenvalues(LongTensor(t));
    const long double size = std::max(std::fabs(larger), std::fabs(smaller));  // |a| + h
    const Tens2<double> p = t.Principal();
    EXPECT_LE(std::fabs(p.xx - larger), 5 * kRoundoff * size);
    EXPECT_LE(std::fabs(p.yy - smaller), 5 * kRoundoff * size);
  }
}

TEST(Tens2Principal, HasTheLargerValueFirst) {
  Random random(6);
  for (int i = 0; i < 10000; ++i) {
    const double xx = random.uniform(-1.0, 1.0);
    const Tens2<double> t{xx, random.finite_double() * 0.25, 0.0, random.near(xx)};
    SCOPED_TRACE(::testing::Message() << "seed 6, case " << i << ", " << show(t));
    const Tens2<double> p = t.Principal();
    EXPECT_GE(p.xx, p.yy);
  }
}

// ---------------------------------------------------------------- PrincipalPlane

struct Directions {
  Vec2<double> dir1{kNan, kNan};
  Vec2<double> dir2{kNan, kNan};
};

Directions principal_plane(Tens2<double> const& t) {
  Directions d;
  t.PrincipalPlane(&d.dir1, &d.dir2);
  return d;
}

/// The order of operations that the library promises.
double principal_angle(Tens2<double> const& t) {
  const double theta = -0.5 * std::atan2(2.0 * t.xy, std::fabs(t.xx - t.yy));
  if (!(t.yy > t.xx)) return theta;
  const double r = std::fabs(t.yy - t.xx) / std::max(std::fabs(t.xx), std::fabs(t.yy));
  if (r < 1e-6) return theta;
  return theta > 0.0 ? kHalfPi - theta : -theta - kHalfPi;
}

bool is_reflected_without_shear(double xx, double yy) {
  const Vec2<double> dir1 = principal_plane({xx, 0.0, 0.0, yy}).dir1;
  // theta is -0 or, reflected, -pi/2.
  EXPECT_TRUE(dir1 == (Vec2<double>{1.0, 0.0}) || dir1.y == -1.0) << dir1.x << ", " << dir1.y;
  return dir1.y == -1.0;
}

// theta is -0, and cos(pi/2) is the distance of the double pi/2 from pi/2.
TEST(Tens2PrincipalPlane, OfTheUnitTensorIsMinusZeroAndItsPerpendicular) {
  const auto [dir1, dir2] = principal_plane({1.0, 0.0, 0.0, 1.0});
  EXPECT_TRUE(equal_bits(dir1.x, 1.0));
  EXPECT_TRUE(equal_bits(dir1.y, -0.0));
  EXPECT_TRUE(equal_bits(dir2.x, 6.123233995736766e-17));
  EXPECT_TRUE(equal_bits(dir2.y, 1.0));
}

TEST(Tens2PrincipalPlane, OfANegativeZeroShearIsPlusZero) {
  EXPECT_TRUE(equal_bits(principal_plane({1.0, -0.0, -0.0, 1.0}).dir1.y, 0.0));
}

// theta = -pi/2, and dir2 is at theta + pi/2 = 0 exactly. theta is +0 for a shear of -0, and zero is reflected as a
// negative angle is.
TEST(Tens2PrincipalPlane, ReflectsAZeroAngleToMinusAQuarterTurn) {
  for (double shear : {0.0, -0.0}) {
    const auto [dir1, dir2] = principal_plane({1.0, shear, shear, 2.0});
    EXPECT_TRUE(equal_bits(dir1.x, 6.123233995736766e-17));
    EXPECT_TRUE(equal_bits(dir1.y, -1.0));
    EXPECT_TRUE(equal_bits(dir2.x, 1.0));
    EXPECT_TRUE(equal_bits(dir2.y, 0.0));
  }
}

struct PlaneCase {
  const char* name;
  Tens2<double> tensor;
  Vec2<double> dir1;
  Vec2<double> dir2;

  friend void PrintTo(PlaneCase const& c, std::ostream* out) { *out << c.name; }
};

class PrincipalPlaneByHand : public ::testing::TestWithParam<PlaneCase> {};

// theta, of at most pi/2, carries the ulp of atan2, halved, and two roundings of the reflection; theta + pi/2 a third;
// each rounding and the ulp is at most 1.2e-16, as is the last ulp of sin or cos. Hence 5e-16.
TEST_P(PrincipalPlaneByHand, HasTheAngleOfTheConvention) {
  const auto [dir1, dir2] = principal_plane(GetParam().tensor);
  EXPECT_NEAR(dir1.x, GetParam().dir1.x, 5e-16);
  EXPECT_NEAR(dir1.y, GetParam().dir1.y, 5e-16);
  EXPECT_NEAR(dir2.x, GetParam().dir2.x, 5e-16);
  EXPECT_NEAR(dir2.y, GetParam().dir2.y, 5e-16);
}

// Half-angle formulas: cos(pi/8) = sqrt(2 + sqrt 2) / 2 = sin(3pi/8), sin(pi/8) = sqrt(2 - sqrt 2) / 2 = cos(3pi/8).
constexpr double kC = 0.92387953251128676;
constexpr double kS = 0.38268343236508977;
constexpr double kD = 0.70710678118654752;  // cos(pi/4)

// The comments give theta. The last two lines have equal diagonals, where atan2(2 xy, 0) is a quarter turn.
// clang-format off
INSTANTIATE_TEST_SUITE_P(OneCaseAnOctant, PrincipalPlaneByHand, ::testing::Values(
    PlaneCase{"larger_xx",                {1.0,  0.5,  0.5, 0.0}, {kC, -kS}, { kS, kC}},  // -pi/8
    PlaneCase{"larger_xx_negative_shear", {1.0, -0.5, -0.5, 0.0}, {kC,  kS}, {-kS, kC}},  // +pi/8
    PlaneCase{"larger_yy",                {0.0,  0.5,  0.5, 1.0}, {kS, -kC}, { kC, kS}},  // pi/8 - pi/2 = -3pi/8
    PlaneCase{"larger_yy_negative_shear", {0.0, -0.5, -0.5, 1.0}, {kS,  kC}, {-kC, kS}},  // pi/2 - pi/8 = +3pi/8
    PlaneCase{"yx_ignored",               {1.0,  0.5, kNan, 0.0}, {kC, -kS}, { kS, kC}},  // -pi/8
    PlaneCase{"equal_diagonal",           {1.0,  0.5,  0.5, 1.0}, {kD, -kD}, { kD, kD}},  // -pi/4
    PlaneCase{"equal_negative_shear",     {1.0, -0.5, -0.5, 1.0}, {kD,  kD}, {-kD, kD}}), // +pi/4
    [](auto const& i) { return std::string(i.param.name); });
// clang-format on

TEST(Tens2PrincipalPlane, DoesNotReflectUnlessYYIsLarger) {
  EXPECT_FALSE(is_reflected_without_shear(2.0, 1.0));
  EXPECT_FALSE(is_reflected_without_shear(1.0, 1.0));
  EXPECT_FALSE(is_reflected_without_shear(0.0, 0.0));   // no division by the magnitude 0
  EXPECT_FALSE(is_reflected_without_shear(1.0, -2.0));  // yy is larger by magnitude only
  EXPECT_TRUE(is_reflected_without_shear(1.0, 2.0));
  EXPECT_TRUE(is_reflected_without_shear(-2.0, 1.0));
  EXPECT_TRUE(is_reflected_without_shear(-2.0, -1.0));
}

TEST(Tens2PrincipalPlane, CountsADiagonalThatDiffersBy5e7OfItselfAsEqual) {
  EXPECT_FALSE(is_reflected_without_shear(1.0, 1.0 + 5e-7));
}

// 1 / 1e6 rounds to the double 1e-6, which is not below 1e-6; one step (2^-33) nearer it is.
TEST(Tens2PrincipalPlane, ReflectsFromARelativeDifferenceOfOneMillionthOn) {
  EXPECT_TRUE(is_reflected_without_shear(999999.0, 1e6));
  EXPECT_FALSE(is_reflected_without_shear(std::nextafter(999999.0, 1e6), 1e6));
}

// The difference is 1 - 2^-33 or so: less than 1e-6 of 1e6, but more than 1e-6 of 999999.
TEST(Tens2PrincipalPlane, MeasuresTheDifferenceByTheLargerMagnitude) {
  EXPECT_TRUE(is_reflected_without_shear(-1e6, -999999.0));
  EXPECT_FALSE(is_reflected_without_shear(-1e6, std::nextafter(-999999.0, -1e6)));
}

// Relative means that no difference is too small by itself.
TEST(Tens2PrincipalPlane, ReflectsTheSmallestDiagonalThereIs) {
  EXPECT_TRUE(is_reflected_without_shear(0.0, std::numeric_limits<double>::denorm_min()));
  EXPECT_TRUE(is_reflected_without_shear(-std::numeric_limits<double>::denorm_min(), 0.0));
}

// Inside the millionth the angle stays that of the larger xx, even with a shear: 2 xy / |xx - yy| is 1.
TEST(Tens2PrincipalPlane, KeepsTheAngleOfAnAlmostEqualDiagonalWithShear) {
  const double step = 0x1p-21;  // 4.8e-7
  const auto [dir1, dir2] = principal_plane({1.0, 0.5 * step, 0.5 * step, 1.0 + step});
  EXPECT_NEAR(dir1.x, kC, 5e-16);
  EXPECT_NEAR(dir1.y, -kS, 5e-16);
}

// inf / inf is not below anything, so that the angle -0 is reflected.
TEST(Tens2PrincipalPlane, ReflectsFromMinusToPlusInfinity) {
  EXPECT_TRUE(is_reflected_without_shear(-kInfinity, kInfinity));
  EXPECT_TRUE(is_reflected_without_shear(0.0, kInfinity));
}

TEST(Tens2PrincipalPlane, WritesNanDirectionsForNanComponents) {
  for (Tens2<double> const& t : {Tens2<double>{kNan, 1.0, 1.0, 0.0}, Tens2<double>{0.0, kNan, 0.0, 1.0},
                                 Tens2<double>{0.0, 1.0, 1.0, kNan}, Tens2<double>{kInfinity, 1.0, 1.0, kInfinity}}) {
    Vec2<double> dir1{5.0, 5.0};
    Vec2<double> dir2{5.0, 5.0};
    t.PrincipalPlane(&dir1, &dir2);
    EXPECT_TRUE(std::isnan(dir1.x) && std::isnan(dir1.y) && std::isnan(dir2.x) && std::isnan(dir2.y)) << show(t);
  }
}

TEST(Tens2PrincipalPlane, IsTheStatedOrderBitForBit) {
  Random random(7);
  for (int i = 0; i < 30000; ++i) {
    Tens2<double> t = any_tensor(random);
    if (i % 4 == 0) t.yy = random.near(t.xx);
    if (i % 4 == 1) t.yy = t.xx * (1.0 + 1e-6 * random.uniform(0.999999, 1.000001));  // about the threshold
    SCOPED_TRACE(::testing::Message() << "seed 7, case " << i << ", " << show(t));
    const double theta = principal_angle(t);
    const auto [dir1, dir2] = principal_plane(t);
    EXPECT_TRUE(equal_bits(dir1.x, std::cos(theta)));
    EXPECT_TRUE(equal_bits(dir1.y, std::sin(theta)));
    EXPECT_TRUE(equal_bits(dir2.x, std::cos(theta + kHalfPi)));
    EXPECT_TRUE(equal_bits(dir2.y, std::sin(theta + kHalfPi)));
  }
}

// sin and cos are good to an ulp (2u) each, which makes 4u in a length squared or a scalar product. The angle between
// the two is off by the error of the double pi/2 (0.6u) and by the rounding of theta + pi/2 (at most u), which makes 6u
// together. dir2 is dir1 turned counter-clockwise, so that their cross product is +1.
TEST(Tens2PrincipalPlane, DirectionsAreOrthonormalAndRightHanded) {
  Random random(8);
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t{random.finite_double(), random.finite_double(), 0.0, random.finite_double()};
    SCOPED_TRACE(::testing::Message() << "seed 8, case " << i << ", " << show(t));
    const auto [dir1, dir2] = principal_plane(t);
    const long double x1 = dir1.x, y1 = dir1.y, x2 = dir2.x, y2 = dir2.y;
    EXPECT_LE(std::fabs(x1 * x1 + y1 * y1 - 1.0L), 6 * kRoundoff);
    EXPECT_LE(std::fabs(x2 * x2 + y2 * y2 - 1.0L), 6 * kRoundoff);
    EXPECT_LE(std::fabs(x1 * x2 + y1 * y2), 6 * kRoundoff);
    EXPECT_LE(std::fabs(x1 * y2 - y1 * x2 - 1.0L), 6 * kRoundoff);
  }
}

// The convention's angle runs clockwise: mirrored at the x axis, dir1 is the eigenvector of the larger principal value,
// unless the diagonal counted as equal with yy the larger.
// An angle off by delta leaves a residual of 2h delta, and an error of the components by epsilon one of 2h epsilon.
// delta is at most 2u from the halved atan2 and its arguments and 1.6u from the reflection, epsilon 1.6u from sin and
// cos: 10.4u h. The second part of the bound is the reference's own, with 11 more bits.
TEST(Tens2PrincipalPlane, MirroredDirectionIsTheEigenvectorOfTheLargerValue) {
  Random random(9);
  int tested = 0;
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t = ordinary_tensor(random, 0);
    if (t.yy > t.xx && t.yy - t.xx <= 2e-6 * std::max(std::fabs(t.xx), std::fabs(t.yy))) continue;
    ++tested;
    SCOPED_TRACE(::testing::Message() << "seed 9, case " << i << ", " << show(t));
    const LongTensor m(t);
    const auto [larger, smaller] = eigenvalues(m);
    const long double h = (larger - smaller) / 2.0L;
    const long double bound = 12 * kRoundoff * h + 0x1p-60L * std::max(std::fabs(larger), std::fabs(smaller));
    const Vec2<double> dir1 = principal_plane(t).dir1;
    const long double x = dir1.x, y = -dir1.y;
    EXPECT_LE(std::hypot((m.xx - larger) * x + m.xy * y, m.xy * x + (m.yy - larger) * y), bound);
  }
  EXPECT_GT(tested, 12000);
}

// ---------------------------------------------------------------- RotateTo

/// The product (R^T M) R, row 0 and entry (1, 1), in that order.
Tens2<double> rotated(Tens2<double> const& t, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double n00 = c * t.xx + s * t.yx;
  const double n01 = c * t.xy + s * t.yy;
  const double n10 = -s * t.xx + c * t.yx;
  const double n11 = -s * t.xy + c * t.yy;
  const double q00 = n00 * c + n01 * s;
  const double q01 = n00 * -s + n01 * c;
  const double q11 = n10 * -s + n11 * c;
  return {q00, q01, q01, q11};
}

TEST(Tens2RotateTo, AngleZeroReplacesYXByXY) {
  EXPECT_EQ((Tens2<double>{1.0, 2.0, 99.0, 4.0}.RotateTo(0.0)), (Tens2<double>{1.0, 2.0, 2.0, 4.0}));
  EXPECT_EQ((Tens2<double>{1.0, 2.0, 99.0, 4.0}.RotateTo(-0.0)), (Tens2<double>{1.0, 2.0, 2.0, 4.0}));
}

TEST(Tens2RotateTo, AngleZeroKeepsEveryFiniteTensor) {
  Random random(10);
  for (int i = 0; i < 10000; ++i) {
    const Tens2<double> t{random.finite_double(), random.finite_double(), random.finite_double(),
                          random.finite_double()};
    SCOPED_TRACE(::testing::Message() << "seed 10, case " << i << ", " << show(t));
    EXPECT_EQ(t.RotateTo(0.0), (Tens2<double>{t.xx, t.xy, t.xy, t.yy}));
  }
}

struct RotateCase {
  const char* name;
  Tens2<double> tensor;
  double angle;
  Tens2<double> expected;

  friend void PrintTo(RotateCase const& c, std::ostream* out) { *out << c.name; }
};

class RotateByHand : public ::testing::TestWithParam<RotateCase> {};

// 7u for every unit of the components' sum, here at most 9 (see AgreesWithTheWrittenOutFormulasToSevenRoundings), and
// up to 1.3e-16 more because the double angle misses the exact one by so much: 8.2e-15.
TEST_P(RotateByHand, GivesTheComponentsInTheTurnedAxes) {
  const Tens2<double> q = GetParam().tensor.RotateTo(GetParam().angle);
  constexpr double kBound = 1e-14;
  EXPECT_NEAR(q.xx, GetParam().expected.xx, kBound);
  EXPECT_NEAR(q.xy, GetParam().expected.xy, kBound);
  EXPECT_NEAR(q.yx, GetParam().expected.yx, kBound);
  EXPECT_NEAR(q.yy, GetParam().expected.yy, kBound);
}

// From the written-out formulas, with c = s = sqrt(1/2) at an eighth turn and c = 1/2, s = sqrt(3)/2 at a sixth. Pulled
// along x, the axes turned by +45 degrees see a negative shear. The antisymmetric case: xy' = c^2 xy - s^2 yx, which is
// xy for yx = -xy, whereas the diagonal has the sum of both and stays 0.
// clang-format off
INSTANTIATE_TEST_SUITE_P(SimpleAngles, RotateByHand, ::testing::Values(
    RotateCase{"quarter_turn",        {1.0, 2.0,  2.0, 4.0}, kHalfPi,            { 4.0,  -2.0,  -2.0,   1.0}},
    RotateCase{"quarter_turn_back",   {1.0, 2.0,  2.0, 4.0}, -kHalfPi,           { 4.0,  -2.0,  -2.0,   1.0}},
    RotateCase{"half_turn",           {1.0, 2.0,  2.0, 4.0}, 2 * kHalfPi,        { 1.0,   2.0,   2.0,   4.0}},
    RotateCase{"pull_at_45_degrees",  {1.0, 0.0,  0.0, 0.0}, 0.5 * kHalfPi,      { 0.5,  -0.5,  -0.5,   0.5}},
    RotateCase{"pull_at_minus_45",    {1.0, 0.0,  0.0, 0.0}, -0.5 * kHalfPi,     { 0.5,   0.5,   0.5,   0.5}},
    RotateCase{"shear_at_45_degrees", {0.0, 1.0,  1.0, 0.0}, 0.5 * kHalfPi,      { 1.0,   0.0,   0.0,  -1.0}},
    RotateCase{"hydrostatic",         {3.0, 0.0,  0.0, 3.0}, 0.7,                { 3.0,   0.0,   0.0,   3.0}},
    RotateCase{"yx_read_quarter",     {0.0, 1.0,  5.0, 0.0}, kHalfPi,            { 0.0,  -5.0,  -5.0,   0.0}},
    RotateCase{"yx_read_45_degrees",  {0.0, 1.0,  5.0, 0.0}, 0.5 * kHalfPi,      { 3.0,  -2.0,  -2.0,  -3.0}},
    RotateCase{"antisymmetric",       {0.0, 1.0, -1.0, 0.0}, 0.7,                { 0.0,   1.0,   1.0,   0.0}},
    RotateCase{"pull_at_60_degrees",  {4.0, 0.0,  0.0, 0.0}, 1.0471975511965976, { 1.0, -1.7320508075688772,
                                                                                  -1.7320508075688772,  3.0}}),
    [](auto const& i) { return std::string(i.param.name); });
// clang-format on

TEST(Tens2RotateTo, IsTheMatrixProductBitForBit) {
  Random random(11);
  for (int i = 0; i < 30000; ++i) {
    const Tens2<double> t = i % 2 == 0 ? any_tensor(random) : ordinary_tensor(random, 0);
    const double angle = i % 4 < 2 ? random.any_double() : random.uniform(-10.0, 10.0);
    SCOPED_TRACE(::testing::Message() << "seed 11, case " << i << ", " << show(t) << ", angle " << angle);
    expect_equal_bits(t.RotateTo(angle), rotated(t, angle));
  }
}

TEST(Tens2RotateTo, GivesAnyTensorTheSameOffDiagonalTwice) {
  Random random(12);
  for (int i = 0; i < 10000; ++i) {
    const Tens2<double> t = any_tensor(random);
    const double angle = random.uniform(-10.0, 10.0);
    SCOPED_TRACE(::testing::Message() << "seed 12, case " << i << ", " << show(t) << ", angle " << angle);
    const Tens2<double> q = t.RotateTo(angle);
    EXPECT_TRUE(equal_bits(q.yx, q.xy));
  }
}

/// A tensor that is not symmetric, and the sum of its components' magnitudes.
Tens2<double> unsymmetric_tensor(Random& random) {
  Tens2<double> t = ordinary_tensor(random, 0);
  t.yx = random.uniform(-1.0, 1.0);
  return t;
}
long double sum_of_magnitudes(Tens2<double> const& t) {
  const LongTensor m(t);
  return std::fabs(m.xx) + std::fabs(m.xy) + std::fabs(m.yx) + std::fabs(m.yy);
}

// Each component reaches an entry of the product through two multiplications and two additions, by two of c and s,
// which are good to about half an ulp (1.1u): less than 7u of its magnitude.
TEST(Tens2RotateTo, AgreesWithTheWrittenOutFormulasToSevenRoundings) {
  Random random(13);
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t = unsymmetric_tensor(random);
    const double angle = random.uniform(-10.0, 10.0);
    SCOPED_TRACE(::testing::Message() << "seed 13, case " << i << ", " << show(t) << std::setprecision(17) << ", angle "
                                      << angle);
    const LongTensor m(t);
    const long double c = std::cos(static_cast<long double>(angle));
    const long double s = std::sin(static_cast<long double>(angle));
    const long double bound = 7 * kRoundoff * sum_of_magnitudes(t);
    const Tens2<double> q = t.RotateTo(angle);
    EXPECT_LE(std::fabs(q.xx - (c * c * m.xx + c * s * (m.xy + m.yx) + s * s * m.yy)), bound);
    EXPECT_LE(std::fabs(q.xy - (c * c * m.xy - s * s * m.yx + c * s * (m.yy - m.xx))), bound);
    EXPECT_LE(std::fabs(q.yy - (s * s * m.xx - c * s * (m.xy + m.yx) + c * c * m.yy)), bound);
  }
}

// An error of 7u N in each entry (N: the sum of magnitudes, see above) shifts an eigenvalue by at most 14u N, and the
// trace by 14u N.
TEST(Tens2RotateTo, KeepsTraceAndEigenvaluesOfASymmetricTensor) {
  Random random(14);
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t = ordinary_tensor(random, 0);
    const double angle = random.uniform(-10.0, 10.0);
    SCOPED_TRACE(::testing::Message() << "seed 14, case " << i << ", " << show(t) << std::setprecision(17) << ", angle "
                                      << angle);
    const LongTensor before(t);
    const LongTensor after(t.RotateTo(angle));
    const long double bound = 14 * kRoundoff * sum_of_magnitudes(t);
    EXPECT_LE(std::fabs((after.xx + after.yy) - (before.xx + before.yy)), bound);
    EXPECT_LE(std::fabs(eigenvalues(after).first - eigenvalues(before).first), bound);
    EXPECT_LE(std::fabs(eigenvalues(after).second - eigenvalues(before).second), bound);
  }
}

// The first rotation leaves 7u N in each of four entries, which the second carries into one: 28u N. The rotated
// tensor's magnitudes add up to at most 2N, so that the second rotation contributes 14u N.
TEST(Tens2RotateTo, BackAgainGivesTheSymmetricTensor) {
  Random random(15);
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t = ordinary_tensor(random, 0);
    const double angle = random.uniform(-10.0, 10.0);
    SCOPED_TRACE(::testing::Message() << "seed 15, case " << i << ", " << show(t) << std::setprecision(17) << ", angle "
                                      << angle);
    const LongTensor before(t);
    const LongTensor after(t.RotateTo(angle).RotateTo(-angle));
    const long double bound = 42 * kRoundoff * sum_of_magnitudes(t);
    EXPECT_LE(std::fabs(after.xx - before.xx), bound);
    EXPECT_LE(std::fabs(after.xy - before.xy), bound);
    EXPECT_LE(std::fabs(after.yy - before.yy), bound);
  }
}

// The three operations belong together: axes turned by -theta (the convention's angle runs clockwise) are the principal
// ones. theta, read back from the direction, is good to 7u; an angle off by that puts 14u h into the shear, where h is
// at most N / 2, and the rotation adds 7u N. The values themselves change by the second order of the angle only, but
// those of Principal have 5u N of their own.
TEST(Tens2RotateTo, ByTheMirroredPrincipalAngleGivesThePrincipalValues) {
  Random random(16);
  for (int i = 0; i < 20000; ++i) {
    const Tens2<double> t = ordinary_tensor(random, 0);
    if (t.yy > t.xx && t.yy - t.xx <= 2e-6 * std::max(std::fabs(t.xx), std::fabs(t.yy))) continue;
    SCOPED_TRACE(::testing::Message() << "seed 16, case " << i << ", " << show(t));
    const Vec2<double> dir1 = principal_plane(t).dir1;
    const LongTensor q(t.RotateTo(-std::atan2(dir1.y, dir1.x)));
    const LongTensor p(t.Principal());
    const long double bound = 14 * kRoundoff * sum_of_magnitudes(t);
    EXPECT_LE(std::fabs(q.xx - p.xx), bound);
    EXPECT_LE(std::fabs(q.yy - p.yy), bound);
    EXPECT_LE(std::fabs(q.xy), bound);
  }
}

TEST(Tens2RotateTo, AnInfiniteAngleGivesNan) {
  const Tens2<double> q = Tens2<double>{1.0, 2.0, 2.0, 4.0}.RotateTo(kInfinity);
  EXPECT_TRUE(std::isnan(q.xx) && std::isnan(q.xy) && std::isnan(q.yx) && std::isnan(q.yy));
}

}  // namespace
