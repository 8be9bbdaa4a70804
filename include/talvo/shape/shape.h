#pragma once

/// @file
/// The geometry of one finite element: mapping, Jacobians, tangents and inverse mapping.

#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <talvo/export.h>
#include <talvo/shape/space_type.h>

#include <Eigen/Core>
#include <vector>

namespace Talvo::Util {

/// An element's dimensionality and the global coordinates of its nodes.
///
/// The topology is the pair of space type and node count:
///
/// | SpaceType | nodes                                                                        |
/// |-----------|------------------------------------------------------------------------------|
/// | Line      | 2 linear, 3 quadratic (third node in the middle)                             |
/// | Area      | 3 and 6 triangle, 4 and 8 quadrilateral (corners first, then mid-sides)      |
/// | Volume    | 4 tetrahedron, 5 pyramid, 6 wedge, 8 hexahedron                              |
///
/// Nodes count from 0, in the order of the interpolation functions (Interpolate1d, 2d, 3d), whose node 1 is node 0
/// here. Construction checks nothing; an operation that does not know the topology throws, and nothing but SetCoor()
/// and assignment changes a shape.
///
/// @code
/// Talvo::Util::CShape plate(Talvo::SpaceType::Area, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
/// Vec2<double> rs;
/// if (plate.FindRS({1.5, 0.5, 0}, rs, 1e-9)) { ... }  // rs is (0.5, -0.5)
/// @endcode
///
/// No operation other than construction, copying and SetCoor() allocates memory.
class TALVO_EXPORT CShape {
 public:
  /// Keeps a copy of the coordinates. Neither argument is checked.
  CShape(SpaceType type, std::vector<Vec3<double>> const& coor);
  CShape(CShape const& other);
  CShape& operator=(CShape const& other);
  virtual ~CShape();

  /// @name Nodes
  /// @{

  /// Replaces the coordinates; the space type stays.
  void SetCoor(std::vector<Vec3<double>> const& coor);
  /// The number of nodes.
  int NumTopo() const { return static_cast<int>(m_coor.size()); }
  /// Node i, 0 <= i < NumTopo(). Throws std::out_of_range "invalid vector subscript" for any other i.
  Vec3<double> const& Coor(int i) const;
  /// All nodes.
  std::vector<Vec3<double>> const& Coor() const { return m_coor; }
  /// @}

  /// @name Natural coordinates of nodes, centres and faces
  /// Index -1, and an index equal to nNodes, is the centre of the element. Every index and node count that is not named
  /// throws std::logic_error "invalid topology specified".
  /// @{

  /// Line: 0 is -1, 1 is +1, 2 is the middle (0), -1 the centre (0). It takes no node count, so 3 throws.
  static double R(int i);

  /// Triangles (nNodes 3, 6) in area coordinates, with the centroid (1/3, 1/3); quadrilaterals (4, 8) on [-1, 1]².
  /// Mid-side rows exist only for 6 and 8 nodes.
  static Vec2<double> RS(int nNodes, int i);

  /// Solids (nNodes 4, 5, 6, 8), all on the cube [-1, 1]³: a merged node stands in the middle of its merged corners, so
  /// node 2 of a tetrahedron is (0, 1, -1), and the centre is (0, 0, 0) for all four.
  ///
  /// Face k has its centre at index -10 - k, and face 0 is always t = -1. The other faces:
  ///
  /// | element     | -11    | -12    | -13    | -14    | -15    |
  /// |-------------|--------|--------|--------|--------|--------|
  /// | tetrahedron | s = -1 | r = +1 | r = -1 |        |        |
  /// | pyramid     | s = -1 | r = +1 | s = +1 | r = -1 |        |
  /// | wedge       | t = +1 | s = -1 | r = +1 | r = -1 |        |
  /// | hexahedron  | t = +1 | s = -1 | r = +1 | s = +1 | r = -1 |
  static Vec3<double> RST(int nNodes, int i);
  /// @}

