#include <talvo/geometry/measure.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "geometry/coordinates.h"
#include "geometry/exact.h"
#include "support/bits.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

using Talvo::Determinant4x4;
using Talvo::TetrahedronVolume;
using Talvo::TriangleArea;
using talvo::test::Coordinates;
using talvo::test::cross;
using talvo::test::dot;
using talvo::test::equal_bits;
using talvo::test::error_of;
using talvo::test::Exact;
using talvo::test::exact;
using talvo::test::integer;
using talvo::test::integer_point2;
using talvo::test::integer_point3;
using talvo::test::kRoundoff;
using talvo::test::magnitude;
using talvo::test::print;
using talvo::test::Random;

using Point2 = Vec2<double>;
using Point3 = Vec3<double>;
using Matrix = std::array<std::array<double, 4>, 4>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::string show(Point2 const& a, Point2 const& b, Point2 const& c) {
  return print({{a.x, a.y, 0}, {b.x, b.y, 0}, {c.x, c.y, 0}});
}

std::string show(Matrix const& m) {
  std::ostringstream out;
  out << std::setprecision(17);
  for (auto const& row : m) {
    for (const double value : row) out << value << ' ';
    out << "; ";
  }
  return out.str();
}

double determinant(Matrix const& m) {
  return Determinant4x4(m[0][0], m[0][1], m[0][2], m[0][3], m[1][0], m[1][1], m[1][2], m[1][3], m[2][0], m[2][1],
                        m[2][2], m[2][3], m[3][0], m[3][1], m[3][2], m[3][3]);
}

double volume(std::array<Point3, 4> const& p) {
  return TetrahedronVolume(p[0].x, p[0].y, p[0].z, p[1].x, p[1].y, p[1].z, p[2].x, p[2].y, p[2].z, p[3].x, p[3].y,
                           p[3].z);
}

/// The matrix of a tetrahedron's volume.
Matrix rows_of(std::array<Point3, 4> const& p) {
  return {{{p[0].x, p[0].y, p[0].z, 1.0},
           {p[1].x, p[1].y, p[1].z, 1.0},
           {p[2].x, p[2].y, p[2].z, 1.0},
           {p[3].x, p[3].y, p[3].z, 1.0}}};
}

Matrix transposed(Matrix const& m) {
  Matrix t{};
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) t[c][r] = m[r][c];
  }
  return t;
}

double literal_area(Point2 const& a, Point2 const& b, Point2 const& c) {
  return 0.5 * std::fabs((c.y - a.y) * b.x + (b.y - c.y) * a.x + (a.y - b.y) * c.x);
}

double literal_area(Point3 const& p, Point3 const& q, Point3 const& r) {
  const auto [x0, y0, z0, w0] = p;
  const auto [x1, y1, z1, w1] = q;
  const auto [x2, y2, z2, w2] = r;
  const double e1 = x1 * z0 - x2 * z0 - x0 * z1 + x2 * z1 + x0 * z2 - x1 * z2;
  const double e2 = x1 * y0 - x2 * y0 - x0 * y1 + x2 * y1 + x0 * y2 - x1 * y2;
  const double e3 = z0 * y1 - z0 * y2 - z1 * y0 + z1 * y2 + y0 * z2 - y1 * z2;
  return 0.5 * std::sqrt(e1 * e1 + e2 * e2 + e3 * e3);
}

/// The column indices in lexicographic order, the sign by the number of inversions, factors by row, terms from left to
/// right.
double literal_determinant(Matrix const& m) {
  std::array<std::size_t, 4> column{0, 1, 2, 3};
  double sum = 0.0;
  bool first = true;
  do {
    int inversions = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      for (std::size_t j = i + 1; j < 4; ++j) inversions += column[i] > column[j] ? 1 : 0;
    }
    const double term = m[0][column[0]] * m[1][column[1]] * m[2][column[2]] * m[3][column[3]];
    sum = first ? term : (inversions % 2 == 0 ? sum + term : sum - term);
    first = false;
  } while (std::next_permutation(column.begin(), column.end()));
  return sum;
}

using ExactMatrix = std::array<std::array<Exact, 4>, 4>;

ExactMatrix exact_matrix(Matrix const& m) {
  ExactMatrix e;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) e[r][c] = Exact(m[r][c]);
  }
  return e;
}

