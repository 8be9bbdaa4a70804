#include "core/arc.h"
#include "core/vec3_kernels.h"
#include "transform/matrix4.h"

#include <talvo/transform/dir_cos.h>
#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Talvo::Util {

using namespace talvo::transform;

namespace {

constexpr Matrix4 unit_matrix{1, 0, 0, 0,  //
                              0, 1, 0, 0,  //
                              0, 0, 1, 0,  //
                              0, 0, 0, 1};

// Below this a component counts as zero.
constexpr double zero_component = 1e-10;

bool is_null(Vec3<double> const& v) {
  return std::fabs(v.x) < zero_component && std::fabs(v.y) < zero_component && std::fabs(v.z) < zero_component;
}

// Unlike talvo::unit this keeps w, unless the vector has no length, and makes a vector with a NaN null.
Vec3<double> unit_with_w(Vec3<double> const& v) {
  const double n = talvo::length(v);
  if (!(n >= talvo::null_length)) return {0.0, 0.0, 0.0, 0.0};
  return {v.x / n, v.y / n, v.z / n, v.w};
}

// Scaled by the reciprocal of the length of all four components.
Vec3<double> unit_four_vector(Vec3<double> const& v) {
  const double squares = v.x * v.x + v.y * v.y + v.z * v.z + v.w * v.w;
  if (!(squares > 0.0)) return v;
  const double reciprocal = 1.0 / std::sqrt(squares);
  return {v.x * reciprocal, v.y * reciprocal, v.z * reciprocal, v.w * reciprocal};
}

// The unit matrix with the three axes in its columns.
Matrix4 from_columns(Vec3<double> const& x, Vec3<double> const& y, Vec3<double> const& z) {
  return {x.x, y.x, z.x, 0.0,  //
          x.y, y.y, z.y, 0.0,  //
          x.z, y.z, z.z, 0.0,  //
          x.w, y.w, z.w, 1.0};
}

// Turns about x, y or z by the angle whose cosine and sine are c and s; the unit matrix for any other direction.
Matrix4 rotation(Direction axis, double c, double s) {
  switch (axis) {
    case X:
      return {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1};
    case Y:
      return {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
    case Z:
      return {c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    default:
      return unit_matrix;
  }
}

// Rodrigues' formula: v cos + (k × v) sin + k (k · v) (1 - cos), for a unit vector k. w is kept.
Vec3<double> rotated(Vec3<double> const& v, Vec3<double> const& k, double c, double s) {
  const Vec3<double> k_cross_v = talvo::cross(k, v);
  const double k_dot_v = talvo::dot(k, v);
  return {v.x * c + k_cross_v.x * s + k.x * k_dot_v * (1.0 - c),  //
          v.y * c + k_cross_v.y * s + k.y * k_dot_v * (1.0 - c),  //
          v.z * c + k_cross_v.z * s + k.z * k_dot_v * (1.0 - c), v.w};
}

// The angle whose cosine and sine are given, in [-pi, pi]: magnitude from the cosine, sign from the sine.
double angle_of(double sine, double cosine) {
  talvo::ensure_sine(sine);
  const double magnitude = talvo::arc_cos(cosine);
  return sine < 0.0 ? -magnitude : magnitude;
}

void set(CDirCos::Matrix& matrix, Matrix4 const& entries) { std::copy(entries.begin(), entries.end(), matrix.data()); }

CDirCos frame(Matrix4 const& entries) {
  CDirCos result;
  set(result.Inner(), entries);
  return result;
}

TensSym3<double> tensor(Matrix4 const& entries) {
  TensSym3<double> result;
  std::copy(entries.begin(), entries.end(), result.components);
  return result;
}

}  // namespace

CDirCos::CDirCos() { set(m_matrix, unit_matrix); }

CDirCos::CDirCos(Eigen::Matrix<double, 4, 4>& m) {
  const double* column_major = m.data();
  set(m_matrix, transposed(column_major));
}

CDirCos::CDirCos(Vec3<double> const& x, Vec3<double> const& y, Vec3<double> const& z, bool normalise) {
  CDirCos::Assign(x, y, z, normalise);
}

void CDirCos::Unit() { set(m_matrix, unit_matrix); }

void CDirCos::Create(Vec3<double> dir, Vec3<double> const& ref) {
  const Vec3<double> d = unit_with_w(dir);
  const Vec3<double> c = talvo::cross(d, ref);
  if (is_null(dir) || is_null(c)) {
    set(m_matrix, unit_matrix);
    return;
  }
  const Vec3<double> e3 = talvo::unit(c);
  const Vec3<double> e2 = talvo::cross(e3, d);
  set(m_matrix, from_columns(d, e2, e3));
}

void CDirCos::Assign(CDirCos const& other) { m_matrix = other.m_matrix; }

void CDirCos::Assign(Vec3<double> const& x, Vec3<double> const& y, Vec3<double> const& z, bool normalise) {
  set(m_matrix,
      normalise ? from_columns(unit_four_vector(x), unit_four_vector(y), unit_four_vector(z)) : from_columns(x, y, z));
}

void CDirCos::Transpose() { set(m_matrix, transposed(m_matrix.data())); }

bool CDirCos::operator==(CDirCos const& other) const {
  for (const Direction axis : {X, Y, Z}) {
    if (!is_null(AxisVec(axis, true) - other.AxisVec(axis, true))) return false;
  }
  return true;
}

CDirCos CDirCos::Transform(CDirCos const& other) const {
  return frame(product(m_matrix.data(), other.m_matrix.data()));
}

CDirCos CDirCos::TransformAlt(CDirCos const& other) const {
  return frame(transposed_product(m_matrix.data(), other.m_matrix.data()));
}

CDirCos CDirCos::Rotate(Direction axis, double angle) const {
  if (axis != X && axis != Y && axis != Z) return *this;  // a product with the unit matrix would lose signs of zeros
  return frame(product(m_matrix.data(), rotation(axis, std::cos(angle), std::sin(angle)).data()));
}

CDirCos CDirCos::Rotate(Vec3<double> const& axis, double angle) const {
  if (angle == 0.0) return *this;
  if (talvo::dot(axis, axis) == 0.0) throw std::logic_error("rotation about a null vector");
  const double s = std::sin(angle);
  const double c = std::cos(angle);
  const Vec3<double> k = unit_with_w(axis);
  const Vec3<double> x = rotated(AxisVec(X, true), k, c, s);
  const Vec3<double> y = rotated(AxisVec(Y, true), k, c, s);
  return {x, y, talvo::cross(x, y), true};
}

CDirCos CDirCos::Rotate(Vec3<double> const& rotationVector) const {
  return Rotate(rotationVector, talvo::length(rotationVector));
}

Vec3<double> CDirCos::RotationAngle() const {
  const Matrix& M = m_matrix;
  const double beta = talvo::arc_sin(M(2, 0));
  const double cos_beta = std::cos(beta);
  if (std::fabs(cos_beta) >= 1e-10) {
    const double alpha = angle_of(-M(2, 1) / cos_beta, M(2, 2) / cos_beta);
    const double gamma = angle_of(-M(1, 0) / cos_beta, M(0, 0) / cos_beta);
    return {alpha, beta, gamma, 0.0};
  }
  // The first and the last turn are about the same axis: the last carries both.
  return {0.0, beta, angle_of(M(0, 1), M(1, 1)), 0.0};
}

Vec3<double> CDirCos::AxisVec(Direction axis, bool column) const {
  const int i = axis - X;
  if (i < 0 || i > 3) return {0.0, 0.0, 0.0, 0.0};
  const Matrix& M = m_matrix;
  if (column) return {M(0, i), M(1, i), M(2, i), 0.0};
  return {M(i, 0), M(i, 1), M(i, 2), 0.0};
}

TensSym3<double> CDirCos::GtoL(TensSym3<double> const& t) const {
  const double* M = m_matrix.data();
  return tensor(product(transposed_product(M, t.components).data(), M));
}

Vec3<double> CDirCos::GtoL(Vec3<double> const& v) const {
  double local[4];
  combine_rows(v.x, v.y, v.z, v.w, m_matrix.data(), local);
  return {local[0], local[1], local[2], 0.0};
}

TensSym3<double> CDirCos::LtoG(TensSym3<double> const& t) const {
  const double* M = m_matrix.data();
  return tensor(product(product(M, t.components).data(), transposed(M).data()));
}

Vec3<double> CDirCos::LtoG(Vec3<double> const& v) const {
  const double* M = m_matrix.data();
  return {M[0] * v.x + M[1] * v.y + M[2] * v.z + M[3] * v.w, M[4] * v.x + M[5] * v.y + M[6] * v.z + M[7] * v.w,
          M[8] * v.x + M[9] * v.y + M[10] * v.z + M[11] * v.w, 0.0};
}

}  // namespace Talvo::Util
