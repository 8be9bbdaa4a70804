#include <talvo/fitting/lagrange.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

#include "support/bits.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using talvo::test::equal_points;
using talvo::test::Random;
using Talvo::Util::CLagrange;

using Point = Vec3<double>;
using Points = std::vector<Point>;
using Limits = std::numeric_limits<double>;
constexpr double kNaN = Limits::quiet_NaN();
constexpr double kInfinity = Limits::infinity();

/// The preparation in public.
class OpenLagrange : public CLagrange {
 public:
  using CLagrange::PreCalculate;
};

CLagrange curve_through(Points const& points) {
  CLagrange curve;
  for (Point const& point : points) curve.AddPoint(point);
  return curve;
}

/// The curve written down literally.
class PlainLagrange {
 public:
  void add(Point const& point) {
    prepared_ = false;
    parameters_.push_back(parameters_.empty() ? 0.0 : parameters_.back() + 1.0);
    points_.push_back(point);
  }

  void prepare() {
    const std::size_t n = points_.size();
    if (n > 2) {
      for (std::size_t k = 0; k < n; ++k) parameters_[k] = static_cast<double>(k) / static_cast<double>(n - 1);
    }
    denominators_.resize(n, 1.0);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        if (j != i) denominators_[i] *= parameters_[i] - parameters_[j];
      }
    }
    prepared_ = true;
  }

  Point at(double t) {
    if (!prepared_) prepare();
    Point sum{0.0, 0.0, 0.0};
    for (std::size_t i = 0; i < points_.size(); ++i) {
      double product = 1.0;
      for (std::size_t j = 0; j < points_.size(); ++j) {
        if (j != i) product *= t - parameters_[j];
      }
      const double weight = product / denominators_[i];
      sum.x += weight * points_[i].x;
      sum.y += weight * points_[i].y;
      sum.z += weight * points_[i].z;
    }
    return sum;
  }

 private:
  bool prepared_ = false;
  std::vector<double> parameters_;
  Points points_;
  std::vector<double> denominators_;
};

// --- Values by hand ---

TEST(Lagrange, ThreePointsAreSpacedEvenlyInTheParameter) {
  CLagrange curve = curve_through({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}});
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{0, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(0.5), Point{1, 0, 0}));
  // x = 4 t²: the weights 3/8, 3/4, -1/8 are exact.
  EXPECT_TRUE(equal_points(curve.Function(0.25), Point{0.25, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(1.0), Point{4, 0, 0}));
}

TEST(Lagrange, OnePointIsTheCurveForEveryParameter) {
  CLagrange curve = curve_through({{1.5, -2.5, 3.5}});
  EXPECT_EQ(curve.NumPoint(), 1);
  for (const double t : {0.0, 0.5, 1.0, -7.0, 1e300, kInfinity, kNaN}) {
    EXPECT_TRUE(equal_points(curve.Function(t), Point{1.5, -2.5, 3.5})) << t;
  }
}

TEST(Lagrange, NoPointGivesTheZeroVector) {
  CLagrange curve;
  EXPECT_EQ(curve.NumPoint(), 0);
  for (const double t : {0.0, 0.5, kInfinity, kNaN}) {
    EXPECT_TRUE(equal_points(curve.Function(t), Point{0, 0, 0})) << t;
  }
}

TEST(Lagrange, TwoPointsAreTheLineFromZeroToOne) {
  CLagrange curve = curve_through({{1, 2, 3}, {5, 0, 11}});
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{1, 2, 3}));
  EXPECT_TRUE(equal_points(curve.Function(0.25), Point{2, 1.5, 5}));
  EXPECT_TRUE(equal_points(curve.Function(1.0), Point{5, 0, 11}));
}

TEST(Lagrange, GoesOnBeyondItsEnds) {
  CLagrange line = curve_through({{1, 2, 3}, {5, 0, 11}});
  EXPECT_TRUE(equal_points(line.Function(2.0), Point{9, -2, 19}));
  EXPECT_TRUE(equal_points(line.Function(-1.0), Point{-3, 4, -5}));
  CLagrange parabola = curve_through({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}});
  EXPECT_TRUE(equal_points(parabola.Function(2.0), Point{16, 0, 0}));
  EXPECT_TRUE(equal_points(parabola.Function(-1.0), Point{4, 0, 0}));
}

TEST(Lagrange, CountsThePointsAsTheyAreAdded) {
  CLagrange curve;
  for (int n = 1; n <= 20; ++n) {
    EXPECT_EQ(curve.AddPoint({1, 2, 3}), n);
    EXPECT_EQ(curve.NumPoint(), n);
  }
}

TEST(Lagrange, CountsThePointsAcrossEvaluations) {
  CLagrange curve;
  EXPECT_EQ(curve.AddPoint({1, 2, 3}), 1);
  curve.Function(0.5);
  EXPECT_EQ(curve.AddPoint({1, 2, 3}), 2);
  EXPECT_EQ(curve.NumPoint(), 2);
}