/// By Gaussian elimination.
Exact exact_determinant(ExactMatrix m) {
  Exact product = 1;
  for (std::size_t k = 0; k < 4; ++k) {
    std::size_t pivot = k;
    while (pivot < 4 && m[pivot][k] == 0) ++pivot;
    if (pivot == 4) return 0;
    if (pivot != k) {
      std::swap(m[pivot], m[k]);
      product = -product;
    }
    product *= m[k][k];
    for (std::size_t r = k + 1; r < 4; ++r) {
      const Exact factor = m[r][k] / m[k][k];
      for (std::size_t c = k; c < 4; ++c) m[r][c] -= factor * m[k][c];
    }
  }
  return product;
}

/// The sum of the 24 products without their signs: what the rounding error of the determinant is measured in.
double sum_of_magnitudes(Matrix const& m) {
  std::array<std::size_t, 4> column{0, 1, 2, 3};
  double sum = 0.0;
  do {
    sum += std::fabs(m[0][column[0]] * m[1][column[1]] * m[2][column[2]] * m[3][column[3]]);
  } while (std::next_permutation(column.begin(), column.end()));
  return sum;
}

// Three roundings in each product, at most 23 in the sum.
constexpr double kDeterminantRoundings = 26.001;

Matrix integer_matrix(Random& random, int limit) {
  Matrix m{};
  for (auto& row : m) {
    for (double& value : row) value = integer(random, limit);
  }
  return m;
}

TEST(TriangleArea, OfHalfTheUnitSquareIsOneHalf) {
  EXPECT_EQ(TriangleArea(Point2{0, 0}, Point2{1, 0}, Point2{0, 1}), 0.5);
  EXPECT_EQ(TriangleArea(Point3{0, 0, 0}, Point3{1, 0, 0}, Point3{0, 1, 0}), 0.5);
}

// Base 4, height 3.
TEST(TriangleArea, IsHalfBaseTimesHeight) {
  EXPECT_EQ(TriangleArea(Point2{1, 1}, Point2{5, 1}, Point2{-7, 4}), 6.0);
  EXPECT_EQ(TriangleArea(Point3{1, 2, 1}, Point3{5, 2, 1}, Point3{-7, 2, 4}), 6.0);
  EXPECT_EQ(TriangleArea(Point3{9, 1, 1}, Point3{9, 5, 1}, Point3{9, -7, 4}), 6.0);
}

// The edges (1,0,0) - (0,1,0) - (0,0,1) have length sqrt(2): area sqrt(3) / 4 · 2.
TEST(TriangleArea, OfTheObliqueTriangle) {
  EXPECT_EQ(TriangleArea(Point3{1, 0, 0}, Point3{0, 1, 0}, Point3{0, 0, 1}), 0.5 * std::sqrt(3.0));
}

TEST(TriangleArea, IsNeverNegative) {
  EXPECT_EQ(TriangleArea(Point2{0, 0}, Point2{0, 1}, Point2{1, 0}), 0.5);
  EXPECT_EQ(TriangleArea(Point3{0, 0, 0}, Point3{0, 1, 0}, Point3{1, 0, 0}), 0.5);
}

TEST(TriangleArea, OfPointsOnALineIsZero) {
  EXPECT_TRUE(equal_bits(TriangleArea(Point2{0, 0}, Point2{1, 2}, Point2{3, 6}), 0.0));
  EXPECT_TRUE(equal_bits(TriangleArea(Point2{4, 5}, Point2{4, 5}, Point2{3, 6}), 0.0));
  EXPECT_TRUE(equal_bits(TriangleArea(Point3{0, 0, 1}, Point3{1, 2, 2}, Point3{3, 6, 4}), 0.0));
  EXPECT_TRUE(equal_bits(TriangleArea(Point3{4, 5, 6}, Point3{4, 5, 6}, Point3{3, 6, 4}), 0.0));
}

TEST(TriangleArea, NanAndInfinityArePassedOn) {
  EXPECT_TRUE(std::isnan(TriangleArea(Point2{0, 0}, Point2{1, 0}, Point2{0, kNan})));
  EXPECT_TRUE(std::isnan(TriangleArea(Point3{0, 0, kNan}, Point3{1, 0, 0}, Point3{0, 1, 0})));
  EXPECT_EQ(TriangleArea(Point2{-1, 1}, Point2{2, 1}, Point2{3, kInfinity}), kInfinity);
}

