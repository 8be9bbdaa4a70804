#include <talvo/geometry/polygon.h>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace Talvo {
namespace {

using Point = Vec2<double>;

// Below this length an edge or direction counts as null.
constexpr double null_length = 2.220446049250313e-16;

double length(Point const& v) { return std::sqrt(v.x * v.x + v.y * v.y); }

Point unit(Point const& v, double length_of_v) {
  if (length_of_v < null_length) return {0.0, 0.0};
  return {v.x / length_of_v, v.y / length_of_v};
}

// Where the ray meets the segment: parameters along the segment and along the ray.
struct Meeting {
  double u;
  double s;
};

std::optional<Meeting> meet(Point const& origin, Point const& a, Point const& b, Point const& direction) {
  const Point e = b - a;
  const Point w = origin - a;
  const double c = e.y * direction.x - e.x * direction.y;
  if (std::fabs(c) < 1e-10) return std::nullopt;
  const double r = 1.0 / c;
  const double u = (direction.x * w.y - direction.y * w.x) * r;
  const double s = (e.x * w.y - e.y * w.x) * r;
  if (!(s >= 0.0 && u >= 0.0 && u <= 1.0)) return std::nullopt;
  return Meeting{u, s};
}

// Whether the point is nearer than the tolerance to the edge from a to b, and beside it.
bool is_on_edge(Point const& point, Point const& a, Point const& b, double tolerance) {
  const Point edge = b - a;
  const double edge_length = length(edge);
  const Point u = unit(edge, edge_length);
  const Point w = point - a;
  const double t = (u.x * w.x + u.y * w.y) / edge_length;
  return t >= 0.0 && t <= 1.0 && std::fabs(w.x * u.y - w.y * u.x) < tolerance;
}

// A ray that seldom passes through a vertex.
Point fixed_direction() {
  const Point v{std::sqrt(3.0), std::sqrt(5.0)};
  return unit(v, length(v));
}

/// The polygon's edges by their index: edge i ends at vertex i, so that edge 0 is the closing one.
struct Edges {
  const Point* vertices;
  std::size_t count;

