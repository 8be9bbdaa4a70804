#include <talvo/geometry/cubic.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "support/bits.h"
#include "support/random.h"

namespace {

using Talvo::CubicSolve;
using talvo::test::equal_bits;
using talvo::test::Random;
using talvo::test::same_bits;
using ::testing::ThrowsMessage;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Bounds count it.
constexpr double kRoundoff = 0x1p-53;

const char* const kMessage = "ArcCos: function value out of range";

/// a·x³ + b·x² + c·x + d
struct Cubic {
  double d, c, b, a;

  friend std::ostream& operator<<(std::ostream& out, Cubic const& p) {
    return out << std::setprecision(17) << p.a << " x^3 + " << p.b << " x^2 + " << p.c << " x + " << p.d;
  }
};

/// What a call did; x holds the outputs, of which those that were not written keep their numbers from before.
struct Answer {
  bool thrown = false;
  bool three = false;
  std::array<double, 3> x{101.0, 102.0, 103.0};
};

Answer solve(Cubic const& p) {
  Answer answer;
  try {
    answer.three = CubicSolve(p.d, p.c, p.b, p.a, answer.x[0], answer.x[1], answer.x[2]);
  } catch (std::runtime_error const&) {
    answer.thrown = true;
  }
  return answer;
}

// ---------------------------------------------------------------- the formula, written out in its order

double signed_cube_root(double value) {
  const double root = std::pow(std::fabs(value), 0.3333333333333333);
  return value < 0.0 ? -root : root;
}

// Powers by pow for (b/a)³ and cube roots; f³ and the squares are products.
Answer plain_solve(Cubic const& p) {
  const auto [d, c, b, a] = p;
  Answer answer;
  const double shift = -b / (3.0 * a);
  const double f3 = 3.0 * c / a - b * b / (a * a);
  const double f = f3 * 0.3333333333333333;
  const double g = (2.0 * std::pow(b / a, 3.0) - 9.0 * b * c / (a * a) + 27.0 * d / a) * 0.037037037037037035;
  const double h = 0.25 * (g * g) + f * f * f / 27.0;
  if (f == 0.0 && g == 0.0 && h == 0.0) {
    const double root = -signed_cube_root(d / a);
    answer.three = true;
    answer.x = {root, root, root};
  } else if (h <= 0.0) {
    const double i = std::sqrt(0.25 * (g * g) - h);
    const double j = signed_cube_root(i);
    const double q = -0.5 * g / i;
    if (q > 1.000001 || q < -1.000001) {
      answer.thrown = true;
      return answer;
    }
    const double k = std::acos(q > 1.0 ? 1.0 : (q < -1.0 ? -1.0 : q));
    const double m = std::cos(k / 3.0);
    const double n = std::sqrt(3.0) * std::sin(k / 3.0);
    const double l = -j;
    answer.three = true;
    answer.x = {2.0 * j * m + shift, l * (m + n) + shift, l * (m - n) + shift};
  } else {
    const double r = std::sqrt(h);
    const double s = signed_cube_root(r - 0.5 * g);
    const double u = signed_cube_root(-0.5 * g - r);
    answer.x[0] = u + s + shift;
  }
  return answer;
}

::testing::AssertionResult equal_answers(Answer const& actual, Answer const& expected) {
  const bool equal = actual.thrown == expected.thrown && actual.three == expected.three &&
                     std::equal(actual.x.begin(), actual.x.end(), expected.x.begin(),
                                [](double x, double y) { return same_bits(x, y); });
  if (equal) return ::testing::AssertionSuccess();
  const auto print = [](Answer const& answer) {
    std::ostringstream out;
    out << std::setprecision(17) << (answer.thrown ? "throws" : answer.three ? "three:" : "one:");
    for (double x : answer.x) out << ' ' << x;
    return out.str();
  };
  return ::testing::AssertionFailure() << print(actual) << " instead of " << print(expected);
}

::testing::AssertionResult agrees(Cubic const& p) { return equal_answers(solve(p), plain_solve(p)) << " for " << p; }

// ---------------------------------------------------------------- values by hand

// (x - 1)(x - 2)(x - 3) has f = -1, g = 0, h = -1/27: k = π/2 and j = 1/√3, so that x1 = 2 + 1, x2 = 2 - 1, x3 = 2.
TEST(CubicSolve, GivesThreeRootsInTheOrderOfTheFormula) {
  const Answer answer = solve({-6, 11, -6, 1});
  EXPECT_TRUE(answer.three);
  EXPECT_NEAR(answer.x[0], 3.0, 16 * kRoundoff);
  EXPECT_NEAR(answer.x[1], 1.0, 16 * kRoundoff);
  EXPECT_NEAR(answer.x[2], 2.0, 16 * kRoundoff);
}

TEST(CubicSolve, LeavesTheOtherOutputsUntouchedForOneRoot) {
  const Answer answer = solve({-1, 0, 0, 1});
  EXPECT_FALSE(answer.three);
  EXPECT_NEAR(answer.x[0], 1.0, kRoundoff);
  EXPECT_EQ(answer.x[1], 102.0);
  EXPECT_EQ(answer.x[2], 103.0);
}

TEST(CubicSolve, GivesATripleRootThreeTimes) {
  const Answer answer = solve({-8, 12, -6, 1});
  EXPECT_TRUE(answer.three);
  for (double x : answer.x) EXPECT_NEAR(x, 2.0, 2 * kRoundoff);
  EXPECT_EQ(answer.x[0], answer.x[1]);
  EXPECT_EQ(answer.x[0], answer.x[2]);
}

TEST(CubicSolve, GivesATripleRootItsSign) {
  const Answer answer = solve({8, 12, 6, 1});
  EXPECT_TRUE(answer.three);
  for (double x : answer.x) EXPECT_NEAR(x, -2.0, 2 * kRoundoff);
}

// x³ = 0: minus the cube root of 0.
TEST(CubicSolve, GivesMinusZeroForACubeAlone) {
  const Answer answer = solve({0, 0, 0, 1});
  EXPECT_TRUE(answer.three);
  for (double x : answer.x) EXPECT_TRUE(equal_bits(x, -0.0));
}

TEST(CubicSolve, TakesTheConstantTermFirst) {
  // 8x³ - 1: the root is 1/2. Read from the other end, 8 - x³ has the root 2.
  EXPECT_NEAR(solve({-1, 0, 0, 8}).x[0], 0.5, kRoundoff);
  EXPECT_NEAR(solve({8, 0, 0, -1}).x[0], 2.0, 2 * kRoundoff);
}

// (x - 1)²(x + 2) = x³ - 3x + 2: f = -3, g = 2, h = 0 exactly. k = acos(-1), x1 = 2·cos(π/3), x2 = -2, x3 = 1.
TEST(CubicSolve, CountsADoubleRootAmongThree) {
  const Answer answer = solve({2, -3, 0, 1});
  EXPECT_TRUE(answer.three);
  EXPECT_NEAR(answer.x[0], 1.0, 4 * kRoundoff);
  EXPECT_NEAR(answer.x[1], -2.0, 8 * kRoundoff);
  EXPECT_NEAR(answer.x[2], 1.0, 8 * kRoundoff);
}

// x³ - 3x + d has h = d²/4 - 1: a d a little beyond ±2 lifts it above 0.
TEST(CubicSolve, HasOneRootAsSoonAsTheDiscriminantIsPositive) {
  EXPECT_TRUE(solve({2, -3, 0, 1}).three);
  EXPECT_FALSE(solve({2 + 0x1p-50, -3, 0, 1}).three);
  EXPECT_TRUE(solve({-2, -3, 0, 1}).three);
  EXPECT_FALSE(solve({-2 - 0x1p-50, -3, 0, 1}).three);
}

TEST(CubicSolve, MayWriteOverItsCoefficients) {
  const Answer expected = solve({-6, 11, -6, 1});
  double d = -6, c = 11, b = -6;
  EXPECT_TRUE(CubicSolve(d, c, b, 1, d, c, b));
  EXPECT_EQ(d, expected.x[0]);
  EXPECT_EQ(c, expected.x[1]);
  EXPECT_EQ(b, expected.x[2]);
}

// ---------------------------------------------------------------- no cubic at all

// P = -b / 0 is infinite and f3 = c/0 - b²/0 is NaN; h is NaN, which is not ≤ 0.
TEST(CubicSolve, GivesNaNForAZeroLeadingCoefficient) {
  for (double zero : {0.0, -0.0}) {
    const Answer answer = solve({1, 2, 3, zero});
    EXPECT_FALSE(answer.thrown);
    EXPECT_FALSE(answer.three);
    EXPECT_TRUE(std::isnan(answer.x[0]));
    EXPECT_EQ(answer.x[1], 102.0);
    EXPECT_EQ(answer.x[2], 103.0);
  }
}

TEST(CubicSolve, PassesNaNThroughAsOneRoot) {
  for (Cubic const& p : {Cubic{kNan, 2, 3, 4}, Cubic{1, kNan, 3, 4}, Cubic{1, 2, kNan, 4}, Cubic{1, 2, 3, kNan}}) {
    const Answer answer = solve(p);
    EXPECT_FALSE(answer.thrown);
    EXPECT_FALSE(answer.three);
    EXPECT_TRUE(std::isnan(answer.x[0])) << p;
    EXPECT_EQ(answer.x[1], 102.0);
    EXPECT_EQ(answer.x[2], 103.0);
  }
}

// ---------------------------------------------------------------- the guard of the arc cosine

// The cosine q = -g/(2i) can leave [-1, 1] by more than a few roundings only where squares underflow. Here g²/4 and
// f³/27 both round to the smallest denormal, ±2^-1074, so that h is 0 and i is 2^-537, while g itself is exact:
// q = -g·2^536 may be anything whose square still rounds to 4·2^-1074.
class CubicSolveGuard : public ::testing::TestWithParam<double> {
 protected:
  static constexpr double kC = -5.1e-108;