TEST(TriangleArea, TheHomogeneousComponentIsIgnored) {
  EXPECT_EQ(TriangleArea(Point3{0, 0, 0, kNan}, Point3{1, 0, 0, 5}, Point3{0, 1, 0, kInfinity}), 0.5);
}

// Nothing is rounded in the plane; in space the square root is, once.
TEST(TriangleArea, IsExactOnIntegers) {
  Random random(21);
  for (int i = 0; i < 20'000; ++i) {
    const Point2 a = integer_point2(random, 100'000);
    const Point2 b = integer_point2(random, 100'000);
    const Point2 c = integer_point2(random, 100'000);
    const Exact expected = magnitude(cross(exact(b - a), exact(c - a))) / 2;
    ASSERT_EQ(Exact(TriangleArea(a, b, c)), expected) << show(a, b, c);
  }
  for (int i = 0; i < 20'000; ++i) {
    const Point3 a = integer_point3(random, 1000);
    const Point3 b = integer_point3(random, 1000);
    const Point3 c = integer_point3(random, 1000);
    const Vec3<Exact> n = cross(exact(b - a), exact(c - a));
    ASSERT_EQ(TriangleArea(a, b, c), 0.5 * std::sqrt(dot(n, n).convert_to<double>())) << print({a, b, c});
  }
}

// Plane: the difference, the product and two sums. The coordinates' own size enters, not the triangle's.
TEST(TriangleArea, InThePlaneIsWithinFourRoundingsOfItsTerms) {
  Random random(22);
  for (int i = 0; i < 5000; ++i) {
    const double far = random.below(2) == 0 ? 0.0 : 1e6;
    const auto coordinate = [&] { return far + random.uniform(-2.0, 2.0); };
    const Point2 a{coordinate(), coordinate()};
    const Point2 b{coordinate(), coordinate()};
    const Point2 c{coordinate(), coordinate()};
    const Exact expected = magnitude(cross(exact(b) - exact(a), exact(c) - exact(a))) / 2;
    const double terms =
        0.5 * (std::fabs((c.y - a.y) * b.x) + std::fabs((b.y - c.y) * a.x) + std::fabs((a.y - b.y) * c.x));
    ASSERT_LE(error_of(TriangleArea(a, b, c), expected), 4.001 * kRoundoff * terms) << show(a, b, c);
  }
}

// Space: each component of the cross product is six products, rounded once each and in five sums. The length of a
// vector changes by no more than the vector itself, its evaluation (square, two sums, root) by 2.5 roundings of its
// value.
TEST(TriangleArea, InSpaceIsWithinSixRoundingsOfItsTerms) {
  Random random(23);
  for (int i = 0; i < 5000; ++i) {
    const double far = random.below(2) == 0 ? 0.0 : 1e6;
    const auto coordinate = [&] { return far + random.uniform(-2.0, 2.0); };
    const Point3 a{coordinate(), coordinate(), coordinate()};
    const Point3 b{coordinate(), coordinate(), coordinate()};
    const Point3 c{coordinate(), coordinate(), coordinate()};
    const Vec3<Exact> n = cross(exact(b) - exact(a), exact(c) - exact(a));
    const Exact area2 = dot(n, n) / 4;
    const auto terms = [](double p0, double q0, double p1, double q1, double p2, double q2) {
      return std::fabs(p1 * q0) + std::fabs(p2 * q0) + std::fabs(p0 * q1) + std::fabs(p2 * q1) + std::fabs(p0 * q2) +
             std::fabs(p1 * q2);
    };
    const double all_terms = 0.5 * std::hypot(terms(a.x, a.z, b.x, b.z, c.x, c.z), terms(a.x, a.y, b.x, b.y, c.x, c.y),
                                              terms(a.z, a.y, b.z, b.y, c.z, c.y));
    const double actual = TriangleArea(a, b, c);
    // The exact area is a root: actual lies within the bound of it when the squares of both ends enclose its square.
    const Exact bound = Exact(kRoundoff * (6.001 * all_terms + 2.501 * actual));
    const Exact low = std::max(Exact(0), Exact(Exact(actual) - bound));
    const Exact high = Exact(actual) + bound;
    ASSERT_TRUE(low * low <= area2 && area2 <= high * high) << print({a, b, c});
  }
}

TEST(TriangleArea, FollowsItsFormulaBitForBit) {
  Random random(24);
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const Point2 a = coordinate.point2();
    const Point2 b = coordinate.point2();
    const Point2 c = coordinate.point2();
    ASSERT_TRUE(equal_bits(TriangleArea(a, b, c), literal_area(a, b, c))) << "case " << i << ' ' << show(a, b, c);
    const Point3 p = coordinate.point3();
    const Point3 q = coordinate.point3();
    const Point3 r = coordinate.point3();
    ASSERT_TRUE(equal_bits(TriangleArea(p, q, r), literal_area(p, q, r))) << "case " << i << ' ' << print({p, q, r});
  }
}

TEST(TetrahedronVolume, OfTheUnitTetrahedronIsMinusOneSixth) {
  EXPECT_EQ(TetrahedronVolume(0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1), -0.16666666666666666);
  EXPECT_EQ(TetrahedronVolume(0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1), -1.0 / 6.0);
}

TEST(TetrahedronVolume, ChangesSignWithTheOrderOfThePoints) {
  EXPECT_EQ(TetrahedronVolume(0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1), 1.0 / 6.0);
  EXPECT_EQ(TetrahedronVolume(1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1), 1.0 / 6.0);
}

TEST(TetrahedronVolume, OfPointsInAPlaneIsZero) {
  EXPECT_EQ(TetrahedronVolume(0, 0, 5, 1, 0, 5, 0, 1, 5, 7, 8, 5), 0.0);
  EXPECT_EQ(TetrahedronVolume(1, 2, 3, 1, 2, 3, 4, 5, 7, 9, 8, 5), 0.0);
}

// The volume is (p1 - p0) · ((p2 - p0) × (p3 - p0)) / 6 with the opposite sign. On integers only the quotient is
// rounded.
TEST(TetrahedronVolume, IsTheTripleProductOverSixOnIntegers) {
  Random random(25);
  for (int i = 0; i < 20'000; ++i) {
    const std::array<Point3, 4> p{integer_point3(random, 1000), integer_point3(random, 1000),
                                  integer_point3(random, 1000), integer_point3(random, 1000)};
    const Exact product = dot(exact(p[1] - p[0]), cross(exact(p[2] - p[0]), exact(p[3] - p[0])));
    ASSERT_EQ(volume(p), -product.convert_to<double>() / 6.0) << print({p[0], p[1], p[2], p[3]});
  }
}

TEST(TetrahedronVolume, IsTheDeterminantOfItsRowsOverSixBitForBit) {
  Random random(26);
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    const std::array<Point3, 4> p{coordinate.point3(), coordinate.point3(), coordinate.point3(), coordinate.point3()};
    ASSERT_TRUE(equal_bits(volume(p), literal_determinant(rows_of(p)) / 6.0))
        << "case " << i << ' ' << print({p[0], p[1], p[2], p[3]});
  }
}

TEST(Determinant4x4, OfTheIdentityIsOne) {
  EXPECT_EQ(Determinant4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1), 1.0);
}

