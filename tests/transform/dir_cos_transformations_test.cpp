#include <talvo/transform/dir_cos.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iomanip>
#include <limits>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

#include "transform/plain_frames.h"

// What is done with a frame's matrix; how the matrix is set is tested in dir_cos_test.cpp.

namespace {

using namespace talvo::test;
using Talvo::Direction;
using ::testing::ThrowsMessage;

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

const char* const kArcSinMessage = "ArcSin: function value out of range";
const char* const kArcCosMessage = "ArcCos: function value out of range";

double above(double x) { return std::nextafter(x, kInfinity); }

Direction direction(std::int32_t value) { return static_cast<Direction>(value); }

Vector awkward_axis(Random& random) { return random.below(8) == 0 ? Vector{0, 0, 0, 0} : awkward_vector(random); }

Table frame_with(std::initializer_list<std::pair<std::array<std::size_t, 2>, double>> entries) {
  Table m = kUnit;
  for (auto const& [place, value] : entries) m[place[0]][place[1]] = value;
  return m;
}

// ---------------------------------------------------------------- vectors

TEST(DirCosVectors, StayInTheIdentityFrameAndLoseTheirW) {
  const Frame frame;
  EXPECT_TRUE(equal_points(frame.GtoL(Vector{1.5, -2, 3, 4}), {1.5, -2, 3, 0}));
  EXPECT_TRUE(equal_points(frame.LtoG(Vector{1.5, -2, 3, 4}), {1.5, -2, 3, 0}));
}

TEST(DirCosVectors, AreTakenAlongTheLocalAxesAndBack) {
  Frame frame;
  frame.Create({0, 1, 0}, {0, 0, 1});
  EXPECT_EQ(frame.AxisVec(Talvo::X, true), (Vector{0, 1, 0}));
  EXPECT_EQ(frame.AxisVec(Talvo::Y, true), (Vector{0, 0, 1}));
  EXPECT_EQ(frame.AxisVec(Talvo::Z, true), (Vector{1, 0, 0}));
  EXPECT_EQ(frame.GtoL(Vector{1, 2, 3}), (Vector{2, 3, 1}));
  EXPECT_EQ(frame.LtoG(frame.GtoL(Vector{1, 2, 3})), (Vector{1, 2, 3}));
}

// Columns 0 to 2 of the numbered matrix times (1, 2, 3, 4): 1 + 10 + 27 + 52, 2 + 12 + 30 + 56, 3 + 14 + 33 + 60.
TEST(DirCosVectors, TakeTheirWWithRow3IntoLocalAxes) {
  EXPECT_EQ(frame_of(kNumbered).GtoL(Vector{1, 2, 3, 4}), (Vector{90, 100, 110, 0}));
}

// Rows 0 to 2 of the numbered matrix times (1, 2, 3, 4): 1 + 4 + 9 + 16, 5 + 12 + 21 + 32, 9 + 20 + 33 + 48.
TEST(DirCosVectors, TakeTheirWWithColumn3IntoGlobalAxes) {
  EXPECT_EQ(frame_of(kNumbered).LtoG(Vector{1, 2, 3, 4}), (Vector{30, 70, 110, 0}));
}

// A zero w does not shield from an infinity in the fourth product.
TEST(DirCosVectors, MeetAnInfiniteHomogeneousEntryAsNaN) {
  Table m = kUnit;
  m[3][0] = m[1][3] = kInfinity;
  EXPECT_TRUE(equal_points(frame_of(m).GtoL(Vector{1, 2, 3, 0}), {kNan, 2, 3, 0}));
  EXPECT_TRUE(equal_points(frame_of(m).LtoG(Vector{1, 2, 3, 0}), {1, kNan, 3, 0}));
}

TEST(DirCosVectors, AreSummedFromLeftToRight) {
  Random random(31);
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 31, case " << i);
    const Table m = awkward_table(random);
    const Vector v = awkward_vector(random);
    const Frame frame = frame_of(m);
    ASSERT_TRUE(equal_points(frame.GtoL(v), plain::global_to_local(m, v))) << print(m) << print(v);
    ASSERT_TRUE(equal_points(frame.LtoG(v), plain::local_to_global(m, v))) << print(m) << print(v);
  }
}

// The order matters: in any other one the small terms would survive, or another of them.
TEST(DirCosVectors, LoseASmallTermThatComesBetweenLargeOnes) {
  Table m{};
  m[0] = {1e16, 1.0, -1e16, 1.0};
  for (std::size_t r = 0; r < 4; ++r) m[r][0] = m[0][r];
  const Vector ones{1, 1, 1, 1};
  EXPECT_EQ(frame_of(m).LtoG(ones).x, 1.0);
  EXPECT_EQ(frame_of(m).GtoL(ones).x, 1.0);
}

