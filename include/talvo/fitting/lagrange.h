#pragma once

/// @file
/// A smooth curve through points in space.

#include <talvo/core/vec3.h>
#include <talvo/export.h>

#include <vector>

namespace Talvo::Util {

/// Lagrange interpolation through points at equal steps of one parameter: the curve starts at the first point for t =
/// 0, ends at the last for t = 1, and passes point k of n at t = k/(n - 1).
///
/// A polynomial of degree n - 1: with more than about ten points it swings widely between them near the ends (Runge's
/// phenomenon). Outside [0, 1] it extrapolates without any limit.
///
/// @code
/// Talvo::Util::CLagrange curve;
/// curve.AddPoint({0, 0, 0});
/// curve.AddPoint({1, 0, 0});
/// curve.AddPoint({4, 0, 0});
/// curve.Function(0.25);  // (0.25, 0, 0)
/// @endcode
///
/// Evaluation is not const: the first one after a change prepares the object, so that even evaluation needs exclusive
/// access.
class TALVO_EXPORT CLagrange {
 public:
  /// Appends a point (x, y, z; its w is not kept) and returns the number of points.
  ///
  /// @warning Add all points before the first evaluation. After points are added to a curve that was already evaluated,
  /// the earlier points keep their old denominators as an extra factor, and the curve does not pass through them any
  /// more. Begin a new object for a curve that does.
  int AddPoint(Vec3<double> const& point);

  /// The number of points.
  int NumPoint() const { return static_cast<int>(m_nodes.size()); }

  /// The point of the curve at parameter t; w is 0. (0, 0, 0) without points; with one point, that point for every t.
  Vec3<double> Function(double t);

 protected:
  /// Sets the parameters of the points and the Lagrange denominators.
  void PreCalculate();

 private:
  struct Node {
    double t;
    double x;
    double y;
    double z;
  };

  bool m_precalculated = false;
  std::vector<Node> m_nodes;
  std::vector<double> m_denominators;
};

}  // namespace Talvo::Util