// One 1 in every row and column: the determinant is the sign of the permutation, so that each of the 24 terms is met.
TEST(Determinant4x4, OfAPermutationIsItsSign) {
  std::array<std::size_t, 4> column{0, 1, 2, 3};
  int sum = 0;
  do {
    Matrix m{};
    for (std::size_t r = 0; r < 4; ++r) m[r][column[r]] = static_cast<double>(r + 2);
    // The sign by sorting: each exchange changes it.
    std::array<std::size_t, 4> sorted = column;
    double sign = 1.0;
    for (std::size_t k = 0; k < 4; ++k) {
      while (sorted[k] != k) {
        std::swap(sorted[k], sorted[sorted[k]]);
        sign = -sign;
      }
    }
    EXPECT_EQ(determinant(m), sign * (2 * 3 * 4 * 5)) << show(m);
    sum += static_cast<int>(sign);
  } while (std::next_permutation(column.begin(), column.end()));
  EXPECT_EQ(sum, 0);
}

// Rows 1, x, x², x³ for x = 1, 2, 3, 4 (Vandermonde): the product of all differences, 1·2·3·1·2·1.
TEST(Determinant4x4, OfAVandermondeMatrixIsTheProductOfTheDifferences) {
  EXPECT_EQ(Determinant4x4(1, 1, 1, 1, 1, 2, 4, 8, 1, 3, 9, 27, 1, 4, 16, 64), 12.0);
}

