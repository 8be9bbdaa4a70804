#include <talvo/geometry/circle.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/bits.h"
#include "support/random.h"

namespace {

using Talvo::CircleCentre;
using talvo::test::Coordinates;
using talvo::test::cross;
using talvo::test::dot;
using talvo::test::error_of;
using talvo::test::Exact;
using talvo::test::exact;
using talvo::test::integer_point2;
using talvo::test::narrowed;
using talvo::test::Random;
using talvo::test::same_bits;

using Point = Vec2<double>;
template <class T>
using Triangle = std::array<Vec2<T>, 3>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kOnALine = 1e-10;

template <class T>
constexpr Vec2<T> kUntouched{T{11}, T{22}};

template <class T>
std::string show(Triangle<T> const& points) {
  std::ostringstream out;
  out << std::setprecision(17);
  for (auto const& [x, y] : points) out << '(' << x << ", " << y << ") ";
  return out.str();
}

template <class T>
bool same_point(Vec2<T> const& a, Vec2<T> const& b) {
  return same_bits(a.x, b.x) && same_bits(a.y, b.y);
}

/// The lengths of the sides, as rounded in T.
template <class T>
struct Sides {
  T bc, ab, ca;
  explicit Sides(Triangle<T> const& p) : bc(length(p[1], p[2])), ab(length(p[0], p[1])), ca(length(p[2], p[0])) {}