// An orthonormal frame keeps lengths, and there and back gives the vector: three products and two sums each way, on
// components below 2 with entries that are rounded themselves.
TEST(DirCosVectors, ComeBackFromARotation) {
  Random random(32);
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 32, case " << i);
    const Frame frame = frame_of(random_rotation(random));
    const Vector v = random_direction(random);
    for (Vector const& back : {frame.LtoG(frame.GtoL(v)), frame.GtoL(frame.LtoG(v))}) {
      ASSERT_NEAR(back.x, v.x, 20 * kRoundoff);
      ASSERT_NEAR(back.y, v.y, 20 * kRoundoff);
      ASSERT_NEAR(back.z, v.z, 20 * kRoundoff);
      ASSERT_EQ(back.w, 0.0);
    }
  }
}

// ---------------------------------------------------------------- tensors and products of frames

// Small integers: every product and sum is exact, in whatever order, so that the definition can be checked by itself.
using Integers = std::array<std::array<std::int64_t, 4>, 4>;

Integers random_integers(Random& random) {
  Integers m;
  for (auto& row : m) {
    for (auto& entry : row) entry = static_cast<std::int64_t>(random.below(201)) - 100;
  }
  return m;
}

Table exact(Integers const& integers) {
  Table m;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) m[r][c] = static_cast<double>(integers[r][c]);
  }
  return m;
}

/// Entry (r, c): the sum of a(r or i, i or r) · b(i, c), `a` transposed or not.
Integers integer_product(Integers const& a, bool transpose_a, Integers const& b, bool transpose_b) {
  Integers m{};
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) {
      for (std::size_t i = 0; i < 4; ++i) {
        m[r][c] += (transpose_a ? a[i][r] : a[r][i]) * (transpose_b ? b[c][i] : b[i][c]);
      }
    }
  }
  return m;
}

TEST(DirCosProducts, AreExactOnIntegers) {
  Random random(33);
  for (int i = 0; i < 500; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 33, case " << i);
    const Integers m = random_integers(random), n = random_integers(random);
    const Frame frame = frame_of(exact(m)), other = frame_of(exact(n));
    ASSERT_EQ(table_of(frame.Transform(other)), exact(integer_product(m, false, n, false)));
    ASSERT_EQ(table_of(frame.TransformAlt(other)), exact(integer_product(m, true, n, false)));
    const Tensor t = tensor_of(exact(n));
    ASSERT_EQ(table_of(frame.GtoL(t)), exact(integer_product(integer_product(m, true, n, false), false, m, false)));
    ASSERT_EQ(table_of(frame.LtoG(t)), exact(integer_product(integer_product(m, false, n, false), false, m, true)));
  }
}

TEST(DirCosProducts, AreFormedInTheStatedOrderBitForBit) {
  Random random(34);
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 34, case " << i);
    const Table m = awkward_table(random), n = awkward_table(random);
    const Frame frame = frame_of(m), other = frame_of(n);
    ASSERT_TRUE(equal_tables(table_of(frame.Transform(other)), plain::product(m, n))) << print(m);
    ASSERT_TRUE(equal_tables(table_of(frame.TransformAlt(other)), plain::product(plain::transposed(m), n))) << print(m);
    const Tensor t = tensor_of(n);
    ASSERT_TRUE(equal_tables(table_of(frame.GtoL(t)), plain::global_to_local(m, n))) << print(m);
    ASSERT_TRUE(equal_tables(table_of(frame.LtoG(t)), plain::local_to_global(m, n))) << print(m);
  }
}

TEST(DirCosProducts, LeaveTheirOperandsUnchanged) {
  const Frame frame = frame_of(kNumbered);
  Table n = plain::transposed(kNumbered);
  const Frame other = frame_of(n);
  (void)frame.Transform(other);
  (void)frame.TransformAlt(other);
  (void)frame.Rotate(Talvo::X, 1.0);
  (void)frame.Rotate(Vector{1, 2, 3}, 1.0);
  EXPECT_TRUE(equal_tables(table_of(frame), kNumbered));
  EXPECT_TRUE(equal_tables(table_of(other), n));
}

TEST(DirCosProducts, OfAFrameWithItself) {
  Frame frame = frame_of(kNumbered);
  const Table squared = plain::product(kNumbered, kNumbered);
  EXPECT_TRUE(equal_tables(table_of(frame.Transform(frame)), squared));
  EXPECT_TRUE(
      equal_tables(table_of(frame.TransformAlt(frame)), plain::product(plain::transposed(kNumbered), kNumbered)));
  frame = frame.Transform(frame);
  EXPECT_TRUE(equal_tables(table_of(frame), squared));
}