  /// g as the formula has it for a = 1, b = 0.
  static double cosine(double d) { return -0.5 * (27.0 * d * 0.037037037037037035) * 0x1p537; }

  /// The last d of either side of the bound; the cosine has the sign of the parameter.
  double last_within() const {
    double d = -GetParam() * 1.000001 * 0x1p-536;
    while (std::fabs(cosine(d)) <= 1.000001) d = std::nextafter(d, d * 2);
    while (std::fabs(cosine(d)) > 1.000001) d = std::nextafter(d, 0.0);
    return d;
  }
};

TEST_P(CubicSolveGuard, ClampsUpTo1_000001) {
  const double d = last_within();
  ASSERT_GT(cosine(d) * GetParam(), 1.0000009);
  const Answer answer = solve({d, kC, 0, 1});
  EXPECT_TRUE(answer.three);
  // k is 0 or π, j the cube root of 2^-537 = 2^-179.
  const double j = std::pow(0x1p-537, 0.3333333333333333);
  const double k = std::acos(GetParam());
  EXPECT_EQ(answer.x[0], 2.0 * j * std::cos(k / 3.0));
}

TEST_P(CubicSolveGuard, ThrowsBeyondAndWritesNothing) {
  const double d = std::nextafter(last_within(), GetParam() * -1.0);
  ASSERT_GT(cosine(d) * GetParam(), 1.000001);
  ASSERT_LT(cosine(d) * GetParam(), 1.0000011);
  double x1 = 1, x2 = 2, x3 = 3;
  EXPECT_THAT([&] { CubicSolve(d, kC, 0, 1, x1, x2, x3); }, ThrowsMessage<std::runtime_error>(kMessage));
  EXPECT_EQ(x1, 1);
  EXPECT_EQ(x2, 2);
  EXPECT_EQ(x3, 3);
}

TEST_P(CubicSolveGuard, ThrowsExactlyARuntimeError) {
  double x1 = 0, x2 = 0, x3 = 0;
  try {
    CubicSolve(-GetParam() * 1.02 * 0x1p-536, kC, 0, 1, x1, x2, x3);
    FAIL() << "nothing thrown";
  } catch (std::exception const& error) {
    EXPECT_EQ(typeid(error), typeid(std::runtime_error));
  }
}

INSTANTIATE_TEST_SUITE_P(BothEnds, CubicSolveGuard, ::testing::Values(1.0, -1.0), [](auto const& sign) {
  return std::string(sign.param > 0 ? "above_one" : "below_minus_one");
});

// ---------------------------------------------------------------- equal bits

TEST(CubicSolveBits, EqualTheFormulaForAnyNumbers) {
  Random random(51);
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 51, case " << i);
    const Cubic p{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    ASSERT_TRUE(agrees(p));
  }
}

// Many double and triple roots, where f, g or h is exactly 0 or cancels to the last bit.
TEST(CubicSolveBits, EqualTheFormulaForSmallIntegers) {
  for (int a : {-2, -1, 1, 3}) {
    for (int b = -9; b <= 9; ++b) {
      for (int c = -12; c <= 12; ++c) {
        for (int d = -8; d <= 8; ++d) {
          const Cubic p{double(d), double(c), double(b), double(a)};
          ASSERT_TRUE(agrees(p));
        }
      }
    }
  }
}

TEST(CubicSolveBits, EqualTheFormulaNextToMultipleRoots) {
  Random random(52);
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 52, case " << i);
    const double u = random.uniform(-3.0, 3.0);
    const double v = random.below(2) == 0 ? u : random.uniform(-3.0, 3.0);
    const double a = random.below(2) == 0 ? 1.0 : random.uniform(-3.0, 3.0);
    // a(x - u)²(x - v), the coefficients moved by a few bits.
    const Cubic p{random.near(-a * u * u * v), random.near(a * (u * u + 2 * u * v)), random.near(-a * (2 * u + v)), a};
    ASSERT_TRUE(agrees(p));
  }
}