TEST(Lagrange, DoesNotKeepTheFourthComponent) {
  CLagrange curve = curve_through({{1, 2, 3, 7}, {1, 2, 3, kNaN}});
  EXPECT_TRUE(equal_points(curve.Function(0.5), Point{1, 2, 3, 0}));
}

TEST(Lagrange, IsEvaluatedThroughAnObjectThatMayChange) {
  static_assert(!std::is_invocable_v<decltype(&CLagrange::Function), CLagrange const&, double>);
  static_assert(std::is_invocable_r_v<int, decltype(&CLagrange::NumPoint), CLagrange const&>);
}

// --- Points added after an evaluation ---

TEST(Lagrange, KeepsTheOldFactorOfEarlierNodesWhenAPointIsAddedAfterAnEvaluation) {
  CLagrange curve = curve_through({{1, 0, 0}, {2, 0, 0}});
  curve.Function(0.3);
  curve.AddPoint({2, 2, 0});
  // The first denominator is -1 from the two points times 0.5 from the three: -0.5, so that L0(0) = 0.5/-0.5. The
  // second was 1 and is -0.25, as in a new object.
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{-1, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(0.5), Point{2, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(1.0), Point{2, 2, 0}));

  CLagrange fresh = curve_through({{1, 0, 0}, {2, 0, 0}, {2, 2, 0}});
  EXPECT_TRUE(equal_points(fresh.Function(0.0), Point{1, 0, 0}));
}

TEST(Lagrange, SpacesAllParametersAnewWhenAPointIsAddedAfterAnEvaluation) {
  CLagrange curve = curve_through({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}});
  curve.Function(0.0);
  curve.AddPoint({0, 0, 6});
  // At 1/3 and 2/3 stand points now, and the last one at 1: its weight there is 1, its denominator being new.
  EXPECT_TRUE(equal_points(curve.Function(1.0 / 3.0), Point{0, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(2.0 / 3.0), Point{0, 0, 0}));
  EXPECT_TRUE(equal_points(curve.Function(1.0), Point{0, 0, 6}));
}

TEST(Lagrange, LosesNothingByAnEvaluationWithOnePoint) {
  // The product of no factors is 1.
  CLagrange curve = curve_through({{1, 2, 3}});
  curve.Function(0.0);
  curve.AddPoint({5, 0, 11});
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{1, 2, 3}));
  EXPECT_TRUE(equal_points(curve.Function(1.0), Point{5, 0, 11}));
}

TEST(Lagrange, LosesNothingByAnEvaluationWithoutPoints) {
  CLagrange curve;
  curve.Function(0.0);
  curve.AddPoint({1, 2, 3});
  curve.AddPoint({5, 0, 11});
  EXPECT_TRUE(equal_points(curve.Function(0.25), Point{2, 1.5, 5}));
}

TEST(Lagrange, IsPreparedOnce) {
  CLagrange curve = curve_through({{1, 2, 3}, {5, 0, 11}});
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(equal_points(curve.Function(0.25), Point{2, 1.5, 5}));
}

TEST(Lagrange, MultipliesItsDenominatorsAgainWhenItIsPreparedTwice) {
  OpenLagrange curve;
  curve.AddPoint({1, 0, 0});
  curve.AddPoint({2, 0, 0});
  curve.PreCalculate();
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{1, 0, 0}));  // the flag is set
  curve.PreCalculate();
  // The denominators -1 and 1 become 1 and 1: L0(0) = -1.
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{-1, 0, 0}));
}

// --- Copies ---

TEST(Lagrange, CopiesCarryPreparationAndDenominators) {
  CLagrange curve = curve_through({{1, 0, 0}, {2, 0, 0}});
  curve.Function(0.3);
  CLagrange copy(curve);
  CLagrange assigned;
  assigned.AddPoint({9, 9, 9});
  assigned = curve;
  for (CLagrange* each : {&copy, &assigned}) {
    // Were it prepared again, the denominators would be 1 and 1.
    EXPECT_TRUE(equal_points(each->Function(0.0), Point{1, 0, 0}));
    EXPECT_EQ(each->AddPoint({2, 2, 0}), 3);
    EXPECT_TRUE(equal_points(each->Function(0.0), Point{-1, 0, 0}));
  }
  EXPECT_EQ(curve.NumPoint(), 2);
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{1, 0, 0}));
}

TEST(Lagrange, CopiesTakenBeforeAnEvaluationAreFresh) {
  CLagrange curve = curve_through({{1, 0, 0}, {2, 0, 0}});
  CLagrange copy(curve);
  curve.Function(0.3);
  copy.AddPoint({2, 2, 0});
  EXPECT_TRUE(equal_points(copy.Function(0.0), Point{1, 0, 0}));
}