TEST(DirCosProducts, WithTheTransposeGiveTheIdentity) {
  Random random(35);
  const LongTable unit = long_table(kUnit);
  for (int i = 0; i < 500; ++i) {
    const Frame frame = frame_of(random_rotation(random));
    // Three products and two sums of rounded entries of magnitude at most 1.
    ASSERT_LE(distance(table_of(frame.TransformAlt(frame)), unit), 10 * kRoundoff);
  }
}

// v·vᵀ in local axes is that of the local v. (3, 3) stays 1 and the homogeneous entries 0 for a frame of the class.
TEST(DirCosTensors, OfADyadTurnWithItsVector) {
  Frame frame;
  frame.Create({0, 1, 0}, {0, 0, 1});
  const auto dyad = [](Vector const& v) {
    return tensor_of({{{v.x * v.x, v.x * v.y, v.x * v.z, 0},
                       {v.y * v.x, v.y * v.y, v.y * v.z, 0},
                       {v.z * v.x, v.z * v.y, v.z * v.z, 0},
                       {0, 0, 0, 1}}});
  };
  const Vector v{1, 2, 3};
  EXPECT_EQ(frame.GtoL(dyad(v)), dyad({2, 3, 1}));
  EXPECT_EQ(frame.LtoG(dyad({2, 3, 1})), dyad(v));
}

// M·T·Mᵀ against long double, and its inverse: each of the two products adds a few roundings to entries whose terms sum
// to at most 3 in magnitude, then 9.
TEST(DirCosTensors, KeepTheirInvariantsAndComeBack) {
  Random random(36);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 36, case " << i);
    const Frame frame = frame_of(random_rotation(random));
    Table t = kUnit;
    for (std::size_t r = 0; r < 3; ++r) {
      for (std::size_t c = 0; c <= r; ++c) t[r][c] = t[c][r] = random.uniform(-1.0, 1.0);
    }
    const Tensor local = frame.GtoL(tensor_of(t));
    ASSERT_NEAR(local(0, 0) + local(1, 1) + local(2, 2), t[0][0] + t[1][1] + t[2][2], 60 * kRoundoff);
    ASSERT_LE(distance(table_of(frame.LtoG(local)), long_table(t)), 100 * kRoundoff);
    ASSERT_EQ(local(3, 3), 1.0);
    for (int k = 0; k < 3; ++k) {
      ASSERT_EQ(local(3, k), 0.0);
      ASSERT_EQ(local(k, 3), 0.0);
    }
  }
}

TEST(DirCosTensors, OfStressTurnedByAnEighthOfATurn) {
  // Uniaxial tension along global x, seen from axes turned by 45 degrees about z: (1/2, -1/2; -1/2, 1/2).
  const Frame frame = Frame().Rotate(Talvo::Z, kPi / 4);
  Tensor t;
  t(0, 0) = 1.0;
  t(3, 3) = 1.0;
  const Table local = table_of(frame.GtoL(t));
  EXPECT_LE(distance(local, {{{0.5L, -0.5L, 0}, {-0.5L, 0.5L, 0}, {0, 0, 0}}}), 4 * kRoundoff);
}

// ---------------------------------------------------------------- rotation about one of the frame's own axes

TEST(DirCosRotateAxis, AQuarterTurnAboutZ) {
  const Frame frame = Frame().Rotate(Talvo::Z, kHalfPi);
  EXPECT_LE(distance(table_of(frame), {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}), kRoundoff);
}

TEST(DirCosRotateAxis, FollowsTheRightHandRuleAboutEachAxis) {
  const double c = std::cos(0.3), s = std::sin(0.3);
  const auto rotated = [](Direction axis) { return table_of(Frame().Rotate(axis, 0.3)); };
  EXPECT_EQ(rotated(Talvo::X), (Table{{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}}}));
  EXPECT_EQ(rotated(Talvo::Y), (Table{{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}}}));
  EXPECT_EQ(rotated(Talvo::Z), (Table{{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}));
}

TEST(DirCosRotateAxis, AboutARotationalDirectionReturnsAnUnchangedCopy) {
  const Frame frame = frame_of(kNumbered);
  EXPECT_TRUE(equal_tables(table_of(frame.Rotate(Talvo::XX, 1.0)), kNumbered));
}