// Where squares underflow: zeros, the guard, and roots that are left.
TEST(CubicSolveBits, EqualTheFormulaForTinyCoefficients) {
  Random random(53);
  int thrown = 0;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 53, case " << i);
    const Cubic p{random.uniform(-8.0, 8.0) * 0x1p-537, random.uniform(-12.0, 2.0) * 1e-108, 0.0, 1.0};
    const Answer expected = plain_solve(p);
    thrown += expected.thrown ? 1 : 0;
    ASSERT_TRUE(equal_answers(solve(p), expected)) << p;
  }
  EXPECT_GT(thrown, 100);
}

// ---------------------------------------------------------------- independent truth

// Enough for coefficients whose magnitudes differ by 2^±80: the discriminant, of degree four in them, comes out
// exactly.
using Wide =
    boost::multiprecision::number<boost::multiprecision::cpp_bin_float<512, boost::multiprecision::digit_base_2>,
                                  boost::multiprecision::et_off>;

/// The exact cubic, divided by a, and its three roots to about 2^-100 of their largest magnitude.
class Truth {
 public:
  explicit Truth(Cubic const& p) : b_(Wide(p.b) / p.a), c_(Wide(p.c) / p.a), d_(Wide(p.d) / p.a) {
    using boost::multiprecision::cbrt;
    // All roots lie within twice this radius (M. Fujiwara, "Über die obere Schranke des absoluten Betrages der Wurzeln
    // einer algebraischen Gleichung", 1916).
    radius_ = std::max({abs(b_), Wide(sqrt(abs(c_))), Wide(cbrt(abs(d_)))});
    const Wide quarter = b_ * b_ - 3 * c_;
    if (quarter > 0) {
      // Monotone between minus infinity, the two stationary points and infinity.
      const Wide low = (-b_ - sqrt(quarter)) / 3, high = (-b_ + sqrt(quarter)) / 3;
      add_root_between(-2 * radius_, low);
      add_root_between(low, high);
      add_root_between(high, 2 * radius_);
    } else {
      add_root_between(-2 * radius_, 2 * radius_);
    }
    // The two others, if not real: their sum is -b - x, their product c + x·(b + x).
    if (real_.size() == 1) {
      const Wide x = real_[0];
      pair_middle_ = -(b_ + x) / 2;
      const Wide squares = c_ + x * (b_ + x) - pair_middle_ * pair_middle_;
      pair_height_ = squares > 0 ? Wide(sqrt(squares)) : Wide(0);
    }
  }