  /// @name Pulling a natural point back into the square or cube [-1, 1]
  /// Towards the origin, one coordinate after the other: whenever a coordinate's magnitude exceeds 1, all of them are
  /// divided by it, so that the direction of the point is kept: (3, 6) becomes (1, 2) and then (0.5, 1). It knows
  /// nothing of triangles or merged solids. A NaN coordinate divides nothing.
  /// @{
  static Vec2<double> ClampRange(Vec2<double> const& rs);
  /// `w` is carried over as it is.
  static Vec3<double> ClampRange(Vec3<double> const& rst);
  /// @}

  /// @name Mapping from natural to global coordinates
  /// The sum over the nodes of N_k X_k, in x, y and z, with the interpolation functions N of the node count. The space
  /// type is not looked at: a Volume of 4 nodes passes for a quadrilateral in CoorAtRS().
  /// @{

  /// 2 or 3 nodes. Throws std::logic_error "invalid number of values for 1D element" for any other count.
  Vec3<double> CoorAtR(double r) const;
  /// 3, 4, 6 or 8 nodes. Throws std::logic_error "invalid number of values for 2D element" for any other count.
  Vec3<double> CoorAtRS(double r, double s) const;
  /// 4, 5, 6 or 8 nodes. Throws std::logic_error "invalid number of values for 3D element" for any other count.
  Vec3<double> CoorAtRST(double r, double s, double t) const;
  /// @}

  /// @name Jacobians
  /// Row i is the derivative with respect to natural coordinate i, column j is global component j:
  /// J(i, j) = sum over nodes k of dN_k/dxi_i · X_k[j]. So J(0, 1) is dy/dr: a Newton step solves with the transpose.
  ///
  /// Throws std::logic_error "SpaceType error" on another space type, then "invalid number of nodes" on a node count
  /// that the type does not have.
  /// @{

  /// Line: dx/dr. Only x is used: a line along y or z has the Jacobian 0. For a length in space take the coordinates
  /// themselves, or measure along x.
  Eigen::Matrix<double, 1, 1> Jacobian(double r) const {
    Eigen::Matrix<double, 1, 1> j;
    FillJacobian(r, j.data());
    return j;
  }
  /// Area: only x and y are used, so that an element out of the x-y plane counts by its projection. For the true area
  /// of an inclined element take the length of the cross product of VectorR() and VectorS(), not normalised.
  Eigen::Matrix<double, 2, 2> Jacobian(Vec2<double> const& rs) const {
    Eigen::Matrix<double, 2, 2> j;
    FillJacobian(rs, j.data());
    return j;
  }
  /// Volume.
  Eigen::Matrix<double, 3, 3> Jacobian(Vec3<double> const& rst) const {
    Eigen::Matrix<double, 3, 3> j;
    FillJacobian(rst, j.data());
    return j;
  }
  /// The infinite element of 6 or 8 nodes, by Interpolate3dInfinite::MDerivatives.
  ///
  /// Throws std::logic_error "invalid SpaceType specified" (not the text above) unless the shape is a Volume, then
  /// "invalid number of nodes". At t = +1 infinities or NaN come back.
  Eigen::Matrix<double, 3, 3> JacobianInfinity(Vec3<double> const& rst) const {
    Eigen::Matrix<double, 3, 3> j;
    FillJacobianInfinity(rst, j.data());
    return j;
  }
  /// @}

