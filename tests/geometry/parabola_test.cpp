// The library eliminates without vector instructions, so that its sums have one order; so does the transcription here.
#define EIGEN_DONT_VECTORIZE

#include <talvo/geometry/parabola.h>

#include <gtest/gtest.h>

#include <Eigen/Core>
#include <Eigen/LU>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <limits>
#include <ostream>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::Random;
using talvo::test::same_bits;
using Talvo::Util::Parabola;

using Three = std::array<double, 3>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

struct Answer {
  bool passes;
  Three coeff;

  friend bool operator==(Answer const& a, Answer const& b) {
    return a.passes == b.passes && std::equal(a.coeff.begin(), a.coeff.end(), b.coeff.begin(),
                                              [](double x, double y) { return same_bits(x, y); });
  }
  friend std::ostream& operator<<(std::ostream& out, Answer const& a) {
    return out << std::setprecision(17) << (a.passes ? "true" : "false") << ' ' << a.coeff[0] << ' ' << a.coeff[1]
               << ' ' << a.coeff[2];
  }
};

Answer solve(Three x, Three y) {
  Answer answer{false, {91, 92, 93}};
  answer.passes = Parabola(x.data(), y.data(), answer.coeff.data());
  return answer;
}

::testing::Message show(Three const& x, Three const& y) {
  ::testing::Message message;
  for (std::size_t i = 0; i < 3; ++i) message << std::setprecision(17) << " (" << x[i] << ", " << y[i] << ')';
  return message;
}

// ---------------------------------------------------------------- the rule, written out

/// The squares of the norms of A·coeff - y, A·coeff and y.
struct Norms {
  double residual = 0, product = 0, ordinates = 0;

  Norms(Three const& x, Three const& y, Three const& coeff) {
    Three p;
    for (std::size_t i = 0; i < 3; ++i) p[i] = (1.0 * coeff[0] + x[i] * coeff[1]) + (x[i] * x[i]) * coeff[2];
    const auto squares = [](Three const& v) { return (v[0] * v[0] + v[1] * v[1]) + v[2] * v[2]; };
    residual = squares({p[0] - y[0], p[1] - y[1], p[2] - y[2]});
    product = squares(p);
    ordinates = squares(y);
  }

  double limit() const { return 1e-12 * 1e-12 * (product < ordinates ? product : ordinates); }
  bool pass() const { return residual <= limit(); }
};

Answer plain_parabola(Three const& x, Three const& y) {
  Eigen::Matrix3d a;
  for (int i = 0; i < 3; ++i) {
    const double xi = x[static_cast<std::size_t>(i)];
    a.row(i) << 1.0, xi, xi * xi;
  }
  const Eigen::Vector3d coeff = Eigen::PartialPivLU<Eigen::Matrix3d>(a).solve(Eigen::Vector3d(y[0], y[1], y[2]));
  const Three c{coeff[0], coeff[1], coeff[2]};
  return {Norms(x, y, c).pass(), c};
}

double awkward(Random& random) { return random.below(8) == 0 ? random.any_double() : random.uniform(-2.0, 2.0); }

Three awkward_numbers(Random& random) { return {awkward(random), awkward(random), awkward(random)}; }

// ---------------------------------------------------------------- values by hand

// 1 + x²
TEST(Parabola, ThroughThreePoints) { EXPECT_EQ(solve({0, 1, 2}, {1, 2, 5}), (Answer{true, {1, 0, 1}})); }

// Small integers a power of two apart: the elimination divides by powers of two only.
TEST(Parabola, IsExactOnEvenlySpacedIntegers) {
  for (double c0 : {-3.0, 0.0, 5.0}) {
    for (double c1 : {-2.0, 0.0, 1.0}) {
      for (double c2 : {-4.0, 0.0, 7.0}) {
        const auto y = [&](double x) { return c0 + c1 * x + c2 * x * x; };
        for (Three const& x : {Three{-1, 0, 1}, Three{1, -1, 0}, Three{0, 2, 4}, Three{4, 0, 2}}) {
          const Answer answer = solve(x, {y(x[0]), y(x[1]), y(x[2])});
          EXPECT_TRUE(answer.passes);
          EXPECT_EQ(answer.coeff, (Three{c0, c1, c2})) << show(x, {});
        }
      }
    }
  }
}

TEST(Parabola, MayBeALineOrAConstant) {
  EXPECT_EQ(solve({0, 1, 2}, {3, 5, 7}).coeff, (Three{3, 2, 0}));
  EXPECT_EQ(solve({0, 1, 2}, {4, 4, 4}).coeff, (Three{4, 0, 0}));
  const Answer zero = solve({0, 1, 2}, {0, 0, 0});
  EXPECT_TRUE(zero.passes) << "a residual of 0 is not above a limit of 0";
  EXPECT_EQ(zero.coeff, (Three{0, 0, 0}));
}

TEST(Parabola, IsFalseForTwoEqualAbscissae) {
  for (Three const& x : {Three{1, 1, 2}, Three{1, 2, 1}, Three{2, 1, 1}, Three{0, -0.0, 3}, Three{5, 5, 5}}) {
    EXPECT_FALSE(solve(x, {1, 2, 5}).passes) << show(x, {});
    EXPECT_FALSE(solve(x, {4, 4, 4}).passes) << show(x, {}) << ", even where a parabola would pass through the points";
    EXPECT_FALSE(solve(x, {0, 0, 0}).passes) << show(x, {});
  }
}

