#pragma once

/// @file
/// Frames as plain 4x4 tables: every operation of the class CDirCos written out entry by entry, in the order in which
/// it is defined. Sums of products run from left to right in index order, starting from the first product.

#include <gtest/gtest.h>
#include <talvo/core/direction.h>
#include <talvo/core/tens_sym3.h>
#include <talvo/core/vec3.h>
#include <talvo/transform/dir_cos.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>

#include "support/bits.h"
#include "support/elements.h"
#include "support/random.h"

namespace talvo::test {

using Frame = Talvo::Util::CDirCos;
using Vector = Vec3<double>;
using Tensor = TensSym3<double>;

/// Rows of a 4x4 matrix.
using Table = std::array<std::array<double, 4>, 4>;

constexpr Table kUnit{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

/// Sixteen different entries, so that none can stand for another.
constexpr Table kNumbered{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};

inline std::string print(Table const& m) {
  std::ostringstream out;
  out << std::setprecision(17);
  for (auto const& row : m) out << '[' << row[0] << ", " << row[1] << ", " << row[2] << ", " << row[3] << ']';
  return out.str();
}

/// Bit for bit in all sixteen entries, for EXPECT_TRUE.
inline ::testing::AssertionResult equal_tables(Table const& actual, Table const& expected) {
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) {
      if (!same_bits(actual[r][c], expected[r][c])) {
        return ::testing::AssertionFailure()
               << "entry (" << r << ", " << c << "): " << print(actual) << " instead of " << print(expected);
      }
    }
  }
  return ::testing::AssertionSuccess();
}

inline Table table_of(Frame const& frame) {
  Table m;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] = frame.Inner()(r, c);
  }
  return m;
}

inline Frame frame_of(Table const& m) {
  Frame frame;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) frame.Inner()(r, c) = m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
  }
  return frame;
}

inline Table table_of(Tensor const& t) {
  Table m;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] = t(r, c);
  }
  return m;
}

inline Tensor tensor_of(Table const& m) {
  Tensor t;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) t(r, c) = m[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
  }
  return t;
}

// ---------------------------------------------------------------- the operations, entry by entry

namespace plain {

inline Table transposed(Table const& m) {
  Table t;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) t[r][c] = m[c][r];
  }
  return t;
}

inline Table product(Table const& a, Table const& b) {
  Table m;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) {
      m[r][c] = ((a[r][0] * b[0][c] + a[r][1] * b[1][c]) + a[r][2] * b[2][c]) + a[r][3] * b[3][c];
    }
  }
  return m;
}

inline double dot(Vector const& a, Vector const& b) { return (a.x * b.x + a.y * b.y) + a.z * b.z; }

inline Vector cross(Vector const& a, Vector const& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, 0.0};
}

constexpr double kEpsilon = 2.220446049250313e-16;

/// Length 1 by division; w is kept. Without a length (NaN included) all four components are 0.
inline Vector unit_vector(Vector const& v) {
  const double length = std::sqrt(dot(v, v));
  if (!(length >= kEpsilon)) return {0.0, 0.0, 0.0, 0.0};
  return {v.x / length, v.y / length, v.z / length, v.w};
}

/// Length 1 as a four-vector, by the reciprocal.
inline Vector unit_four_vector(Vector const& v) {
  const double squares = ((v.x * v.x + v.y * v.y) + v.z * v.z) + v.w * v.w;
  if (!(squares > 0.0)) return v;
  const double factor = 1.0 / std::sqrt(squares);
  return {v.x * factor, v.y * factor, v.z * factor, v.w * factor};
}

inline void set_column(Table& m, std::size_t c, Vector const& v) {
  m[0][c] = v.x;
  m[1][c] = v.y;
  m[2][c] = v.z;
  m[3][c] = v.w;
}

