#include "core/private_eigen.h"
#include "core/vec3_kernels.h"

#include <talvo/geometry/lines.h>
#include <algorithm>
#include <cmath>
#include <limits>

namespace Talvo {
namespace {

using Point = Vec3<double>;
using Pair = std::pair<Point, Point>;
using talvo::cross;
using talvo::dot;
using talvo::length;
using talvo::unit;

// Below this |d1 × d2| two lines count as parallel.
constexpr double parallel = 1e-10;

// Below this determinant the system of two skew lines counts as singular.
constexpr double singular = 2.220446049250313e-16;

Point without_w(Point const& p) { return {p.x, p.y, p.z, 0.0}; }

bool is_finite(Point const& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

talvo_eigen::Vector4d column(Point const& v) { return {v.x, v.y, v.z, 0.0}; }

// The pair for lines that are not parallel: the largest double in each coordinate.
Pair no_answer() {
  constexpr double largest = std::numeric_limits<double>::max();
  const Point p{largest, largest, largest, 0.0};
  return {p, p};
}

// The matrix has a column of zeros, so that the determinant of finite numbers is 0 and there is no answer. Only NaN or
// infinities pass on to the solution by inversion.
Pair skew_points(Point const& p1, Point const& q1, Point const& p2, Point const& q2, Point const& n, bool segments) {
  if (is_finite(p1) && is_finite(q1) && is_finite(p2) && is_finite(q2)) return no_answer();
  const Point d1 = q1 - p1;
  const Point d2 = q2 - p2;
  talvo_eigen::Matrix4d system;
  system << column(d1), column(d2), column(unit(n)), talvo_eigen::Vector4d::Zero();
  if (std::fabs(system.determinant()) < singular) return no_answer();
  const talvo_eigen::Vector4d parameters = system.inverse() * column(p2 - p1);
  double s = parameters[0];
  double t = parameters[1];
  if (segments) {
    s = std::clamp(s, 0.0, 1.0);
    t = std::clamp(t, 0.0, 1.0);
  }
  return {p1 + s * d1, p2 + t * d2};
}

// p1 and the foot of its perpendicular on the parallel line through p2, for line 1 along the unit vector u1.
Pair perpendicular(Point const& p1, Point const& p2, Point const& u1) {
  const Point g = p2 - p1;
  const Point m = cross(u1, g);
  const double h = length(m);
  const Point start = without_w(p1);
  if (length(g) < 1e-10 || h == 0.0) return {start, start};
  const Point towards_line2 = cross(Point{m.x / h, m.y / h, m.z / h, 0.0}, u1);
  return {start, p1 + h * towards_line2};
}

Pair nearest_ends(Point const& p1, Point const& q1, Point const& p2, Point const& q2) {
  Pair nearest{without_w(p1), without_w(p2)};
  double distance = length(p1 - p2);
  const Pair others[] = {{q1, p2}, {p1, q2}, {q1, q2}};
  for (auto const& [end1, end2] : others) {
    const double candidate = length(end1 - end2);
    if (candidate < distance) {
      distance = candidate;
      nearest = {without_w(end1), without_w(end2)};
    }
  }
  return nearest;
}

Pair parallel_points(Point const& p1, Point const& q1, Point const& p2, Point const& q2, bool segments) {
  const Point d1 = q1 - p1;
  const Point d2 = q2 - p2;
  const Point u1 = unit(d1);
  const Point u2 = unit(d2);
  const double length1 = length(d1);
  const double length2 = length(d2);
  const auto within = [](double projection, double end) { return projection >= 0.0 && projection <= end; };

  // The projections are lengths, but they multiply d1 and d2, not u1 and u2. Callers rely on it.
  const double a = dot(u2, p1 - p2);
  if (within(a, length2)) return {without_w(p1), p2 + a * d2};
  const double b = dot(u2, q1 - p2);
  if (within(b, length2)) return {without_w(q1), p2 + b * d2};
  const double c = dot(u1, p2 - p1);
  if (within(c, length1)) return {p1 + c * d1, without_w(p2)};
  const double e = dot(u1, q2 - p1);
  if (within(e, length1)) return {p1 + e * d1, without_w(q2)};

  return segments ? nearest_ends(p1, q1, p2, q2) : perpendicular(p1, p2, u1);
}

Point widened(Vec3<float> const& p) { return {p.x, p.y, p.z, 0.0}; }

}  // namespace

Vec3<double> DistanceBetweenLines(Vec3<double> const& p1, Vec3<double> const& q1, Vec3<double> const& p2,
                                  Vec3<double> const& q2) {
  const Point d1 = q1 - p1;
  const Point d2 = q2 - p2;
  const Point n = cross(d1, d2);
  const Point w = p2 - p1;
  if (length(n) < parallel) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    return {nan, nan, length(cross(unit(d1), w)), 0.0};
  }
  // The matrix (d1, -d2, n) times w, where its inverse would give the distance. Callers rely on it.
  return {w.x * d1.x - w.y * d2.x + w.z * n.x,  //
          w.x * d1.y - w.y * d2.y + w.z * n.y,  //
          w.x * d1.z - w.y * d2.z + w.z * n.z, 0.0};
}

Vec3<float> DistanceBetweenLines(Vec3<float> const& p1, Vec3<float> const& q1, Vec3<float> const& p2,
                                 Vec3<float> const& q2) {
  const Point result = DistanceBetweenLines(widened(p1), widened(q1), widened(p2), widened(q2));
  return {static_cast<float>(result.x), static_cast<float>(result.y), static_cast<float>(result.z), 0.0F};
}

std::pair<Vec3<double>, Vec3<double>> ClosestPoints(Vec3<double> const& p1, Vec3<double> const& q1,
                                                    Vec3<double> const& p2, Vec3<double> const& q2, bool segments) {
  const Point n = cross(q1 - p1, q2 - p2);
  if (length(n) < parallel) return parallel_points(p1, q1, p2, q2, segments);
  return skew_points(p1, q1, p2, q2, n, segments);
}

}  // namespace Talvo