  /// Ascending: three, or one. A double root stands twice.
  std::vector<Wide> const& real() const { return real_; }

  /// Up to a factor of two, the magnitude of the largest root, complex ones included.
  Wide const& radius() const { return radius_; }

  /// 18bcd - 4b³d + b²c² - 4c³ - 27d²: positive with three different real roots.
  Wide discriminant() const {
    return 18 * b_ * c_ * d_ - 4 * b_ * b_ * b_ * d_ + b_ * b_ * c_ * c_ - 4 * c_ * c_ * c_ - 27 * d_ * d_;
  }

  /// From x to the nearest root, complex ones included.
  Wide distance(Wide const& x) const {
    Wide least = abs(x - real_[0]);
    for (Wide const& root : real_) least = std::min(least, Wide(abs(x - root)));
    if (real_.size() == 1) {
      const Wide away = x - pair_middle_;
      least = std::min(least, Wide(sqrt(away * away + pair_height_ * pair_height_)));
    }
    return least;
  }

 private:
  Wide value(Wide const& x) const { return ((x + b_) * x + c_) * x + d_; }

  void add_root_between(Wide low, Wide high) {
    const Wide at_low = value(low), at_high = value(high);
    if (at_low * at_high > 0) return;
    const Wide smallest = ldexp(radius_, -100);
    const bool rising = at_low < at_high;
    while (high - low > smallest) {
      const Wide middle = (low + high) / 2;
      ((value(middle) < 0) == rising ? low : high) = middle;
    }
    real_.push_back(low);
  }