// An exact copy: a product with the identity would turn -0.0 into 0.0 and an infinity's neighbours into NaN.
TEST(DirCosRotateAxis, AboutAnyOtherDirectionReturnsAnExactCopy) {
  Table m = kNumbered;
  m[0] = {-0.0, 0.0, kInfinity, -0.0};
  m[1] = {kNan, -0.0, -0.0, -kInfinity};
  m[3] = {-0.0, -0.0, -0.0, -0.0};
  for (std::int32_t value : {std::numeric_limits<std::int32_t>::min(), -7, -1, 0, 4, 5, 6, 7, 100,
                             std::numeric_limits<std::int32_t>::max()}) {
    SCOPED_TRACE(value);
    for (double angle : {0.0, 1.0, kInfinity, kNan}) {
      EXPECT_TRUE(equal_tables(table_of(frame_of(m).Rotate(direction(value), angle)), m));
    }
  }
}

TEST(DirCosRotateAxis, IsTheFullProductBitForBit) {
  Random random(37);
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 37, case " << i);
    const Table m = awkward_table(random);
    const Direction axis = direction(static_cast<std::int32_t>(random.below(9)));
    const double angle = random.below(4) == 0 ? random.any_double() : random.uniform(-7.0, 7.0);
    ASSERT_TRUE(equal_tables(table_of(frame_of(m).Rotate(axis, angle)), plain::rotate(m, axis, angle)))
        << print(m) << " axis " << axis << " angle " << std::setprecision(17) << angle;
  }
}

// Each changed entry is m·c ± m'·s with |m|² + |m'|² ≤ 1: sine and cosine within 1 ulp (2 roundoffs), two products and
// a sum give at most 3·√2 + 1 roundoffs, about 5.3.
TEST(DirCosRotateAxis, AgreesWithTheRotationInLongDouble) {
  Random random(38);
  const std::array<std::array<long double, 3>, 3> axes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  for (int i = 0; i < 2000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 38, case " << i);
    const Table m = random_rotation(random);
    const std::size_t k = random.below(3);
    const double angle = random.uniform(-7.0, 7.0);
    const Table turned = table_of(frame_of(m).Rotate(direction(static_cast<std::int32_t>(k) + 1), angle));
    // The frame's own axis: the rotation is multiplied from the right.
    ASSERT_LE(distance(turned, product(long_table(m), quaternion_rotation(axes[k], angle))), 6 * kRoundoff);
    for (std::size_t r = 0; r < 3; ++r) ASSERT_EQ(turned[r][k], m[r][k]) << "the axis itself stays";
  }
}

// ---------------------------------------------------------------- rotation about a vector

TEST(DirCosRotateVector, AboutZIsTheRotationAboutTheAxisZ) {
  const Frame frame = Frame().Rotate(Vector{0, 0, 2}, kHalfPi);
  EXPECT_TRUE(frame == Frame().Rotate(Talvo::Z, kHalfPi));
  EXPECT_LE(distance(table_of(frame), {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}), 2 * kRoundoff);
}

TEST(DirCosRotateVector, ByNoAngleReturnsACopyWhateverTheAxis) {
  const Frame frame = frame_of(kNumbered);
  for (double zero : {0.0, -0.0}) {
    for (Vector const& axis : {Vector{0, 0, 0}, Vector{1, 2, 3}, Vector{kNan, kInfinity, 0}}) {
      EXPECT_TRUE(equal_tables(table_of(frame.Rotate(axis, zero)), kNumbered));
    }
  }
}

TEST(DirCosRotateVector, AboutANullVectorThrows) {
  const char* const message = "rotation about a null vector";
  const Frame frame;
  EXPECT_THAT([&] { frame.Rotate(Vector{0, 0, 0}, 0.5); }, ThrowsMessage<std::logic_error>(message));
  EXPECT_THAT(
      [&] {
        frame.Rotate(Vector{-0.0, 0, -0.0, 5}, 0.5);
      },
      ThrowsMessage<std::logic_error>(message))
      << "w does not make an axis";
  EXPECT_THAT([&] { frame.Rotate(Vector{0, 0, 0}, kNan); }, ThrowsMessage<std::logic_error>(message));
}

TEST(DirCosRotateVector, ThrowsExactlyALogicError) {
  try {
    Frame().Rotate(Vector{0, 0, 0}, 0.5);
    FAIL() << "nothing thrown";
  } catch (std::exception const& error) {
    EXPECT_EQ(typeid(error), typeid(std::logic_error));
  }
}

// The squares decide: below 2^-537 they underflow to 0.
TEST(DirCosRotateVector, CountsAnAxisWhoseSquaresVanishAsNull) {
  const Frame frame;
  EXPECT_THROW(frame.Rotate(Vector{0x1p-538, 1e-200, 0}, 0.5), std::logic_error);
  EXPECT_NO_THROW(frame.Rotate(Vector{0x1p-537, 0, 0}, 0.5));
}