TEST(Parabola, IsFalseForAnyTwoEqualAbscissae) {
  Random random(91);
  for (int i = 0; i < 3000; ++i) {
    Three x{random.uniform(-10.0, 10.0), random.uniform(-10.0, 10.0), random.uniform(-10.0, 10.0)};
    Three y = awkward_numbers(random);
    const std::size_t k = random.below(3), other = (k + 1 + random.below(2)) % 3;
    x[k] = x[other];
    if (random.below(2) == 0) y[k] = y[other];
    const Answer answer = solve(x, y);
    ASSERT_FALSE(answer.passes) << show(x, y);
    ASSERT_EQ(answer, plain_parabola(x, y)) << show(x, y);
  }
}

TEST(Parabola, IsFalseForNaNAndInfinity) {
  for (double value : {kNan, kInfinity, -kInfinity, 1e200}) {
    for (std::size_t k = 0; k < 3; ++k) {
      Three x{0, 1, 2};
      x[k] = value;
      EXPECT_FALSE(solve(x, {1, 2, 5}).passes) << show(x, {});
      if (value == 1e200) continue;
      Three y{1, 2, 5};
      y[k] = value;
      EXPECT_FALSE(solve({0, 1, 2}, y).passes) << show({}, y);
    }
  }
}

// ---------------------------------------------------------------- outputs in the place of inputs

TEST(Parabola, MayWriteItsCoefficientsOverItsPoints) {
  Random random(92);
  for (int i = 0; i < 500; ++i) {
    const Three x = awkward_numbers(random), y = awkward_numbers(random);
    const Answer expected = solve(x, y);
    Three to_x = x, to_y = y;
    Answer over_x{false, {}}, over_y{false, {}};
    over_x.passes = Parabola(to_x.data(), to_y.data(), to_x.data());
    over_x.coeff = to_x;
    EXPECT_EQ(over_x, expected) << show(x, y);
    to_x = x;
    over_y.passes = Parabola(to_x.data(), to_y.data(), to_y.data());
    over_y.coeff = to_y;
    EXPECT_EQ(over_y, expected) << show(x, y);
  }
}

TEST(Parabola, LeavesItsPointsAlone) {
  Three x{0, 1, 3}, y{1, 2, 5}, coeff{};
  Parabola(x.data(), y.data(), coeff.data());
  EXPECT_EQ(x, (Three{0, 1, 3}));
  EXPECT_EQ(y, (Three{1, 2, 5}));
}

// ---------------------------------------------------------------- equal bits, and the limit

TEST(Parabola, EqualsTheEliminationBitForBit) {
  Random random(93);
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 93, case " << i);
    const Three x = awkward_numbers(random), y = awkward_numbers(random);
    ASSERT_EQ(solve(x, y), plain_parabola(x, y)) << show(x, y);
  }
}

// Abscissae close together far from 0 give large coefficients that cancel: the residual is then about the roundoff
// times (x / spacing)² of the ordinates. From the spacing 0.001 to 0.1 that is below and above 1e-12, and some cases
// come near it on either side.
TEST(Parabola, PassesUpToARelative1em12) {
  Random random(94);
  double closest_below = 0.0, closest_above = kInfinity;
  for (int i = 0; i < 40000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 94, case " << i);
    const double spacing = std::pow(10.0, random.uniform(-3.0, -1.0));
    const Three x{1.0, 1.0 + spacing, 1.0 + spacing * random.uniform(1.5, 2.5)};
    const Three y{random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0)};
    const Answer answer = solve(x, y);
    const Norms norms(x, y, answer.coeff);
    ASSERT_EQ(answer.passes, norms.pass()) << show(x, y);
    const double share = norms.residual / norms.limit();
    if (norms.pass()) closest_below = std::max(closest_below, share);
    if (!norms.pass()) closest_above = std::min(closest_above, share);
  }
  EXPECT_GT(closest_below, 0.99);
  EXPECT_LT(closest_above, 1.01);
}

// ---------------------------------------------------------------- independent truth

// Newton's divided differences in long double. Abscissae at least 0.2 apart within [-2, 2]: the inverse of the matrix
// has entries up to 4 / 0.2² = 100, and the elimination errs by some ten roundoffs of numbers below 4.
TEST(Parabola, AgreesWithDividedDifferences) {
  Random random(95);
  int compared = 0;
  for (int i = 0; i < 20000; ++i) {
    const Three x{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
    const Three y{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0)};
    const long double x0 = x[0], x1 = x[1], x2 = x[2];
    const long double nearest = std::min({std::fabs(x1 - x0), std::fabs(x2 - x1), std::fabs(x2 - x0)});
    if (nearest < 0.2L) continue;
    ++compared;
    const long double d01 = (y[1] - static_cast<long double>(y[0])) / (x1 - x0);
    const long double d12 = (y[2] - static_cast<long double>(y[1])) / (x2 - x1);
    const long double d012 = (d12 - d01) / (x2 - x0);
    // y0 + d01·(x - x0) + d012·(x - x0)(x - x1), by powers of x.
    const std::array<long double, 3> expected{y[0] - d01 * x0 + d012 * x0 * x1, d01 - d012 * (x0 + x1), d012};
    const Answer answer = solve(x, y);
    for (std::size_t k = 0; k < 3; ++k) {
      ASSERT_LE(std::fabs(static_cast<double>(answer.coeff[k] - expected[k])), 100 * 4 * 10 * kRoundoff)
          << "seed 95, case " << i << ':' << show(x, y);
    }
  }
  EXPECT_GT(compared, 8000);
}

}  // namespace