  Wide b_, c_, d_;
  Wide radius_;
  std::vector<Wide> real_;
  Wide pair_middle_, pair_height_;
};

double log_uniform(Random& random, double bits) {
  const double magnitude = std::exp2(random.uniform(-bits, 0.0));
  return random.below(2) == 0 ? magnitude : -magnitude;
}

/// Coefficients of a cubic with roots of magnitude about `size`; none of its squares and cubes may overflow.
struct Scale {
  double a, size;

  explicit Scale(Random& random)
      : a(std::ldexp(log_uniform(random, 1.0), static_cast<int>(random.below(601)) - 300)),
        size(std::ldexp(1.0, static_cast<int>(random.below(201)) - 100)) {}

  Cubic cubic(double b, double c, double d) const {
    return {a * d * size * size * size, a * c * size * size, a * b * size, a};
  }
  Cubic with_roots(double u, double v, double w) const {
    return cubic(-(u + v + w), u * v + v * w + w * u, -u * v * w);
  }
};

struct Family {
  const char* name;
  Cubic (*draw)(Random&);

  friend std::ostream& operator<<(std::ostream& out, Family const& family) { return out << family.name; }
};

const std::array<Family, 5> kFamilies{{
    {"coefficients_of_all_magnitudes",
     [](Random& random) {
       const Scale scale(random);
       const double b = log_uniform(random, 60), c = log_uniform(random, 60), d = log_uniform(random, 60);
       return scale.cubic(b, c, d);
     }},
    {"coefficients_of_like_magnitude",
     [](Random& random) {
       const Scale scale(random);
       const double b = random.uniform(-1.0, 1.0), c = random.uniform(-1.0, 1.0), d = random.uniform(-1.0, 1.0);
       return scale.cubic(b, c, d);
     }},
    {"separate_roots",
     [](Random& random) {
       const Scale scale(random);
       const double u = random.uniform(-1.0, -0.5), v = random.uniform(-0.25, 0.25), w = random.uniform(0.5, 1.0);
       return scale.with_roots(u, v, w);
     }},
    {"nearly_double_roots",
     [](Random& random) {
       const Scale scale(random);
       const double u = random.uniform(-1.0, 1.0), v = random.uniform(-1.0, 1.0);
       return scale.with_roots(u, u + log_uniform(random, 50), v);
     }},
    {"nearly_triple_roots",
     [](Random& random) {
       const Scale scale(random);
       const double u = random.uniform(-1.0, 1.0), v = log_uniform(random, 50), w = log_uniform(random, 50);
       return scale.with_roots(u, u + v, u + w);
     }},
}};