TEST(Lagrange, AssignmentToItselfChangesNothing) {
  CLagrange curve = curve_through({{1, 0, 0}, {2, 0, 0}});
  curve.Function(0.3);
  CLagrange const& same = curve;
  curve = same;
  EXPECT_EQ(curve.NumPoint(), 2);
  EXPECT_TRUE(equal_points(curve.Function(0.25), Point{1.25, 0, 0}));
  curve.AddPoint({2, 2, 0});
  EXPECT_TRUE(equal_points(curve.Function(0.0), Point{-1, 0, 0}));
}

// --- Properties ---

Points random_points(Random& random, std::size_t count) {
  Points points;
  for (std::size_t i = 0; i < count; ++i) {
    points.push_back({random.uniform(-10.0, 10.0), random.uniform(-10.0, 10.0), random.uniform(-10.0, 10.0)});
  }
  return points;
}

TEST(Lagrange, PassesExactlyThroughEveryPoint) {
  // At a node its own product is the denominator, factor by factor, and every other product has a factor 0.
  Random random(71);
  for (std::size_t n = 1; n <= 40; ++n) {
    const Points points = random_points(random, n);
    CLagrange curve = curve_through(points);
    for (std::size_t k = 0; k < n; ++k) {
      const double t = n == 1 ? 0.0 : static_cast<double>(k) / static_cast<double>(n - 1);
      EXPECT_TRUE(equal_points(curve.Function(t), points[k])) << "seed 71, point " << k << " of " << n;
    }
  }
}

TEST(Lagrange, ReproducesAPolynomialOfTheDegreeItCanHave) {
  Random random(72);
  for (std::size_t n = 2; n <= 12; ++n) {
    SCOPED_TRACE(::testing::Message() << "seed 72, " << n << " points");
    std::vector<double> c(n);
    for (double& each : c) each = random.uniform(-1.0, 1.0);
    const auto polynomial = [&](long double t) {
      long double sum = 0.0L;
      for (std::size_t k = n; k-- > 0;) sum = sum * t + static_cast<long double>(c[k]);
      return static_cast<double>(sum);
    };
    CLagrange curve;
    for (std::size_t k = 0; k < n; ++k) {
      const double value = polynomial(static_cast<double>(k) / static_cast<double>(n - 1));
      curve.AddPoint({value, -value, 2 * value});
    }
    // Within the span the weights add up to 2^n in magnitude at most; each carries 4n roundings, the values one.
    const double bound = 4.0 * static_cast<double>(n) * std::exp2(n) * static_cast<double>(n) * Limits::epsilon();
    for (int i = 0; i < 50; ++i) {
      const double t = random.uniform(0.0, 1.0);
      const Point point = curve.Function(t);
      EXPECT_NEAR(point.x, polynomial(t), bound);
      EXPECT_NEAR(point.y, -polynomial(t), bound);
      EXPECT_NEAR(point.z, 2 * polynomial(t), 2 * bound);
    }
  }
}

// --- Bit for bit ---

/// In the span, at and next to the nodes, far outside, and no number.
double random_parameter(Random& random, std::size_t count) {
  switch (random.below(4)) {
    case 0:
      return random.uniform(0.0, 1.0);
    case 1:
      return random.uniform(-3.0, 4.0);
    case 2:
      return random.near(static_cast<double>(random.below(count + 1)) /
                         static_cast<double>(std::max<std::size_t>(count, 2) - 1));
    default:
      return random.any_double();
  }
}

void expect_same_curve(Random& random, CLagrange& curve, PlainLagrange& plain) {
  const auto count = static_cast<std::size_t>(curve.NumPoint());
  for (int i = 0; i < 20; ++i) {
    const double t = random_parameter(random, count);
    EXPECT_TRUE(equal_points(curve.Function(t), plain.at(t))) << count << " points, t = " << t;
  }
}

TEST(Lagrange, HasTheBitsOfTheLiteralForm) {
  Random random(73);
  for (std::size_t n = 0; n <= 40; ++n) {
    for (int i = 0; i < 10; ++i) {
      SCOPED_TRACE(::testing::Message() << "seed 73, " << n << " points, case " << i);
      CLagrange curve;
      PlainLagrange plain;
      for (Point point : random_points(random, n)) {
        if (i == 9 && random.below(5) == 0) point.y = random.any_double();
        curve.AddPoint(point);
        plain.add(point);
      }
      expect_same_curve(random, curve, plain);
    }
  }
}

TEST(Lagrange, HasTheBitsOfTheLiteralFormWhenPointsAndEvaluationsAlternate) {
  Random random(74);
  for (int i = 0; i < 100; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 74, case " << i);
    CLagrange curve;
    PlainLagrange plain;
    for (int round = 0; round < 6; ++round) {
      for (Point const& point : random_points(random, random.below(5))) {
        curve.AddPoint(point);
        plain.add(point);
      }
      expect_same_curve(random, curve, plain);
      if (random.below(3) == 0) {
        CLagrange copy(curve);
        curve = copy;
      }
    }
  }
}

}  // namespace
