#pragma once

/// @file
/// Local axes: a frame as a matrix of direction cosines.

#include <talvo/core/direction.h>
#include <talvo/core/tens_sym3.h>
#include <talvo/core/vec3.h>
#include <talvo/export.h>

#include <Eigen/Core>

namespace Talvo::Util {

/// The orientation of a local coordinate system relative to the global one.
///
/// M is a 4x4 homogeneous matrix whose columns 0, 1, 2 are the local x, y and z axes in global coordinates. Row 3 holds
/// the axes' w components (normally 0), and column 3 is (0, 0, 0, 1) in every frame that the class builds itself. A
/// vector v_l in local axes is v_g = M v_l in global ones. Angles are in radians.
///
/// A frame is whatever its axes are: nothing checks that they are unit vectors, orthogonal or right-handed, and no
/// operation but the rotation about a vector normalises anything.
///
/// All sums of products run from left to right in index order, starting from the first product, so that every build
/// gives the same bits.
///
/// @code
/// Talvo::Util::CDirCos beam;
/// beam.Create({0, 1, 0}, {0, 0, 1});                    // local x along global y
/// const Vec3<double> local = beam.GtoL({1, 2, 3});      // (2, 3, 1)
/// @endcode
///
/// The virtual operations stand in the order of their slots, which derived classes in other programs rely on. There is
/// no virtual destructor: do not delete a derived object through a pointer to CDirCos.
class TALVO_EXPORT CDirCos {
 public:
  using Matrix = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

  /// @name Virtual operations, in slot order
  /// @{

  /// Local axes equal global axes: the unit matrix.
  virtual void Unit();

  /// A right-handed frame with x along `dir` and z along dir × ref, so that `ref` lies in the local x-y plane.
  ///
  /// When `dir` is null (or has a NaN) or `ref` is parallel to it (all components of `dir`, or of the unit `dir` times
  /// `ref`, below 1e-10) the frame becomes the unit matrix, and the direction is not kept: choose another reference
  /// then. The x axis carries the `w` of `dir` into row 3.
  virtual void Create(Vec3<double> dir, Vec3<double> const& ref);

  /// Copies all sixteen entries.
  virtual void Assign(CDirCos const& other);

  /// The three axes as they are given, all four components each, or scaled to length 1 with `normalise`.
  ///
  /// The length is that of the four components: w takes part, as in a four-vector. A vector without length (or with a
  /// NaN) is stored as it is. No orthogonality is made or checked.
  virtual void Assign(Vec3<double> const& x, Vec3<double> const& y, Vec3<double> const& z, bool normalise);

  /// Transposes the whole 4x4 matrix: the inverse of an orthonormal frame.
  virtual void Transpose();

  /// M · N, N the other's matrix: `other`, which is given in these local axes, in global ones.
  virtual CDirCos Transform(CDirCos const& other) const;

  /// Mᵀ · N: `other`, which is given in global axes, in these local ones.
  virtual CDirCos TransformAlt(CDirCos const& other) const;

  /// This frame turned about one of its own axes by the right-hand rule: M · R.
  ///
  /// Any direction other than X, Y and Z, the rotations XX, YY and ZZ included, selects no axis: the result is then an
  /// exact copy, and nothing is thrown.
  virtual CDirCos Rotate(Direction axis, double angle) const;

  /// Mᵀ · T · M, all sixteen entries: t in local axes.
  virtual TensSym3<double> GtoL(TensSym3<double> const& t) const;
  /// v in local axes; v.w takes part with row 3, and the result's w is 0.
  virtual Vec3<double> GtoL(Vec3<double> const& v) const;
  /// M · T · Mᵀ, all sixteen entries: t in global axes.
  virtual TensSym3<double> LtoG(TensSym3<double> const& t) const;
  /// v in global axes; v.w takes part with column 3, and the result's w is 0.
  virtual Vec3<double> LtoG(Vec3<double> const& v) const;
  /// @}

  /// @name Construction
  /// @{

  /// The unit matrix.
  CDirCos();
  /// Copies a matrix entry by entry. It is not changed.
  CDirCos(Eigen::Matrix<double, 4, 4>& m);
  /// As Assign() of this class.
  CDirCos(Vec3<double> const& x, Vec3<double> const& y, Vec3<double> const& z, bool normalise);
  CDirCos(CDirCos const&) = default;
  CDirCos(CDirCos&&) noexcept = default;
  CDirCos& operator=(CDirCos const&) = default;
  CDirCos& operator=(CDirCos&&) noexcept = default;
  /// @}

  /// Whether the axes agree: each of x, y and z of each axis differs by less than 1e-10, absolutely. Row 3 and column 3
  /// are not compared. Two such equalities do not make a third.
  bool operator==(CDirCos const& other) const;

  /// @name The stored matrix itself
  /// @{
  Matrix& Inner() { return m_matrix; }
  Matrix const& Inner() const { return m_matrix; }
  /// @}

  /// This frame turned about a global vector by the right-hand rule (Rodrigues' formula); the axes of the result are
  /// unit vectors, and its z axis is x × y.
  ///
  /// An angle of exactly 0 gives a copy, whatever the axis. Otherwise a vector whose squares add up to 0 throws
  /// std::logic_error "rotation about a null vector". The vector's length does not matter; one shorter than
  /// 2.220446049250313e-16, or with a NaN, turns nothing but scales the axes by cos(angle) before they are normalised.
  CDirCos Rotate(Vec3<double> const& axis, double angle) const;

  /// The same with the vector's length as the angle: a null vector gives a copy.
  CDirCos Rotate(Vec3<double> const& rotationVector) const;

  /// Three angles (alpha, beta, gamma) in radians with sin beta = M(2, 0), alpha and gamma in [-pi, pi].
  ///
  /// An orthonormal, right-handed M is Rz(-gamma) · Ry(-beta) · Rx(-alpha), with R the right-handed rotations about the
  /// global axes. Where |cos beta| < 1e-10 the two outer turns are one: alpha is exactly 0 and gamma carries both.
  ///
  /// Throws std::runtime_error "ArcSin: function value out of range" or "ArcCos: function value out of range" when a
  /// sine or cosine leaves [-1.000001, 1.000001]: M(2, 0), or an entry divided by cos beta. Near the degenerate case,
  /// from |cos beta| of about 1e-5 down to 1e-9, the rounding of a proper rotation can be enough for that, and the
  /// angles lose digits as 1/cos² beta; take the axes themselves there.
  Vec3<double> RotationAngle() const;

  /// Local axis `axis` (a column of M, rows 0 to 2), or with `column` false a row of M (columns 0 to 2); w is 0.
  ///
  /// Only X, Y and Z are meaningful. XX reads column or row 3; any other value gives (0, 0, 0). Nothing is thrown.
  Vec3<double> AxisVec(Direction axis, bool column) const;

 private:
  // 64 is the strictest alignment that any compiler flag gives an Eigen matrix. Stated here, it fixes the size and the
  // place of the matrix for programs that are compiled with other flags than the library.
  alignas(64) Matrix m_matrix;
};

}  // namespace Talvo::Util