// From the double epsilon on an axis has a direction. A shorter one turns nothing: X·cos(angle) is normalised, which
// mirrors x and y where the cosine is negative.
TEST(DirCosRotateVector, TurnsAboutAnAxisOfTheDoubleEpsilon) {
  const double epsilon = 2.220446049250313e-16;
  const Frame turned = Frame().Rotate(Vector{0, 0, epsilon}, 3.0);
  EXPECT_TRUE(turned == Frame().Rotate(Talvo::Z, 3.0));
  const Frame mirrored = Frame().Rotate(Vector{0, 0, std::nextafter(epsilon, 0.0)}, 3.0);
  // c · (1 / |c|) with rounding.
  EXPECT_LE(distance(table_of(mirrored), {{{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}}}), 2 * kRoundoff);
}

TEST(DirCosRotateVector, TakesTheAngleFromTheLengthOfARotationVector) {
  const Frame frame = frame_of(kNumbered);
  EXPECT_TRUE(equal_tables(table_of(frame.Rotate(Vector{1, 2, 2, 100})), table_of(frame.Rotate(Vector{1, 2, 2}, 3.0))))
      << "w is not part of the length";
}

TEST(DirCosRotateVector, ByANullRotationVectorReturnsACopy) {
  const Frame frame = frame_of(kNumbered);
  EXPECT_TRUE(equal_tables(table_of(frame.Rotate(Vector{0, 0, 0, 3})), kNumbered));
  EXPECT_TRUE(equal_tables(table_of(frame.Rotate(Vector{-0.0, 0, 0})), kNumbered));
  EXPECT_TRUE(equal_tables(table_of(frame.Rotate(Vector{1e-200, 0, 0})), kNumbered)) << "its length underflows to 0";
}

// Row 3 and column 3 do not survive, and the result's z axis is x × y whatever it was.
TEST(DirCosRotateVector, BuildsANewFrameOfUnitAxes) {
  Table m = kNumbered;
  const Table turned = table_of(frame_of(m).Rotate(Vector{1, 1, 1}, 0.5));
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(equal_bits(turned[3][i], 0.0));
    EXPECT_TRUE(equal_bits(turned[i][3], 0.0));
    const double length = std::hypot(turned[0][i], turned[1][i], turned[2][i]);
    EXPECT_NEAR(length, 1.0, 4 * kRoundoff);
  }
  m[0][2] = m[1][2] = m[2][2] = 77.0;
  EXPECT_TRUE(equal_tables(table_of(frame_of(m).Rotate(Vector{1, 1, 1}, 0.5)), turned));
}

TEST(DirCosRotateVector, FollowsRodriguesFormulaBitForBit) {
  Random random(39);
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 39, case " << i);
    const Table m = awkward_table(random);
    const Vector axis = awkward_axis(random);
    const double angle = random.below(4) == 0 ? random.any_double() : random.uniform(-7.0, 7.0);
    SCOPED_TRACE(print(m) + print(axis) + std::to_string(angle));
    const auto outcome = [](auto&& rotated) -> std::optional<Table> {
      try {
        return rotated();
      } catch (std::logic_error const&) {
        return std::nullopt;
      }
    };
    const auto expect_same = [](std::optional<Table> const& actual, std::optional<Table> const& expected) {
      ASSERT_EQ(actual.has_value(), expected.has_value());
      if (actual) {
        ASSERT_TRUE(equal_tables(*actual, *expected));
      }
    };
    const Frame frame = frame_of(m);
    expect_same(outcome([&] { return table_of(frame.Rotate(axis, angle)); }),
                outcome([&] { return plain::rotate(m, axis, angle); }));
    expect_same(outcome([&] { return table_of(frame.Rotate(axis)); }), outcome([&] { return plain::rotate(m, axis); }));
    if (HasFatalFailure()) return;
  }
}

// Rodrigues' formula adds at most about 40 roundoffs to a component (the unit axis 2.5, a cross product 8, two factors
// of the last term and the sums), normalisation a few, and z = x × y takes those of both.
TEST(DirCosRotateVector, AgreesWithTheQuaternionInLongDouble) {
  Random random(40);
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 40, case " << i);
    const Table m = random_rotation(random);
    const Vector axis = random_direction(random) * std::ldexp(1.0, static_cast<int>(random.below(60)) - 30);
    const double angle = random.uniform(-7.0, 7.0);
    // The vector is a global one: the rotation is multiplied from the left.
    const LongTable expected = product(quaternion_rotation({axis.x, axis.y, axis.z}, angle), long_table(m));
    ASSERT_LE(distance(table_of(frame_of(m).Rotate(axis, angle)), expected), 64 * kRoundoff);
  }
}

// ---------------------------------------------------------------- rotation angles

LongTable about(std::size_t axis, long double angle) {
  std::array<long double, 3> k{};
  k[axis] = 1;
  return quaternion_rotation(k, angle);
}