  Point const& start(std::size_t i) const { return vertices[i == 0 ? count - 1 : i - 1]; }
  Point const& end(std::size_t i) const { return vertices[i]; }
};

bool keeps_left(Point const& vertex, Point const& point, Point const& d, double tolerance) {
  return (vertex.y - point.y) * d.x - (vertex.x - point.x) * d.y >= tolerance;
}

// The first direction to the middle of an edge from which every vertex keeps the tolerance to the left, or the fixed
// one. An edge's own two ends almost always reject it: they lie on both sides of its middle.
Point choose_direction(Point const& point, Edges const& edges, double tolerance) {
  for (std::size_t i = 0; i < edges.count; ++i) {
    const Point m = (edges.start(i) + edges.end(i)) * 0.5;
    const Point to_middle = m - point;
    const Point d = unit(to_middle, length(to_middle));
    const auto accepts = [&](Point const& vertex) { return keeps_left(vertex, point, d, tolerance); };
    if (!accepts(edges.start(i)) || !accepts(edges.end(i))) continue;
    if (!std::all_of(edges.vertices, edges.vertices + edges.count, accepts)) continue;
    return length(d) < 1e-10 ? fixed_direction() : d;
  }
  return fixed_direction();
}

// Whether an odd number of edges meets the ray.
bool is_parity_odd(Point const& point, Edges const& edges, Point const& direction) {
  bool odd = false;
  for (std::size_t i = 0; i < edges.count; ++i) {
    if (meet(point, edges.start(i), edges.end(i), direction)) odd = !odd;
  }
  return odd;
}

// --- The same answer in one pass ---
//
// All that follows works on w = point - vertex, whose two components are single rounded differences, so that every
// error below is relative to |w|. With g = |w.x| + |w.y| of an edge's two ends, slack·(g_a + g_b) bounds any of them:
// each is a sum of at most ten roundings of 1.1e-16, and slack is more than ten times their sum. The floor covers
// underflow.
//
// Boundary: is_on_edge can only hold if the point is within the tolerance of the segment, so if it lies in the box
// around the edge, widened by the tolerance. Outside of it (is_outside_box) the test is false. Only an edge so short
// that its direction counts as null, or so long that its square overflows, has to be asked in any case.
//
// Crossing: u is q_a / c with q = d × w of the start, and c is q_a - q_b up to the errors above. When q of both ends is
// on one side of zero by more than the error (on_one_side), u is not in [0, 1]: no division is needed.
//
// Direction: the ends of an edge lie at equal distances on both sides of its middle, so that the two values that
// keeps_left compares with the tolerance add up to 0 but for rounding, which here is relative to the coordinates
// themselves. A tolerance above that error is exceeded by one of them at the most: no edge's middle is accepted, and
// the fixed direction it is.

constexpr double slack = 2e-14;
constexpr double floor_of_errors = 1e-290;

struct Seen {
  Point w;   // point - vertex
  double q;  // direction × w
  double g;  // |w.x| + |w.y|
};

Seen see(Point const& point, Point const& vertex, Point const& direction) {
  const Point w = point - vertex;
  return {w, direction.x * w.y - direction.y * w.x, std::fabs(w.x) + std::fabs(w.y)};
}

// Whether a and b are both above the bound or both below its negative.
bool on_one_side(double a, double b, double bound) { return std::min(a, b) > bound || std::max(a, b) < -bound; }

bool is_outside_box(Seen const& a, Seen const& b, double reach) {
  return on_one_side(a.w.x, b.w.x, reach) || on_one_side(a.w.y, b.w.y, reach);
}

// Whether the edge's length may be so short that its direction counts as null, or so long that its square overflows.
bool has_extreme_length(Seen const& a, Seen const& b, double error) {
  const double taxicab = std::fabs(a.w.x - b.w.x) + std::fabs(a.w.y - b.w.y);
  return taxicab <= 1e-15 + error || taxicab > 1e150;
}

}  // namespace

bool LineIntersect(Vec2<double> const& origin, Vec2<double> const& a, Vec2<double> const& b,
                   Vec2<double> const& direction, Vec2<double>& hit) {
  const auto meeting = meet(origin, a, b, direction);
  if (!meeting) return false;
  const Point e = b - a;
  hit = {e.x * meeting->u + a.x, e.y * meeting->u + a.y};
  return true;
}

bool LineIntersect(Vec2<double> const& origin, Vec2<double> const& a, Vec2<double> const& b,
                   Vec2<double> const& direction) {
  return meet(origin, a, b, direction).has_value();
}

bool IsInside(Vec2<double> const& point, int count, Vec2<double> const* polygon, double tolerance) {
  if (count < 1) return false;
  const Edges edges{polygon, static_cast<std::size_t>(count)};
  const Point direction = fixed_direction();

  bool odd = false;
  double farthest = 0.0;
  Seen a = see(point, edges.start(0), direction);
  for (std::size_t i = 0; i < edges.count; ++i) {
    const Seen b = see(point, edges.end(i), direction);
    const double error = slack * (a.g + b.g) + floor_of_errors;
    const bool may_touch = !is_outside_box(a, b, tolerance + error) || has_extreme_length(a, b, error);
    // The closing edge, i = 0, is not part of the boundary test.
    if (may_touch && i > 0 && is_on_edge(point, edges.start(i), edges.end(i), tolerance)) return false;
    if (!on_one_side(a.q, b.q, error) && meet(point, edges.start(i), edges.end(i), direction)) odd = !odd;
    farthest = std::max(farthest, b.g);
    a = b;
  }

  const double size = std::fabs(point.x) + std::fabs(point.y) + farthest;
  const bool no_middle_is_accepted = tolerance > slack * size + floor_of_errors;
  if (no_middle_is_accepted) return odd;
  return is_parity_odd(point, edges, choose_direction(point, edges, tolerance));
}

}  // namespace Talvo