inline Table assign(Vector const& x, Vector const& y, Vector const& z, bool normalise) {
  Table m = kUnit;
  set_column(m, 0, normalise ? unit_four_vector(x) : x);
  set_column(m, 1, normalise ? unit_four_vector(y) : y);
  set_column(m, 2, normalise ? unit_four_vector(z) : z);
  return m;
}

inline bool is_null(Vector const& v) {
  return std::fabs(v.x) < 1e-10 && std::fabs(v.y) < 1e-10 && std::fabs(v.z) < 1e-10;
}

inline Table create(Vector const& dir, Vector const& ref) {
  Table m = kUnit;
  if (is_null(dir)) return m;
  const Vector d = unit_vector(dir);
  const Vector c = cross(d, ref);
  if (is_null(c)) return m;
  const double length = std::sqrt(dot(c, c));
  Vector e3{c.x / length, c.y / length, c.z / length};
  if (length < kEpsilon) e3 = {0.0, 0.0, 0.0};
  set_column(m, 0, d);
  set_column(m, 1, cross(e3, d));
  set_column(m, 2, e3);
  return m;
}

inline bool equal(Table const& a, Table const& b) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (std::size_t r = 0; r < 3; ++r) {
      if (!(std::fabs(a[r][axis] - b[r][axis]) < 1e-10)) return false;
    }
  }
  return true;
}

inline Vector global_to_local(Table const& m, Vector const& v) {
  const auto component = [&](std::size_t j) {
    return ((v.x * m[0][j] + v.y * m[1][j]) + v.z * m[2][j]) + v.w * m[3][j];
  };
  return {component(0), component(1), component(2), 0.0};
}

inline Vector local_to_global(Table const& m, Vector const& v) {
  const auto component = [&](std::size_t j) {
    return ((m[j][0] * v.x + m[j][1] * v.y) + m[j][2] * v.z) + m[j][3] * v.w;
  };
  return {component(0), component(1), component(2), 0.0};
}

inline Table global_to_local(Table const& m, Table const& t) { return product(product(transposed(m), t), m); }
inline Table local_to_global(Table const& m, Table const& t) { return product(product(m, t), transposed(m)); }

inline Table rotate(Table const& m, Talvo::Direction axis, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  switch (axis) {
    case Talvo::X:
      return product(m, {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}}});
    case Talvo::Y:
      return product(m, {{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}}});
    case Talvo::Z:
      return product(m, {{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
    default:
      return m;
  }
}

/// Rodrigues' formula for one vector; k is the unit axis.
inline Vector turned(Vector const& v, Vector const& k, double s, double c) {
  const Vector kxv = cross(k, v);
  const double kv = dot(k, v);
  return {(v.x * c + kxv.x * s) + (k.x * kv) * (1.0 - c), (v.y * c + kxv.y * s) + (k.y * kv) * (1.0 - c),
          (v.z * c + kxv.z * s) + (k.z * kv) * (1.0 - c), v.w};
}

inline Table rotate(Table const& m, Vector const& axis, double angle) {
  if (angle == 0.0) return m;
  if (dot(axis, axis) == 0.0) throw std::logic_error("rotation about a null vector");
  const double s = std::sin(angle);
  const double c = std::cos(angle);
  const Vector k = unit_vector(axis);
  const Vector x = turned({m[0][0], m[1][0], m[2][0], 0.0}, k, s, c);
  const Vector y = turned({m[0][1], m[1][1], m[2][1], 0.0}, k, s, c);
  return assign(x, y, cross(x, y), true);
}

inline Table rotate(Table const& m, Vector const& rotation) {
  return rotate(m, rotation, std::sqrt(dot(rotation, rotation)));
}

inline double clamped(double u) { return u > 1.0 ? 1.0 : (u < -1.0 ? -1.0 : u); }

inline double in_reach(double u, const char* function) {
  if (u > 1.000001 || u < -1.000001) throw std::runtime_error(function + std::string(": function value out of range"));
  return clamped(u);
}

inline Vector rotation_angle(Table const& m) {
  const double beta = std::asin(in_reach(m[2][0], "ArcSin"));
  const double cb = std::cos(beta);
  if (std::fabs(cb) >= 1e-10) {
    const double s1 = in_reach(-m[2][1] / cb, "ArcSin");
    double alpha = std::acos(in_reach(m[2][2] / cb, "ArcCos"));
    if (std::asin(s1) < 0.0) alpha = -alpha;
    const double s3 = in_reach(-m[1][0] / cb, "ArcSin");
    double gamma = std::acos(in_reach(m[0][0] / cb, "ArcCos"));
    if (std::asin(s3) < 0.0) gamma = -gamma;
    return {alpha, beta, gamma, 0.0};
  }
  const double sigma = std::asin(in_reach(m[0][1], "ArcSin"));
  double gamma = std::acos(in_reach(m[1][1], "ArcCos"));
  if (sigma < 0.0) gamma = -gamma;
  return {0.0, beta, gamma, 0.0};
}

}  // namespace plain