/// Rz(-gamma) · Ry(-beta) · Rx(-alpha)
LongTable composed(Vector const& angles) {
  return product(about(2, -static_cast<long double>(angles.z)),
                 product(about(1, -static_cast<long double>(angles.y)), about(0, -static_cast<long double>(angles.x))));
}

Vector angles_of(Table const& m) { return frame_of(m).RotationAngle(); }

TEST(DirCosRotationAngle, IsZeroForTheIdentity) { EXPECT_TRUE(equal_points(angles_of(kUnit), {0, 0, 0, 0})); }

TEST(DirCosRotationAngle, GivesEachOfTheThreeTurns) {
  const auto angles = [](Direction axis, double angle) { return Frame().Rotate(axis, angle).RotationAngle(); };
  // The frame turns by minus the angles. acos and asin of a sine or cosine within 1 ulp: at 0.5 the slope of acos is
  // 1 / sin(0.5), about 2.
  EXPECT_NEAR(angles(Talvo::X, -0.5).x, 0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::X, 0.5).x, -0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::Y, -0.5).y, 0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::Y, 0.5).y, -0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::Z, -0.5).z, 0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::Z, 0.5).z, -0.5, 8 * kRoundoff);
  EXPECT_NEAR(angles(Talvo::X, -2.5).x, 2.5, 8 * kRoundoff) << "beyond a quarter turn";
  EXPECT_NEAR(angles(Talvo::Z, 2.5).z, -2.5, 8 * kRoundoff);
}

// A cosine of cos(beta) = cb has the relative error of beta times tan(beta), about 2·u/cb², and an entry divided by it
// inherits that; acos turns an error e of its argument into at most √(2e). Far from 0 and pi it does much better.
TEST(DirCosRotationAngle, ReproducesTheFrame) {
  Random random(41);
  int well_conditioned = 0;
  for (int i = 0; i < 8000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 41, case " << i);
    const Table m = random_rotation(random);
    const double cb = std::hypot(m[0][0], m[1][0]);
    if (cb < 1e-3) continue;
    const Vector angles = angles_of(m);
    ASSERT_EQ(angles.w, 0.0);
    ASSERT_LE(std::fabs(angles.x), kPi);
    ASSERT_LE(std::fabs(angles.y), kHalfPi);
    ASSERT_LE(std::fabs(angles.z), kPi);
    const double error = distance(m, composed(angles));
    const double argument_error = 8 * kRoundoff / (cb * cb);
    ASSERT_LE(error, 2 * std::sqrt(2 * argument_error)) << print(m);
    const double slope = std::max(1 / std::fabs(std::sin(angles.x)), 1 / std::fabs(std::sin(angles.z)));
    if (slope > 10) continue;
    ++well_conditioned;
    ASSERT_LE(error, 2 * (slope + 1) * argument_error) << print(m);
  }
  EXPECT_GT(well_conditioned, 5000);
}

TEST(DirCosRotationAngle, FollowsItsStepsBitForBit) {
  Random random(42);
  int thrown = 0;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 42, case " << i);
    Table m = awkward_table(random);
    // Now and then next to the degenerate case, and out of reach by little.
    if (random.below(4) == 0) m[2][0] = random.near(random.below(2) == 0 ? 1.0 : 1.000001);
    if (random.below(4) == 0) m[random.below(3)][random.below(3)] = random.uniform(-1.000002, 1.000002);
    SCOPED_TRACE(print(m));
    std::optional<std::string> expected_message;
    Vector expected;
    try {
      expected = plain::rotation_angle(m);
    } catch (std::runtime_error const& error) {
      expected_message = error.what();
      ++thrown;
    }
    if (expected_message) {
      ASSERT_THAT([&] { angles_of(m); }, ThrowsMessage<std::runtime_error>(*expected_message));
    } else {
      ASSERT_TRUE(equal_points(angles_of(m), expected));
    }
  }
  EXPECT_GT(thrown, 1000);
}

TEST(DirCosRotationAngle, ToleratesASineALittleAboveOne) {
  EXPECT_EQ(angles_of(frame_with({{{2, 0}, 1.0000005}})).y, kHalfPi);
  EXPECT_EQ(angles_of(frame_with({{{2, 0}, -1.0000005}})).y, -kHalfPi);
  EXPECT_THAT([] { angles_of(frame_with({{{2, 0}, 1.00001}})); }, ThrowsMessage<std::runtime_error>(kArcSinMessage));
  EXPECT_THAT([] { angles_of(frame_with({{{2, 0}, -1.00001}})); }, ThrowsMessage<std::runtime_error>(kArcSinMessage));
}

// One of the entries that a sine or a cosine is taken from, all others being those of the identity (cos beta is 1).
struct Reach {
  const char* name;
  std::size_t row, column;
  const char* message;
  bool degenerate;

