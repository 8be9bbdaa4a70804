#include <talvo/geometry/orientation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>

#include "geometry/coordinates.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using talvo::test::Coordinates;
using talvo::test::integer;
using talvo::test::integer_point3;
using talvo::test::print;
using talvo::test::Random;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double square(double x) { return x * x; }

TEST(IsHorizontal, IsStrictlyCompared) {
  EXPECT_TRUE(Talvo::IsHorizontal({1, 0, 0.5}, 1.0));
  EXPECT_FALSE(Talvo::IsHorizontal({1, 0, 2}, 1.0));
  EXPECT_FALSE(Talvo::IsVertical({0, 0, 1}, 0.0));  // 0 > 0 fails
}

/// One of the four tests. Each compares the part along an axis (or in the plane) with the rest of the direction.
struct Orientation {
  const char* name;
  bool (*holds)(Vec3<double> const&, double);
  bool (*literal)(double x, double y, double z, double k);
  Vec3<double> along;   ///< passes with every ratio but 0
  Vec3<double> across;  ///< passes with none

  friend std::ostream& operator<<(std::ostream& out, Orientation const& row) { return out << row.name; }
};

// The squares are products, as optimising compilers make them of a power with the exponent 2.
const Orientation kOrientations[] = {
    {"IsHorizontal",
     Talvo::IsHorizontal,
     [](double x, double y, double z, double k) { return square(k * y) + square(k * x) > square(z); },
     {3, 4, 0},
     {0, 0, 5}},
    {"IsVertical",
     Talvo::IsVertical,
     [](double x, double y, double z, double k) { return square(k * z) > square(y) + square(x); },
     {0, 0, 5},
     {3, 4, 0}},
    {"IsGlobalX",
     Talvo::IsGlobalX,
     [](double x, double y, double z, double k) { return square(k * x) > square(z) + square(y); },
     {5, 0, 0},
     {0, 3, 4}},
    {"IsGlobalY",
     Talvo::IsGlobalY,
     [](double x, double y, double z, double k) { return square(k * y) > square(z) + square(x); },
     {0, 5, 0},
     {3, 0, 4}},
};

class OrientationTest : public ::testing::TestWithParam<Orientation> {
 protected:
  static bool holds(Vec3<double> const& v, double ratio) { return GetParam().holds(v, ratio); }
  static bool literal(Vec3<double> const& v, double ratio) { return GetParam().literal(v.x, v.y, v.z, ratio); }
};

INSTANTIATE_TEST_SUITE_P(Geometry, OrientationTest, ::testing::ValuesIn(kOrientations),
                         [](auto const& row) { return std::string(row.param.name); });

TEST_P(OrientationTest, HoldsAlongAndNotAcross) {
  for (const double ratio : {1e-10, 0.5, 1.0, 1e10, -1.0}) {
    EXPECT_TRUE(holds(GetParam().along, ratio)) << ratio;
    EXPECT_FALSE(holds(GetParam().across, ratio)) << ratio;
  }
}

// `along` and `across` have the same length and are perpendicular: their sum stands at 45 degrees to the axis.
TEST_P(OrientationTest, TheBorderOfRatioOneIsAt45DegreesAndOutside) {
  const Vec3<double> border = GetParam().along + GetParam().across;
  EXPECT_FALSE(holds(border, 1.0));
  EXPECT_TRUE(holds(border, std::nextafter(1.0, 2.0)));
  EXPECT_FALSE(holds(border, std::nextafter(1.0, 0.0)));
  EXPECT_TRUE(holds(GetParam().along * std::nextafter(1.0, 2.0) + GetParam().across, 1.0));
  EXPECT_FALSE(holds(GetParam().along * std::nextafter(1.0, 0.0) + GetParam().across, 1.0));
}

TEST_P(OrientationTest, NothingPassesWithRatioZero) {
  Random random(1);
  for (int i = 0; i < 1000; ++i) EXPECT_FALSE(holds(integer_point3(random, 3), i % 2 == 0 ? 0.0 : -0.0));
}

TEST_P(OrientationTest, TheNullVectorIsNone) {
  for (const double ratio : {0.0, 1.0, 1e300, kInfinity, kNan}) EXPECT_FALSE(holds({0, 0, 0}, ratio)) << ratio;
}

TEST_P(OrientationTest, NanIsFalse) {
  EXPECT_FALSE(holds({kNan, 1, 1}, 1e3));
  EXPECT_FALSE(holds({1, kNan, 1}, 1e3));
  EXPECT_FALSE(holds({1, 1, kNan}, 1e3));
  EXPECT_FALSE(holds(GetParam().along, kNan));
}

// The null components of `along` become 0 * infinity, NaN, where more than one component is multiplied by the ratio.
TEST_P(OrientationTest, AnInfiniteRatioPassesAnythingFiniteWithNoNullComponent) {
  EXPECT_TRUE(holds({1e-300, 1e-300, 1e-300}, kInfinity));
  EXPECT_TRUE(holds({-1, 2, -3}, -kInfinity));
}

TEST_P(OrientationTest, TheHomogeneousComponentIsIgnored) {
  Vec3<double> along = GetParam().along;
  Vec3<double> across = GetParam().across;
  for (const double w : {1e300, kNan}) {
    along.w = across.w = w;
    EXPECT_TRUE(holds(along, 1.0));
    EXPECT_FALSE(holds(across, 1.0));
  }
}