// ---------------------------------------------------------------- frames and vectors to try

/// The same matrix in long double, upper 3x3 block.
using LongTable = std::array<std::array<long double, 3>, 3>;

inline LongTable product(LongTable const& a, LongTable const& b) {
  LongTable m{};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      for (std::size_t i = 0; i < 3; ++i) m[r][c] += a[r][i] * b[i][c];
    }
  }
  return m;
}

inline LongTable long_table(Table const& m) {
  LongTable t;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) t[r][c] = static_cast<long double>(m[r][c]);
  }
  return t;
}

/// The right-handed rotation by `angle` about a direction of any length, as the matrix of the unit quaternion
/// (cos(angle/2), sin(angle/2)·k).
inline LongTable quaternion_rotation(std::array<long double, 3> const& axis, long double angle) {
  const long double length = std::hypot(axis[0], axis[1], axis[2]);
  const long double s = std::sin(angle / 2);
  const long double w = std::cos(angle / 2);
  const long double x = s * axis[0] / length;
  const long double y = s * axis[1] / length;
  const long double z = s * axis[2] / length;
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
           {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
           {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
}

/// Rounded to double, row and column 3 those of the unit matrix.
inline Table rounded(LongTable const& m) {
  Table t = kUnit;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) t[r][c] = static_cast<double>(m[r][c]);
  }
  return t;
}

inline Vector random_direction(Random& random) {
  return {random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0), 0.0};
}

/// Axes that are orthonormal and right-handed to within the rounding of the entries.
inline Table random_rotation(Random& random) {
  const Vector k = random_direction(random);
  return rounded(quaternion_rotation({k.x, k.y, k.z}, random.uniform(-3.2, 3.2)));
}

/// Now and then any double, infinities, NaN and denormals included; else a number from -2 to 2, often 0.
inline double awkward_number(Random& random) {
  switch (random.below(12)) {
    case 0:
      return random.any_double();
    case 1:
      return 0.0;
    case 2:
      return -0.0;
    default:
      return random.uniform(-2.0, 2.0);
  }
}

inline Vector awkward_vector(Random& random) {
  return {awkward_number(random), awkward_number(random), awkward_number(random), awkward_number(random)};
}

/// In equal shares a rotation, the unit matrix with one entry changed, and sixteen awkward numbers.
inline Table awkward_table(Random& random) {
  Table m = kUnit;
  switch (random.below(3)) {
    case 0:
      return random_rotation(random);
    case 1:
      m[random.below(4)][random.below(4)] = random.any_double();
      return m;
    default:
      for (auto& row : m) {
        for (double& entry : row) entry = awkward_number(random);
      }
      return m;
  }
}

/// The largest difference between the upper 3x3 blocks.
inline double distance(Table const& actual, LongTable const& expected) {
  long double largest = 0;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      largest = std::fmax(largest, std::fabs(static_cast<long double>(actual[r][c]) - expected[r][c]));
    }
  }
  return static_cast<double>(largest);
}

}  // namespace talvo::test