  friend std::ostream& operator<<(std::ostream& out, Reach const& reach) { return out << reach.name; }
};

class DirCosReach : public ::testing::TestWithParam<Reach> {
 protected:
  Table with(double value) const {
    Table m = kUnit;
    // In the degenerate case cos beta is about 6e-17.
    if (GetParam().degenerate) m[2][0] = 1.0;
    m[GetParam().row][GetParam().column] = value;
    return m;
  }
};

TEST_P(DirCosReach, EndsBeyond1_000001) {
  for (double sign : {1.0, -1.0}) {
    const double bound = sign * 1.000001;
    EXPECT_TRUE(equal_points(angles_of(with(bound)), plain::rotation_angle(with(sign))));
    const double beyond = sign * above(1.000001);
    EXPECT_THAT([&] { angles_of(with(beyond)); }, ThrowsMessage<std::runtime_error>(GetParam().message));
    EXPECT_THAT([&] { angles_of(with(sign * kInfinity)); }, ThrowsMessage<std::runtime_error>(GetParam().message));
  }
}

TEST_P(DirCosReach, ThrowsExactlyARuntimeError) {
  try {
    angles_of(with(1.00001));
    FAIL() << "nothing thrown";
  } catch (std::exception const& error) {
    EXPECT_EQ(typeid(error), typeid(std::runtime_error));
  }
}

TEST_P(DirCosReach, DoesNotRefuseNaN) { EXPECT_NO_THROW(angles_of(with(kNan))); }

INSTANTIATE_TEST_SUITE_P(Entries, DirCosReach,
                         ::testing::Values(Reach{"sine_of_beta", 2, 0, kArcSinMessage, false},
                                           Reach{"sine_of_alpha", 2, 1, kArcSinMessage, false},
                                           Reach{"cosine_of_alpha", 2, 2, kArcCosMessage, false},
                                           Reach{"sine_of_gamma", 1, 0, kArcSinMessage, false},
                                           Reach{"cosine_of_gamma", 0, 0, kArcCosMessage, false},
                                           Reach{"degenerate_sine", 0, 1, kArcSinMessage, true},
                                           Reach{"degenerate_cosine", 1, 1, kArcCosMessage, true}),
                         [](auto const& reach) { return std::string(reach.param.name); });

// Of several entries out of reach the first in the order sin beta, sin alpha, cos alpha, sin gamma, cos gamma counts.
TEST(DirCosRotationAngle, ReportsTheFirstEntryOutOfReach) {
  EXPECT_THAT(
      [] {
        angles_of(frame_with({{{2, 0}, 2}, {{2, 2}, 2}}));
      },
      ThrowsMessage<std::runtime_error>(kArcSinMessage));
  EXPECT_THAT(
      [] {
        angles_of(frame_with({{{2, 1}, 2}, {{2, 2}, 2}}));
      },
      ThrowsMessage<std::runtime_error>(kArcSinMessage));
  EXPECT_THAT(
      [] {
        angles_of(frame_with({{{2, 2}, 2}, {{1, 0}, 2}}));
      },
      ThrowsMessage<std::runtime_error>(kArcCosMessage));
  EXPECT_THAT(
      [] {
        angles_of(frame_with({{{1, 0}, 2}, {{0, 0}, 2}}));
      },
      ThrowsMessage<std::runtime_error>(kArcSinMessage));
  EXPECT_THAT(
      [] {
        angles_of(frame_with({{{2, 0}, 1}, {{0, 1}, 2}, {{1, 1}, 2}}));
      },
      ThrowsMessage<std::runtime_error>(kArcSinMessage));
}

// The entries that the other case reads may hold anything.
TEST(DirCosRotationAngle, LooksOnlyAtTheEntriesOfItsCase) {
  EXPECT_NO_THROW(angles_of(frame_with({{{0, 1}, 9}, {{1, 1}, 9}, {{0, 2}, 9}, {{1, 2}, 9}})));
  EXPECT_NO_THROW(angles_of(frame_with({{{2, 0}, 1}, {{2, 1}, 9}, {{2, 2}, 9}, {{1, 0}, 9}, {{0, 0}, 9}})));
}