TEST_P(OrientationTest, SignsDoNotMatter) {
  Random random(2);
  for (int i = 0; i < 10'000; ++i) {
    const Vec3<double> v = integer_point3(random, 4);
    const double ratio = random.uniform(0.0, 3.0);
    const bool expected = holds(v, ratio);
    ASSERT_EQ(holds(v * -1.0, ratio), expected) << print(v) << ", ratio " << ratio;
    ASSERT_EQ(holds({-v.x, v.y, v.z}, ratio), expected) << print(v) << ", ratio " << ratio;
    ASSERT_EQ(holds({v.x, -v.y, v.z}, -ratio), expected) << print(v) << ", ratio " << ratio;
  }
}

// Rounding is monotone, so that a larger ratio never makes the left side smaller.
TEST_P(OrientationTest, ALargerRatioIsMoreLenient) {
  Random random(3);
  for (int i = 0; i < 20'000; ++i) {
    Coordinates coordinate(random);
    const Vec3<double> v = coordinate.point3();
    const double ratio = random.uniform(0.0, 2.0);
    const double larger = ratio + random.uniform(0.0, 1.0);
    ASSERT_TRUE(holds(v, larger) || !holds(v, ratio)) << "case " << i << ' ' << print(v) << ", ratio " << ratio;
  }
}

// Small integers and quarters: nothing is rounded, whatever the order of the operations.
TEST_P(OrientationTest, IsExactOnIntegers) {
  Random random(4);
  int positive = 0;
  for (int i = 0; i < 50'000; ++i) {
    const Vec3<double> v = integer_point3(random, 20);
    const double quarters = integer(random, 12);
    const auto inside = [&](double along, double across) { return quarters * quarters * along > 16.0 * across; };
    // The squared part along the named axis, and across it; the plane has two components along it.
    const double length2 = v.x * v.x + v.y * v.y + v.z * v.z;
    const double axis = v.x * GetParam().along.x + v.y * GetParam().along.y + v.z * GetParam().along.z;
    const double axis2 = axis * axis / 25.0;
    const bool plane = GetParam().holds == Talvo::IsHorizontal;
    const bool expected = plane ? inside(v.x * v.x + v.y * v.y, v.z * v.z) : inside(axis2, length2 - axis2);
    positive += expected ? 1 : 0;
    ASSERT_EQ(holds(v, quarters * 0.25), expected) << print(v) << ", ratio " << quarters << " / 4";
  }
  EXPECT_GT(positive, 10'000);
  EXPECT_LT(positive, 40'000);
}

TEST_P(OrientationTest, FollowsItsFormulaForAnyNumbers) {
  Random random(5);
  for (int i = 0; i < 200'000; ++i) {
    Coordinates coordinate(random);
    const Vec3<double> v = coordinate.point3();
    const double ratio = random.below(2) == 0 ? random.any_double() : random.uniform(-2.0, 2.0);
    ASSERT_EQ(holds(v, ratio), literal(v, ratio)) << "case " << i << ' ' << print(v) << ", ratio " << ratio;
  }
}

// Within a few units of the last place of the border each rounding decides: products in another order, or a power
// where a product belongs, give the other answer now and then.
TEST_P(OrientationTest, FollowsItsFormulaAtTheBorder) {
  Random random(6);
  int positive = 0;
  constexpr int kCases = 400'000;
  for (int i = 0; i < kCases; ++i) {
    const Vec3<double> v{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
    const bool plane = GetParam().holds == Talvo::IsHorizontal;
    const double axis =
        plane ? v.z : (v.x * GetParam().along.x + v.y * GetParam().along.y + v.z * GetParam().along.z) / 5;
    const double rest = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z - axis * axis);
    const double border = plane ? std::fabs(axis) / rest : rest / std::fabs(axis);
    const double ratio = random.near(border, 3);
    positive += literal(v, ratio) ? 1 : 0;
    ASSERT_EQ(holds(v, ratio), literal(v, ratio)) << "case " << i << ' ' << print(v) << ", border " << border;
  }
  EXPECT_GT(positive, kCases / 4);
  EXPECT_LT(positive, kCases * 3 / 4);
}

// (sin θ cos φ, sin θ sin φ, cos θ) is θ from the Z axis: vertical while tan θ < ratio, horizontal while cot θ < ratio.
TEST(Orientation, IsABoundOnTheAngleToTheZAxis) {
  Random random(7);
  for (int i = 0; i < 20'000; ++i) {
    const double theta = random.uniform(0.001, 1.57);
    const double phi = random.uniform(-3.0, 3.0);
    const double ratio = random.uniform(0.0, 5.0);
    const double length = random.uniform(0.1, 1000.0);
    const Vec3<double> v =
        Vec3<double>{std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)} * length;
    // The few roundings of v move the angle by less than 1e-15; nearer than 1e-12 the case says nothing.
    if (std::fabs(std::atan(ratio) - theta) > 1e-12) {
      ASSERT_EQ(Talvo::IsVertical(v, ratio), theta < std::atan(ratio)) << "case " << i << ' ' << print(v);
    }
    if (std::fabs(std::atan2(1.0, ratio) - theta) > 1e-12) {
      ASSERT_EQ(Talvo::IsHorizontal(v, ratio), theta > std::atan2(1.0, ratio)) << "case " << i << ' ' << print(v);
    }
  }
}

TEST(Orientation, TheThreeAxesAreOneTestWithAxesExchanged) {
  Random random(8);
  for (int i = 0; i < 50'000; ++i) {
    Coordinates coordinate(random);
    const double a = coordinate();
    const double b = coordinate();
    const double c = coordinate();
    const double ratio = random.uniform(0.0, 2.0);
    const bool expected = Talvo::IsVertical({a, b, c}, ratio);
    ASSERT_EQ(Talvo::IsGlobalX({c, a, b}, ratio), expected) << "case " << i << ' ' << print({a, b, c});
    ASSERT_EQ(Talvo::IsGlobalY({b, c, a}, ratio), expected) << "case " << i << ' ' << print({a, b, c});
  }
}

}  // namespace