 private:
  static T length(Vec2<T> const& from, Vec2<T> const& to) {
    const T dx = to.x - from.x;
    const T dy = to.y - from.y;
    return std::sqrt(dx * dx + dy * dy);
  }
};

template <class T>
int chosen_case(Sides<T> const& s) {
  if (!(s.ab > s.bc) && s.bc > s.ca) return 1;
  return s.ab > s.bc && s.ab > s.ca ? 2 : 3;
}

/// One of the three formulas, whether or not the sides select it.
template <class T>
bool centre_by_case(int which, Triangle<T> const& p, Vec2<T>& centre) {
  const auto [x0, y0] = p[0];
  const auto [x1, y1] = p[1];
  const auto [x2, y2] = p[2];
  const T dy21 = y2 - y1, dy02 = y0 - y2, dy10 = y1 - y0;
  const T dx21 = x2 - x1, dx10 = x1 - x0, dx02 = x0 - x2;
  constexpr T half = T{0.5};
  const T d = which == 1   ? dx10 * dy02 - dy10 * dx02
              : which == 2 ? dy21 * dx02 - dx21 * dy02
                           : dy10 * dx21 - dx10 * dy21;
  if (std::fabs(static_cast<double>(d)) < kOnALine) return false;
  if (which == 1) {
    const T t = (dx10 * dx21 + dy10 * dy21) / d;
    centre = {(x0 + x2 - t * dy02) * half, (y2 + y0 + t * dx02) * half};
  } else if (which == 2) {
    const T t = (dx10 * dx02 + dy10 * dy02) / d;
    centre = {(x1 + x2 - t * dy21) * half, (y1 + y2 + t * dx21) * half};
  } else {
    const T t = (dx21 * dx02 + dy21 * dy02) / d;
    centre = {(x1 + x0 - t * dy10) * half, (y1 + y0 + t * dx10) * half};
  }
  return true;
}

template <class T>
bool literal_centre(Triangle<T> const& p, Vec2<T>& centre) {
  return centre_by_case(chosen_case(Sides<T>(p)), p, centre);
}

template <class T>
void expect_literal(Triangle<T> const& p, int number) {
  Vec2<T> expected = kUntouched<T>;
  Vec2<T> actual = kUntouched<T>;
  const bool found = literal_centre(p, expected);
  ASSERT_EQ(CircleCentre(p[0], p[1], p[2], actual), found) << "case " << number << ' ' << show(p);
  ASSERT_TRUE(same_point(actual, expected))
      << "case " << number << ' ' << show(p) << " gives " << show<T>({actual, expected, kUntouched<T>});
}

template <class T>
void expect_centre(Triangle<T> const& p, Vec2<T> const& expected) {
  Vec2<T> centre = kUntouched<T>;
  EXPECT_TRUE(CircleCentre(p[0], p[1], p[2], centre)) << show(p);
  EXPECT_EQ(centre, expected) << show(p) << " gives " << centre.x << ", " << centre.y;
}

template <class T>
void expect_refused(Triangle<T> const& p) {
  Vec2<T> centre = kUntouched<T>;
  EXPECT_FALSE(CircleCentre(p[0], p[1], p[2], centre)) << show(p);
  EXPECT_TRUE(same_point(centre, kUntouched<T>)) << show(p);
}

template <class T>
class CircleCentreTest : public ::testing::Test {};
using Precisions = ::testing::Types<double, float>;
TYPED_TEST_SUITE(CircleCentreTest, Precisions);

TYPED_TEST(CircleCentreTest, OfARightTriangleInEachOfTheThreeCases) {
  using T = TypeParam;
  const Triangle<T> bc{{{0, 0}, {2, 0}, {0, 2}}};
  const Triangle<T> ab{{{2, 0}, {0, 2}, {0, 0}}};
  const Triangle<T> ca{{{0, 2}, {0, 0}, {2, 0}}};
  EXPECT_EQ(chosen_case(Sides<T>(bc)), 1);
  EXPECT_EQ(chosen_case(Sides<T>(ab)), 2);
  EXPECT_EQ(chosen_case(Sides<T>(ca)), 3);
  expect_centre<T>(bc, {1, 1});
  expect_centre<T>(ab, {1, 1});
  expect_centre<T>(ca, {1, 1});
}

TYPED_TEST(CircleCentreTest, OfObtuseAndAcuteTriangles) {
  using T = TypeParam;
  expect_centre<T>({{{0, 0}, {4, 0}, {1, 1}}}, {T{2}, T{-1}});
  expect_centre<T>({{{0, 0}, {2, 0}, {1, 5}}}, {T{1}, static_cast<T>(2.4)});
}

TYPED_TEST(CircleCentreTest, PointsOnALineHaveNoneAndLeaveTheOutputUntouched) {
  using T = TypeParam;
  expect_refused<T>({{{0, 0}, {1, 0}, {2, 0}}});
  expect_refused<T>({{{2, 0}, {0, 0}, {1, 0}}});
  expect_refused<T>({{{1, 0}, {2, 0}, {0, 0}}});
  expect_refused<T>({{{3, 3}, {3, 3}, {3, 3}}});
  expect_refused<T>({{{3, 3}, {3, 3}, {5, 4}}});
  expect_refused<T>({{{5, 4}, {3, 3}, {3, 3}}});
  expect_refused<T>({{{3, 3}, {5, 4}, {3, 3}}});
}

// All six orders of a triangle with sides 3, 4 and 5, moved so that nothing is symmetric. The middle of the side of
// length 5 is the centre: (5, 6.5).
TYPED_TEST(CircleCentreTest, OfTheSamePointsInAllSixOrders) {
  using T = TypeParam;
  Triangle<T> p{{{3, 5}, {7, 5}, {3, 8}}};
  std::array<int, 3> order{0, 1, 2};
  std::array<int, 4> seen{};
  do {
    const auto at = [&](std::size_t k) { return p[static_cast<std::size_t>(order[k])]; };
    const Triangle<T> q{at(0), at(1), at(2)};
    ++seen[static_cast<std::size_t>(chosen_case(Sides<T>(q)))];
    expect_centre<T>(q, {T{5}, T{6.5}});
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(seen, (std::array<int, 4>{0, 2, 2, 2}));
}

// Which case a tie falls to: the first two comparisons with bc and with the third side are strict.
TYPED_TEST(CircleCentreTest, TiesOfTheSidesChooseTheCase) {
  using T = TypeParam;
  struct Tie {
    Triangle<T> points;
    int expected;
  };
  // Isosceles triangles with base 2 and height 3: two sides of sqrt(10); then base 4 and height 1: sqrt(5) twice.
  const Vec2<T> left{-1, 0}, right{1, 0}, top{0, 3};
  const Vec2<T> far_left{-2, 0}, far_right{2, 0}, low{0, 1};
  const std::array<Tie, 6> ties{{
      {{left, top, right}, 1},          // ab = bc, both longer than ca
      {{left, right, top}, 3},          // bc = ca, both longer than ab
      {{top, left, right}, 3},          // ca = ab, both longer than bc
      {{far_left, low, far_right}, 3},  // ab = bc, ca longer
      {{far_left, far_right, low}, 2},  // bc = ca, ab longer
      {{low, far_left, far_right}, 1},  // ca = ab, bc longer
  }};
  for (auto const& [points, expected] : ties) {
    EXPECT_EQ(chosen_case(Sides<T>(points)), expected) << show(points);
    expect_literal(points, expected);
  }
}

// The three formulas agree but for rounding. Where all of them differ in their bits, the answer tells which one was
// used.
TYPED_TEST(CircleCentreTest, TheLastBitsTellThatTheTieChoosesTheCase) {
  using T = TypeParam;
  Random random(41);
  std::array<int, 3> told{};
  for (int i = 0; i < 20'000; ++i) {
    // Mirrored in the line y = x, which is exact: two sides have the same length, whatever it is.
    const Vec2<T> p{static_cast<T>(random.uniform(-2.0, 2.0)), static_cast<T>(random.uniform(-2.0, 2.0))};
    const Vec2<T> q{p.y, p.x};
    const T middle = static_cast<T>(random.uniform(-9.0, 9.0));
    const Vec2<T> m{middle, middle};
    const std::array<Triangle<T>, 3> ties{{{p, m, q}, {p, q, m}, {m, p, q}}};
    for (std::size_t k = 0; k < ties.size(); ++k) {
      const Sides<T> s(ties[k]);
      const std::array<T, 3> lengths{s.bc, s.ab, s.ca};
      // The equal pair must be the longest.
      if (std::count(lengths.begin(), lengths.end(), *std::max_element(lengths.begin(), lengths.end())) != 2) continue;
      const int expected = k == 0 ? 1 : 3;
      ASSERT_EQ(chosen_case(s), expected) << show(ties[k]);
      Vec2<T> by_case[4];
      bool found = true;
      for (int which = 1; which <= 3; ++which) found = found && centre_by_case(which, ties[k], by_case[which]);
      if (!found || same_point(by_case[1], by_case[2]) || same_point(by_case[2], by_case[3]) ||
          same_point(by_case[3], by_case[1])) {
        continue;
      }
      ++told[k];
      Vec2<T> centre;
      ASSERT_TRUE(CircleCentre(ties[k][0], ties[k][1], ties[k][2], centre));
      ASSERT_TRUE(same_point(centre, by_case[expected])) << "tie " << k << ' ' << show(ties[k]);
    }
  }
  for (const int count : told) EXPECT_GT(count, 1000);
}

// The squares of two sides differ by a unit of the last place or two, and yet their roots round to one number. The case
// follows the roots: comparing the squares would choose another formula and other last bits.
TYPED_TEST(CircleCentreTest, RootsThatTieDecideEvenWhereTheirSquaresDiffer) {
  using T = TypeParam;
  const auto square = [](Vec2<T> const& a, Vec2<T> const& b) {
    return (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
  };
  const auto case_by_squares = [&](Triangle<T> const& p) {
    const T bc = square(p[1], p[2]), ab = square(p[0], p[1]), ca = square(p[2], p[0]);
    if (!(ab > bc) && bc > ca) return 1;
    return ab > bc && ab > ca ? 2 : 3;
  };
  Random random(42);
  std::array<std::array<int, 4>, 4> told{};
  for (int i = 0; i < 400'000; ++i) {
    const auto step = [&](double v) {
      return static_cast<T>(v + random.uniform(-4.0, 4.0) * std::numeric_limits<T>::epsilon());
    };
    const double x = random.uniform(-2.0, 2.0);
    const double y = random.uniform(-2.0, 2.0);
    const double middle = random.uniform(-9.0, 9.0);
    Triangle<T> p{{{step(x), step(y)}, {step(y), step(x)}, {step(middle), step(middle)}}};
    std::rotate(p.begin(), p.begin() + static_cast<std::ptrdiff_t>(random.below(3)), p.end());
    const int by_roots = chosen_case(Sides<T>(p));
    const int by_squares = case_by_squares(p);
    Vec2<T> expected, other, centre;
    if (by_roots == by_squares || !centre_by_case(by_roots, p, expected) || !centre_by_case(by_squares, p, other)) {
      continue;
    }
    if (same_point(expected, other)) continue;
    ++told[static_cast<std::size_t>(by_roots)][static_cast<std::size_t>(by_squares)];
    ASSERT_TRUE(CircleCentre(p[0], p[1], p[2], centre));
    ASSERT_TRUE(same_point(centre, expected)) << "case " << i << ' ' << show(p);
  }
  // The ways in which a tie can hide a difference: ab = bc goes to 1 though ab is longer; bc = ca and ca = ab go to 3.
  EXPECT_GT(told[1][2], 100);
  EXPECT_GT(told[3][1], 100);
  EXPECT_GT(told[3][2], 100);
}

// A right angle at the origin with legs 1 and h: d is h or -h exactly, in each of the three cases.
TEST(CircleCentre, OnALineIsBelow1em10OfASquaredLength) {
  const double below = std::nextafter(kOnALine, 0.0);
  for (const double sign : {1.0, -1.0}) {
    const Point x{1, 0}, o{0, 0};
    const Point enough{0, sign * kOnALine}, short_of_it{0, sign * below};
    for (auto const& p : {Triangle<double>{x, o, enough}, {enough, x, o}, {o, enough, x}, {o, x, enough}}) {
      Point centre = kUntouched<double>;
      EXPECT_TRUE(CircleCentre(p[0], p[1], p[2], centre)) << show(p);
      EXPECT_EQ(centre.x, 0.5) << show(p);
    }
    for (auto const& p :
         {Triangle<double>{x, o, short_of_it}, {short_of_it, x, o}, {o, short_of_it, x}, {o, x, short_of_it}}) {
      expect_refused(p);
    }
  }
}

// Sides of 1e-5 and below: refused whatever the shape.
TEST(CircleCentre, ASmallTriangleIsRefusedWhateverItsShape) {
  expect_refused<double>({{{0, 0}, {0.99e-5, 0}, {0, 0.99e-5}}});
  expect_centre<double>({{{0, 0}, {0x1p-16, 0}, {0, 0x1p-16}}}, {0x1p-17, 0x1p-17});
}

// The nearest float to 1e-10 lies above it, and d is widened before the comparison: that float is not below.
TEST(CircleCentre, OnALineIsDecidedInDoubleForFloat) {
  const float above = 1e-10F;
  const float below = std::nextafter(above, 0.0F);
  ASSERT_GT(static_cast<double>(above), kOnALine);
  ASSERT_LT(static_cast<double>(below), kOnALine);
  Vec2<float> centre;
  for (const float sign : {1.0F, -1.0F}) {
    EXPECT_TRUE(CircleCentre(Vec2<float>{0, 0}, {1, 0}, {0, sign * above}, centre));
    EXPECT_EQ(centre.x, 0.5F);
    expect_refused<float>({{{0, 0}, {1, 0}, {0, sign * below}}});
  }
}

TYPED_TEST(CircleCentreTest, NanIsNotRefused) {
  using T = TypeParam;
  const T nan = static_cast<T>(kNan);
  for (auto const& p :
       {Triangle<T>{{{nan, 0}, {1, 0}, {0, 1}}}, Triangle<T>{{{0, 0}, {1, nan}, {0, 1}}},
        Triangle<T>{{{0, 0}, {1, 0}, {nan, nan}}}, Triangle<T>{{{0, 0}, {1, 0}, {static_cast<T>(kInfinity), 1}}}}) {
    Vec2<T> centre = kUntouched<T>;
    EXPECT_TRUE(CircleCentre(p[0], p[1], p[2], centre)) << show(p);
    EXPECT_TRUE(std::isnan(centre.x) || std::isnan(centre.y)) << show(p);
  }
}

TYPED_TEST(CircleCentreTest, TheCentreMayBeAnyOfThePoints) {
  using T = TypeParam;
  Random random(43);
  for (int i = 0; i < 2000; ++i) {
    Triangle<T> p;
    for (auto& q : p) {
      const Point integers = integer_point2(random, 4);
      q = {static_cast<T>(integers.x), static_cast<T>(integers.y)};
    }
    Vec2<T> expected = kUntouched<T>;
    const bool found = CircleCentre(p[0], p[1], p[2], expected);
    for (std::size_t k = 0; k < 3; ++k) {
      Triangle<T> q = p;
      ASSERT_EQ(CircleCentre(q[0], q[1], q[2], q[k]), found) << show(p);
      ASSERT_TRUE(same_point(q[k], found ? expected : p[k])) << show(p) << " argument " << k;
    }
  }
}

/// The circumcentre of three points that are not on a line: solves |c - a|² = |c - b|² = |c - p2|².
Vec2<Exact> exact_centre(Triangle<double> const& p) {
  const Vec2<Exact> a = exact(p[0]);
  const Vec2<Exact> b = exact(p[1]) - a;
  const Vec2<Exact> c = exact(p[2]) - a;
  const Exact d = 2 * cross(b, c);
  const Exact bb = dot(b, b), cc = dot(c, c);
  return a + Vec2<Exact>{(c.y * bb - b.y * cc) / d, (b.x * cc - c.x * bb) / d};
}

/// How far the computed centre may be from the exact one, per axis. e bounds one rounding.
///
/// t is a quotient N / d of sums of two products, with four roundings on each term (two differences, product, sum), and
/// one of its own: |δt| <= (4e·|N terms| + |t|·4e·|d terms|) / (|d| - 4e·|d terms|) + e·|t|, where |d| comes with as
/// much of an error again. The centre is (sum ± t·step)/2: the step, the product, the inner sum and the outer one are
/// rounded once more each.
Vec2<double> centre_bound(int which, Triangle<double> const& p, double e) {
  // The ends of the bisected side and the point opposite to it.
  const std::size_t from = which == 2 ? 1 : 0;
  const std::size_t to = which == 3 ? 1 : 2;
  const std::size_t apex = 3 - from - to;
  const Point s = p[to] - p[from], u = p[apex] - p[from], v = p[apex] - p[to];
  // d is the same with either leg but for its terms.
  const Point leg = which == 1 ? u : v;
  const double d = std::fabs(s.x * leg.y - s.y * leg.x);
  const double d_terms = std::fabs(s.x * leg.y) + std::fabs(s.y * leg.x);
  const double t = std::fabs(u.x * v.x + u.y * v.y) / d;
  const double n_terms = std::fabs(u.x * v.x) + std::fabs(u.y * v.y);
  const double t_error = (4 * e * n_terms + t * 4 * e * d_terms) / (d - 8 * e * d_terms) + e * t;
  const auto component = [&](double from_x, double to_x, double step) {
    const double sum = std::fabs(from_x + to_x);
    return 0.5 * (t_error * std::fabs(step) + 3 * e * t * std::fabs(step) + 2 * e * sum) * 1.001;
  };
  return {component(p[from].x, p[to].x, s.y), component(p[from].y, p[to].y, s.x)};
}

// On small integers every difference, product and sum of products is exact in either precision. Left over are the
// quotient t, its product with the step and the difference: the halving is exact.
TYPED_TEST(CircleCentreTest, IsEquidistantOnIntegersButForThreeRoundings) {
  using T = TypeParam;
  constexpr double e = std::numeric_limits<T>::epsilon() / 2;
  Random random(44);
  int found = 0;
  for (int i = 0; i < 5000; ++i) {
    const Triangle<double> p{integer_point2(random, 1000), integer_point2(random, 1000), integer_point2(random, 1000)};
    Triangle<T> q;
    for (std::size_t k = 0; k < 3; ++k) q[k] = {static_cast<T>(p[k].x), static_cast<T>(p[k].y)};
    Vec2<T> centre = kUntouched<T>;
    const bool on_a_line = cross(exact(p[1] - p[0]), exact(p[2] - p[0])) == 0;
    ASSERT_EQ(CircleCentre(q[0], q[1], q[2], centre), !on_a_line) << show(p);
    if (on_a_line) continue;
    ++found;
    const Vec2<Exact> expected = exact_centre(p);
    // The fraction is indeed equidistant: what follows compares with a true centre.
    const auto distance2 = [&](std::size_t k) {
      const Vec2<Exact> r = exact(p[k]) - expected;
      return dot(r, r);
    };
    ASSERT_TRUE(distance2(0) == distance2(1) && distance2(1) == distance2(2));
    const int which = chosen_case(Sides<T>(q));
    const Point from = p[which == 2 ? 1 : 0], to = p[which == 3 ? 1 : 2];
    const auto expect_near = [&](double actual, Exact const& exact_value, double sum) {
      const double value = std::fabs(exact_value.convert_to<double>());
      const double product = std::fabs((2 * exact_value - Exact(sum)).template convert_to<double>());
      // The product has absorbed two roundings when the difference, twice the centre, is rounded.
      ASSERT_LE(error_of(actual, exact_value), 1.001 * e * (product + value)) << show(p);
    };
    expect_near(static_cast<double>(centre.x), expected.x, from.x + to.x);
    expect_near(static_cast<double>(centre.y), expected.y, from.y + to.y);
  }
  EXPECT_GT(found, 4900);
}

// Needles, large and small triangles, near to and far from the origin.
TYPED_TEST(CircleCentreTest, IsEquidistantWithinTheRoundingOfItsTerms) {
  using T = TypeParam;
  constexpr double e = std::numeric_limits<T>::epsilon() / 2;
  Random random(45);
  int found = 0;
  for (int i = 0; i < 5000; ++i) {
    const double far = random.below(2) == 0 ? 0.0 : 1000.0;
    const double flat = random.below(2) == 0 ? 1.0 : 1e-3;
    Triangle<T> q;
    Triangle<double> p;
    for (std::size_t k = 0; k < 3; ++k) {
      p[k] = {narrowed<T>(far + random.uniform(-2.0, 2.0)), narrowed<T>(far + flat * random.uniform(-2.0, 2.0))};
      q[k] = {static_cast<T>(p[k].x), static_cast<T>(p[k].y)};
    }
    Vec2<T> centre = kUntouched<T>;
    if (!CircleCentre(q[0], q[1], q[2], centre)) continue;
    const Point bound = centre_bound(chosen_case(Sides<T>(q)), p, e);
    // A determinant lost in its own rounding has no bound.
    if (!(bound.x > 0) || !(bound.y > 0)) continue;
    ++found;
    const Vec2<Exact> expected = exact_centre(p);
    ASSERT_LE(error_of(static_cast<double>(centre.x), expected.x), bound.x) << show(q);
    ASSERT_LE(error_of(static_cast<double>(centre.y), expected.y), bound.y) << show(q);
  }
  EXPECT_GT(found, 4000);
}

TYPED_TEST(CircleCentreTest, FollowsItsFormulaBitForBit) {
  using T = TypeParam;
  Random random(46);
  std::array<int, 4> seen{};
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    Triangle<T> p;
    // Twice the range of a float: infinities come up where the double was merely large.
    for (auto& q : p) q = {static_cast<T>(coordinate()), static_cast<T>(coordinate())};
    if (random.below(8) == 0) p[random.below(3)] = p[random.below(3)];
    ++seen[static_cast<std::size_t>(chosen_case(Sides<T>(p)))];
    expect_literal(p, i);
    if (this->HasFatalFailure()) return;
  }
  for (int which = 1; which <= 3; ++which) EXPECT_GT(seen[static_cast<std::size_t>(which)], 40'000);
}

// Sides that are equal but for the last few bits: the comparison is of rounded roots, and a bound that decides sooner
// must leave them alone.
TYPED_TEST(CircleCentreTest, FollowsItsFormulaForNearlyEqualSides) {
  using T = TypeParam;
  Random random(47);
  for (int i = 0; i < 300'000; ++i) {
    const double scale = std::ldexp(1.0, static_cast<int>(random.below(40)) - 10);
    const auto step = [&](double v) {
      return static_cast<T>(scale * (v + random.uniform(-20.0, 20.0) * std::numeric_limits<T>::epsilon()));
    };
    const double turn = random.uniform(-3.2, 3.2);
    const double apex = turn + random.uniform(-3.2, 3.2);
    // On the unit circle around the first point; or equilateral.
    const double third = random.below(2) == 0 ? apex : turn + std::acos(0.5);
    Triangle<T> p{{{step(0.0), step(0.0)},
                   {step(std::cos(turn)), step(std::sin(turn))},
                   {step(std::cos(third)), step(std::sin(third))}}};
    std::rotate(p.begin(), p.begin() + static_cast<std::ptrdiff_t>(random.below(3)), p.end());
    expect_literal(p, i);
    if (this->HasFatalFailure()) return;
  }
}

// d within a few units of the last place of its border.
TYPED_TEST(CircleCentreTest, FollowsItsFormulaForPointsNearlyOnALine) {
  using T = TypeParam;
  Random random(48);
  int refused = 0;
  for (int i = 0; i < 200'000; ++i) {
    const Point a{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
    const Point along{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
    const double s = random.uniform(-2.0, 2.0);
    // |b - a|·offset = 1e-10, or thereabouts.
    const double length2 = along.x * along.x + along.y * along.y;
    const double offset = random.near(kOnALine / length2, 3) * random.uniform(0.9, 1.1);
    const Point c{a.x + s * along.x - offset * along.y, a.y + s * along.y + offset * along.x};
    Triangle<T> p{{{static_cast<T>(a.x), static_cast<T>(a.y)},
                   {static_cast<T>(a.x + along.x), static_cast<T>(a.y + along.y)},
                   {static_cast<T>(c.x), static_cast<T>(c.y)}}};
    std::rotate(p.begin(), p.begin() + static_cast<std::ptrdiff_t>(random.below(3)), p.end());
    Vec2<T> centre;
    refused += literal_centre(p, centre) ? 0 : 1;
    expect_literal(p, i);
    if (this->HasFatalFailure()) return;
  }
  EXPECT_GT(refused, 100);
}

}  // namespace