TEST(Determinant4x4, IsExactOnIntegersAndTheSameForTheTransposedMatrix) {
  Random random(27);
  for (int i = 0; i < 20'000; ++i) {
    const Matrix m = integer_matrix(random, i % 2 == 0 ? 3 : 2000);
    const double expected = exact_determinant(exact_matrix(m)).convert_to<double>();
    ASSERT_EQ(determinant(m), expected) << show(m);
    ASSERT_EQ(determinant(transposed(m)), expected) << show(m);
  }
}

TEST(Determinant4x4, ChangesSignWithTwoRowsOrColumnsExchanged) {
  Random random(28);
  for (int i = 0; i < 2000; ++i) {
    Matrix m = integer_matrix(random, 1000);
    const double expected = -determinant(m);
    const std::size_t a = random.below(4);
    const std::size_t b = (a + 1 + random.below(3)) % 4;
    std::swap(m[a], m[b]);
    ASSERT_EQ(determinant(m), expected) << show(m);
    ASSERT_EQ(determinant(transposed(m)), expected) << show(m);
  }
}

TEST(Determinant4x4, OfLinearlyDependentRowsIsZero) {
  EXPECT_EQ(Determinant4x4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16), 0.0);
}

TEST(Determinant4x4, IsWithinTwentySixRoundingsOfTheExactDeterminant) {
  Random random(29);
  for (int i = 0; i < 3000; ++i) {
    Matrix m{};
    for (auto& row : m) {
      for (double& value : row) value = std::ldexp(random.uniform(-1.0, 1.0), static_cast<int>(random.below(20)));
    }
    // Nearly dependent rows, where the terms cancel.
    if (i % 2 == 0) m[3] = m[random.below(3)];
    if (i % 2 == 0) m[3][0] = random.near(m[3][0], 100);
    const Exact expected = exact_determinant(exact_matrix(m));
    const double bound = kDeterminantRoundings * kRoundoff * sum_of_magnitudes(m);
    ASSERT_LE(error_of(determinant(m), expected), bound) << show(m);
    ASSERT_LE(error_of(determinant(transposed(m)), expected), bound) << show(m);
  }
}

TEST(Determinant4x4, NanIsPassedOnFromEveryPlace) {
  Random random(30);
  for (std::size_t place = 0; place < 16; ++place) {
    Matrix m = integer_matrix(random, 5);
    m[place / 4][place % 4] = kNan;
    EXPECT_TRUE(std::isnan(determinant(m))) << place;
    EXPECT_TRUE(std::isnan(determinant(transposed(m)))) << place;
  }
}

// A sum of zeros is -0 only when each of them is. Here that would take a matrix of signs with the determinant -24, and
// none exceeds 16 (Hadamard's bound, 4^(4/2)).
TEST(Determinant4x4, AZeroIsPositive) {
  Random random(31);
  int zeros = 0;
  for (int i = 0; i < 50'000; ++i) {
    Matrix m{};
    for (auto& row : m) {
      for (double& value : row) value = std::array{0.0, -0.0, 1.0, -1.0}[random.below(4)];
    }
    const double actual = determinant(m);
    zeros += actual == 0.0 ? 1 : 0;
    ASSERT_FALSE(actual == 0.0 && std::signbit(actual)) << show(m);
  }
  EXPECT_GT(zeros, 10'000);
}

TEST(Determinant4x4, AddsItsTermsInLexicographicOrderBitForBit) {
  Random random(32);
  for (int i = 0; i < 300'000; ++i) {
    Coordinates coordinate(random);
    Matrix m{};
    for (auto& row : m) {
      for (double& value : row) value = coordinate();
    }
    ASSERT_TRUE(equal_bits(determinant(m), literal_determinant(m))) << "case " << i << ' ' << show(m);
  }
}

}  // namespace
