/// @file
/// Geometry: the functions whose plain form spends its time on roots and divisions. Forms and method are those of
/// compare.h; "limit" is left out where nothing but the function itself would be written by hand.

#include "compare.h"

#include <talvo/talvo.h>
#include <cmath>
#include <random>

namespace {

using namespace talvo::bench;
using Point = Vec2<double>;

Numbers numbers(bool b) { return {b ? 1.0 : 0.0}; }
Numbers numbers(Point const& p) { return {p.x, p.y}; }
Numbers numbers(Vec3<double> const& p) { return {p.x, p.y, p.z}; }

double length(Point const& v) { return std::sqrt(v.x * v.x + v.y * v.y); }
double length(Vec3<double> const& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

Point unit(Point const& v) {
  const double n = length(v);
  if (n < 2.220446049250313e-16) return {0, 0};
  return {v.x / n, v.y / n};
}

// --- A point in a polygon of `vertices` vertices ---

struct PolygonItem {
  std::vector<Point> polygon;
  Point point;
};

std::vector<PolygonItem> polygon_items(int vertices) {
  std::mt19937_64 engine(20260104);
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<PolygonItem> result;
  for (int p = 0; p < 64; ++p) {
    PolygonItem item;
    for (int i = 0; i < vertices; ++i) {
      const double angle = 6.283185307179586 * i / vertices;
      const double r = 1 + 0.3 * u(engine);
      item.polygon.push_back({r * std::cos(angle), r * std::sin(angle)});
    }
    item.point = {1.3 * u(engine), 1.3 * u(engine)};
    result.push_back(item);
  }
  return result;
}

constexpr double tolerance = 1e-9;

bool literal_is_inside(PolygonItem const& item) {
  auto const& [polygon, point] = item;
  const std::size_t n = polygon.size();
  for (std::size_t k = 1; k < n; ++k) {
    const Point edge = polygon[k] - polygon[k - 1];
    const Point u = unit(edge);
    const Point w = point - polygon[k - 1];
    const double t = (u.x * w.x + u.y * w.y) / length(edge);
    if (0 <= t && t <= 1 && std::fabs(w.x * u.y - w.y * u.x) < tolerance) return false;
  }
  Point d{0, 0};
  for (std::size_t i = 0; i < n; ++i) {
    const Point m = (polygon[i == 0 ? n - 1 : i - 1] + polygon[i]) * 0.5;
    const Point candidate = unit(m - point);
    bool accepted = true;
    for (auto const& v : polygon) {
      accepted = (v.y - point.y) * candidate.x - (v.x - point.x) * candidate.y >= tolerance;
      if (!accepted) break;
    }
    if (accepted) {
      d = candidate;
      break;
    }
  }
  if (length(d) < 1e-10) d = unit({std::sqrt(3.0), std::sqrt(5.0)});
  int count = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Point a = polygon[i == 0 ? n - 1 : i - 1];
    const Point e = polygon[i] - a;
    const Point w = point - a;
    const double c = e.y * d.x - e.x * d.y;
    if (std::fabs(c) < 1e-10) continue;
    const double r = 1 / c;
    const double u = (d.x * w.y - d.y * w.x) * r;
    const double s = (e.x * w.y - e.y * w.x) * r;
    if (s >= 0 && u >= 0 && u <= 1) ++count;
  }
  return count % 2 == 1;
}

// --- Circle and sphere ---

struct Points {
  Vec3<double> p[4];
};

std::vector<Points> point_items() {
  std::mt19937_64 engine(20260105);
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<Points> result(256);
  for (auto& item : result) {
    for (auto& p : item.p) p = {u(engine), u(engine), u(engine)};
  }
  return result;
}

Point plane(Vec3<double> const& p) { return {p.x, p.y}; }

Point literal_circle(Points const& item) {
  const Point a = plane(item.p[0]);
  const Point b = plane(item.p[1]);
  const Point c = plane(item.p[2]);
  const Point ab = b - a;
  const Point bc = c - b;
  const Point ca = a - c;
  const double ab_length = length(ab);
  const double bc_length = length(bc);
  const double ca_length = length(ca);
  const auto along = [](Point const& p, Point const& q, Point const& side, double d, double numerator) {
    const double t = numerator / d;
    return Point{(p.x + q.x - t * side.y) * 0.5, (p.y + q.y + t * side.x) * 0.5};
  };
  if (!(ab_length > bc_length) && bc_length > ca_length) {
    return along(a, c, ca, ab.x * ca.y - ab.y * ca.x, ab.x * bc.x + ab.y * bc.y);
  }
  if (ab_length > bc_length && ab_length > ca_length) {
    return along(b, c, bc, bc.y * ca.x - bc.x * ca.y, ab.x * ca.x + ab.y * ca.y);
  }
  return along(b, a, ab, ab.y * bc.x - ab.x * bc.y, bc.x * ca.x + bc.y * ca.y);
}

Vec3<double> literal_sphere(Points const& item) {
  std::vector<Vec3<double>> distinct;
  for (int i = 0; i < 4; ++i) {
    bool alone = true;
    for (int j = 0; j < 4; ++j) {
      if (i == j) continue;
      const Vec3<double> d = item.p[i] - item.p[j];
      const double m = (length(item.p[i]) + length(item.p[j])) / 2;
      if (std::fabs(d.x) / m < 1e-6 && std::fabs(d.y) / m < 1e-6 && std::fabs(d.z) / m < 1e-6) alone = false;
    }
    if (alone) distinct.push_back(item.p[i]);
  }
  std::vector<Vec3<double>> x = distinct;
  std::vector<Vec3<double>> y = distinct;
  std::vector<Vec3<double>> z = distinct;
  for (std::size_t i = 0; i < 4; ++i) {
    auto const& p = distinct[i];
    const double s = -(p.y * p.y + p.x * p.x + p.z * p.z);
    x[i].x = s;
    y[i].y = s;
    z[i].z = s;
  }
  const auto volume = [](std::vector<Vec3<double>> const& r) {
    return Talvo::TetrahedronVolume(r[0].x, r[0].y, r[0].z, r[1].x, r[1].y, r[1].z, r[2].x, r[2].y, r[2].z, r[3].x,
                                    r[3].y, r[3].z);
  };
  const double f = -0.5 / volume(distinct);
  return {f * volume(x), f * volume(y), f * volume(z)};
}

}  // namespace

int main(int argc, char** argv) {
  const auto to_numbers = [](auto const& result) { return numbers(result); };
  for (const int vertices : {4, 20, 100, 1000}) {
    compare("IsInside/" + std::to_string(vertices), polygon_items(vertices), to_numbers, literal_is_inside,
            [](PolygonItem const& item) {
              return Talvo::IsInside(item.point, static_cast<int>(item.polygon.size()), item.polygon.data(), tolerance);
            });
  }
  compare("CircleCentre", point_items(), to_numbers, literal_circle, [](Points const& item) {
    Point centre;
    Talvo::CircleCentre(plane(item.p[0]), plane(item.p[1]), plane(item.p[2]), centre);
    return centre;
  });
  compare("SphereCentre", point_items(), to_numbers, literal_sphere, [](Points const& item) {
    Vec3<double> centre;
    Talvo::SphereCentre(item.p[0], item.p[1], item.p[2], item.p[3], centre);
    return centre;
  });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