// beta = ±pi/2: M = Rz(-gamma)·Ry(∓pi/2), so that M(0, 1) = sin gamma and M(1, 1) = cos gamma.
TEST(DirCosRotationAngle, PutsTheWholeTurnIntoGammaWhereCosBetaVanishes) {
  for (double beta : {kHalfPi, -kHalfPi}) {
    for (double gamma : {0.0, 0.7, -0.7, 2.5, -2.5}) {
      SCOPED_TRACE(::testing::Message() << "beta " << beta << ", gamma " << gamma);
      // A turn about x by 0.4 comes first; the two turns are about one line.
      for (double alpha : {0.0, 0.4}) {
        const Vector given{alpha, beta, gamma};
        const Table m = rounded(composed(given));
        const Vector angles = angles_of(m);
        EXPECT_TRUE(equal_bits(angles.x, 0.0));
        EXPECT_EQ(angles.y, beta);
        EXPECT_NEAR(angles.z, beta > 0 ? gamma + alpha : gamma - alpha, 16 * kRoundoff);
        EXPECT_LE(distance(m, composed(angles)), 32 * kRoundoff);
      }
    }
  }
}

// cos(asin(u)) is about √(2·(1 - u)): 1.5e-8 for the largest double below 1, far above 1e-10, and 6e-17 for 1.
TEST(DirCosRotationAngle, IsDegenerateFromOneOn) {
  const Table degenerate = frame_with({{{2, 0}, 1.0}, {{0, 1}, 0.6}, {{1, 1}, 0.8}});
  EXPECT_EQ(angles_of(degenerate).z, std::acos(0.8));
  EXPECT_TRUE(equal_bits(angles_of(degenerate).x, 0.0));

  const double largest = 1.0 - 0x1p-53;
  const double cb = std::cos(std::asin(largest));
  ASSERT_GT(cb, 1e-10);
  const Table not_yet = frame_with(
      {{{2, 0}, largest}, {{0, 1}, 0.6}, {{1, 1}, 0.8}, {{2, 1}, -cb}, {{2, 2}, 0}, {{1, 0}, cb}, {{0, 0}, 0}});
  EXPECT_TRUE(equal_points(angles_of(not_yet), {kHalfPi, std::asin(largest), -kHalfPi, 0}));
}

// The sign comes from the sine, whose -0.0 is not negative.
TEST(DirCosRotationAngle, GivesPlusPiUnlessTheSineIsNegative) {
  const auto half_turn = [](double m21, double m10) {
    return angles_of(frame_with({{{2, 2}, -1}, {{0, 0}, -1}, {{2, 1}, m21}, {{1, 0}, m10}}));
  };
  EXPECT_TRUE(equal_points(half_turn(0.0, 0.0), {kPi, 0, kPi, 0}));
  EXPECT_TRUE(equal_points(half_turn(-0.0, -0.0), {kPi, 0, kPi, 0}));
  const double least = std::numeric_limits<double>::denorm_min();
  EXPECT_TRUE(equal_points(half_turn(least, -least), {-kPi, 0, kPi, 0}));
  EXPECT_TRUE(equal_points(half_turn(-least, least), {kPi, 0, -kPi, 0}));
}

// ---------------------------------------------------------------- axes as vectors

TEST(DirCosAxisVec, IsAColumnOrARowWithoutItsFourthEntry) {
  const Frame frame = frame_of(kNumbered);
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::X, true), {1, 5, 9, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::Y, true), {2, 6, 10, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::Z, true), {3, 7, 11, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::X, false), {1, 2, 3, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::Y, false), {5, 6, 7, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::Z, false), {9, 10, 11, 0}));
}

TEST(DirCosAxisVec, ReadsTheHomogeneousColumnOrRowForTheNextDirection) {
  const Frame frame = frame_of(kNumbered);
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::XX, true), {4, 8, 12, 0}));
  EXPECT_TRUE(equal_points(frame.AxisVec(Talvo::XX, false), {13, 14, 15, 0}));
}

// No other value reaches an entry, or anything around the matrix: its neighbours in memory are not 0 here.
TEST(DirCosAxisVec, IsNullForAnyOtherDirection) {
  const Frame frame = frame_of(kNumbered);
  const std::array<Frame, 3> frames{frame, frame, frame};
  for (std::int32_t value :
       {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::min() + 1, -1000, -24, -8, -7, -3,
        -2, -1, 0, 5, 6, 7, 8, 9, 24, 25, 1000, std::numeric_limits<std::int32_t>::max()}) {
    for (bool column : {true, false}) {
      SCOPED_TRACE(::testing::Message() << value << (column ? " column" : " row"));
      EXPECT_TRUE(equal_points(frames[1].AxisVec(direction(value), column), {0, 0, 0, 0}));
    }
  }
}

TEST(DirCosAxisVec, KeepsEveryKindOfNumber) {
  Table m = kNumbered;
  m[0][1] = -0.0;
  m[1][1] = kNan;
  m[2][1] = -kInfinity;
  EXPECT_TRUE(equal_points(frame_of(m).AxisVec(Talvo::Y, true), {-0.0, kNan, -kInfinity, 0}));
}

}  // namespace