class CubicSolveAccuracy : public ::testing::TestWithParam<Family> {
 protected:
  static constexpr int kCases = 1000;

  // f and g carry a few roundings of terms of the size of radius² and radius³, g at most about 7 roundoffs of radius³.
  // They pass through a cube root at a place that may be 0: r - g/2 or -g/2 - r cancels where |f|³ is small beside g²,
  // and everything does next to a triple root. There an error e·radius³ becomes e^(1/3)·radius, here 9.2e-6, and a root
  // is the sum of two such terms.
  static constexpr double kCubeRootOfError = 2e-5;

  /// Largest difference of a computed root to the true one, divided by the radius.
  static double error(Answer const& answer, Truth const& truth) {
    Wide largest = 0;
    if (!answer.three || truth.real().size() < 3) {
      for (int k = 0; k < (answer.three ? 3 : 1); ++k) {
        largest = std::max(largest, truth.distance(answer.x[static_cast<std::size_t>(k)]));
      }
    } else {
      std::array<double, 3> x = answer.x;
      std::sort(x.begin(), x.end());
      for (std::size_t k = 0; k < 3; ++k) largest = std::max(largest, Wide(abs(x[k] - truth.real()[k])));
    }
    return static_cast<double>(Wide(largest / truth.radius()));
  }
};

TEST_P(CubicSolveAccuracy, IsTheCubeRootOfTheRoundoffAtWorst) {
  Random random(54);
  std::vector<double> errors;
  int decided = 0;
  for (int i = 0; i < kCases; ++i) {
    const Cubic p = GetParam().draw(random);
    SCOPED_TRACE(::testing::Message() << "seed 54, case " << i << ": " << p);
    const Truth truth(p);
    const Answer answer = solve(p);
    ASSERT_FALSE(answer.thrown);
    errors.push_back(error(answer, truth));
    ASSERT_LE(errors.back(), kCubeRootOfError);
    // h is -discriminant/108 in exact arithmetic, of terms up to about radius⁶, and carries some tens of roundoffs of
    // that: beyond, the number of roots is right.
    const Wide discriminant = truth.discriminant() / pow(truth.radius(), 6);
    if (abs(discriminant) < 1e-12) continue;
    ++decided;
    ASSERT_EQ(answer.three, discriminant > 0);
  }
  EXPECT_GT(decided, kCases / 20);
  // For the record, in ulps of the radius.
  std::sort(errors.begin(), errors.end());
  RecordProperty("median_ulps", std::to_string(errors[kCases / 2] * 0x1p52));
  RecordProperty("percentile_99_ulps", std::to_string(errors[kCases * 99 / 100] * 0x1p52));
  RecordProperty("worst_ulps", std::to_string(errors.back() * 0x1p52));
}

INSTANTIATE_TEST_SUITE_P(Families, CubicSolveAccuracy, ::testing::ValuesIn(kFamilies),
                         [](auto const& family) { return std::string(family.param.name); });

// With roots at least a quarter of the radius apart nothing is ill-conditioned: every step of the formula loses a few
// roundoffs of numbers of the radius' size, and the derivative at a root is at least a sixteenth of radius². Ten
// roundings on f and g, a slope of about 3 from the arc cosine to the root.
TEST(CubicSolveSeparateRoots, AreExactToAFewUlpsAndInOrder) {
  Random random(56);
  for (int i = 0; i < 1000; ++i) {
    const Scale scale(random);
    const double u = random.uniform(-1.0, -0.5), v = random.uniform(-0.25, 0.25), w = random.uniform(0.5, 1.0);
    const Cubic p = scale.with_roots(u, v, w);
    SCOPED_TRACE(::testing::Message() << "seed 56, case " << i << ": " << p);
    const Truth truth(p);
    const Answer answer = solve(p);
    ASSERT_TRUE(answer.three);
    // Largest, smallest, middle.
    const std::array<Wide, 3> expected{truth.real()[2], truth.real()[0], truth.real()[1]};
    for (std::size_t k = 0; k < 3; ++k) {
      ASSERT_LE(static_cast<double>(Wide(abs(answer.x[k] - expected[k]))), 64 * kRoundoff * scale.size);
    }
  }
}

}  // namespace