  /// @name Tangent vectors
  /// The derivative of the mapped point with respect to r, s or t, in all three global components, so that they serve
  /// elements anywhere in space. With `normalise` the vector has length 1, or is (0, 0, 0) when its length is below
  /// 2.220446049250313e-16.
  ///
  /// Throws std::runtime_error (not logic_error) "Not area" or "Not volume" on another space type, then
  /// std::logic_error "invalid number of nodes".
  /// @{
  Vec3<double> VectorR(Vec2<double> const& rs, bool normalise) const;
  Vec3<double> VectorS(Vec2<double> const& rs, bool normalise) const;
  /// The normal of an area element: unit r tangent times unit s tangent, towards +z for nodes that run
  /// counter-clockwise seen from +z.
  ///
  /// Without `normalise` its length is the sine of the angle between the tangents, not the area scale: both tangents
  /// are always unit vectors.
  Vec3<double> VectorT(Vec2<double> const& rs, bool normalise) const;
  Vec3<double> VectorR(Vec3<double> const& rst, bool normalise) const;
  Vec3<double> VectorS(Vec3<double> const& rst, bool normalise) const;
  Vec3<double> VectorT(Vec3<double> const& rst, bool normalise) const;
  /// @}

  /// @name Inverse mapping
  /// Newton's method from the natural origin, at most 100 undamped steps. True only when the mapping was brought to the
  /// point within the tolerance and the natural point lies in the element, widened by the tolerance; the natural
  /// coordinates are then clamped onto the element. False when the point is outside, when the iteration met a
  /// determinant of exactly 0 or did not converge, and for NaN in a coordinate that is searched: the output is then all
  /// zeros.
  ///
  /// A point on an edge may be refused by the rounding of the search: it stops within the tolerance, on either side of
  /// the edge. Where that matters, ask again for a point a few tolerances further in.
  ///
  /// What is not promised: that a point of a strongly distorted element is found. The iteration starts from the origin
  /// and nothing damps it, so it may end in a far branch of the mapping or not at all.
  ///
  /// Throws std::logic_error "invalid SpaceType specified" first of all, with the output untouched; then, with the
  /// output zeroed, "invalid number of values for 2D element" or "invalid number of values for 3D element".
  /// @{

  /// Area elements, in x and y: z of the point and of the nodes plays no part in the search.
  ///
  /// @param tol  greatest |dx| and |dy|, in global units; also how far outside the element a point still counts. NaN or
  ///             a negative value never converges.
  ///
  /// Inside means, for quadrilaterals, |r| <= 1 + 2 tol/Lr and |s| <= 1 + 2 tol/Ls, with Lr and Ls the distances in
  /// space between the middles of opposite sides. For triangles r >= -tol, s >= -tol/h and r + s <= 1 + tol + tol/h,
  /// with h the height of node 2 over the side from node 0 to node 1: the r tolerance is not divided by a length, so it
  /// is a natural one. On a triangle far larger than 1 it is therefore wide, on a tiny one narrow.
  bool FindRS(Vec3<double> const& point, Vec2<double>& rs, double tol) const;

  /// Volume elements; only hexahedra can be located.
  ///
  /// @param tol  ignored. The search always converges to 1e-06 in global units in each of x, y, z, and a point counts
  /// as
  ///             inside up to |r| <= 1 + 2e-06/L, with L the distance between the middles of the opposite faces, and so
  ///             for s and t.
  ///
  /// A tetrahedron, pyramid or wedge whose search converged throws std::logic_error "invalid number of topology items";
  /// one whose search did not returns false.
  bool FindRST(Vec3<double> const& point, Vec3<double>& rst, double tol) const;
  /// @}

 private:
  // The results above are created in the caller's own code, with the caller's alignment, and the library fills their
  // plain numbers: no Eigen object whose layout follows the compiler's flags crosses the boundary.
  void FillJacobian(double r, double* j) const;
  void FillJacobian(Vec2<double> const& rs, double* j) const;
  void FillJacobian(Vec3<double> const& rst, double* j) const;
  void FillJacobianInfinity(Vec3<double> const& rst, double* j) const;

  // The sum over the nodes of d[k] X_k, w = 0. d must hold at least NumTopo() values.
  Vec3<double> AccumulateDerivatives(
      Eigen::Ref<const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor>> d) const;

  SpaceType m_type;
  std::vector<Vec3<double>> m_coor;
};

}  // namespace Talvo::Util
