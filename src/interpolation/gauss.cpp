#include <talvo/interpolation/gauss.h>
#include <array>
#include <cstddef>

namespace Talvo {
namespace {

struct LinePoint {
  double position;
  double weight;
};

struct TrianglePoint {
  Vec2<double> position;
  double weight;
};

// The digits are short on purpose: they are off the exact values by up to 5e-16 on the line and 5e-14 on the triangle,
// and results that others signed for contain them. Abramowitz and Stegun, Handbook of Mathematical Functions,
// table 25.4.
// clang-format off
constexpr std::array<LinePoint, 1> line_1{{
    { 0.0,               2.0},
}};
constexpr std::array<LinePoint, 2> line_2{{
    { 0.577350269189626, 1.0},
    {-0.577350269189626, 1.0},
}};
constexpr std::array<LinePoint, 3> line_3{{
    { 0.774596669241483, 0.555555555555555},
    { 0.0,               0.888888888888888},
    {-0.774596669241483, 0.555555555555555},
}};
constexpr std::array<LinePoint, 4> line_4{{
    { 0.861136311594053, 0.347854845137454},
    { 0.339981043584856, 0.652145154862546},
    {-0.339981043584856, 0.652145154862546},
    {-0.861136311594053, 0.347854845137454},
}};

// Exact for degree 1, 2 and 5: Strang and Fix, An Analysis of the Finite Element Method, 1973, section 4.3; the last is
// Radon's rule of 1948.
constexpr std::array<TrianglePoint, 1> triangle_1{{
    {{0.3333333333333, 0.3333333333333}, 1.0},
}};
constexpr std::array<TrianglePoint, 3> triangle_3{{
    {{0.1666666666667, 0.1666666666667}, 0.3333333333333},
    {{0.6666666666667, 0.1666666666667}, 0.3333333333333},
    {{0.1666666666667, 0.6666666666667}, 0.3333333333333},
}};
constexpr std::array<TrianglePoint, 7> triangle_7{{
    {{0.1012865073235, 0.1012865073235}, 0.1259391805448},
    {{0.7974269853531, 0.1012865073235}, 0.1259391805448},
    {{0.1012865073235, 0.7974269853531}, 0.1259391805448},
    {{0.4701420641051, 0.0597158717898}, 0.1323941527885},
    {{0.4701420641051, 0.4701420641051}, 0.1323941527885},
    {{0.0597158717898, 0.4701420641051}, 0.1323941527885},
    {{0.3333333333333, 0.3333333333333}, 0.225},
}};
// clang-format on

template <class Point>
struct Rule {
  const Point* points;
  int size;

  bool has(int i) const { return i >= 1 && i <= size; }
  Point const& operator[](int i) const { return points[i - 1]; }
};

template <class Point, std::size_t N>
constexpr Rule<Point> rule_of(std::array<Point, N> const& points) {
  return {points.data(), static_cast<int>(N)};
}

constexpr std::array<Rule<LinePoint>, 4> line_rules{rule_of(line_1), rule_of(line_2), rule_of(line_3), rule_of(line_4)};

bool is_line_rule(int n) { return n >= 1 && n <= static_cast<int>(line_rules.size()); }

Rule<LinePoint> const& line_rule(int n) { return line_rules[static_cast<std::size_t>(n - 1)]; }

// A rule without points for an n that does not exist.
Rule<TrianglePoint> triangle_rule(int n) {
  switch (n) {
    case 1:
      return rule_of(triangle_1);
    case 3:
      return rule_of(triangle_3);
    case 7:
      return rule_of(triangle_7);
    default:
      return {nullptr, 0};
  }
}

}  // namespace

double GaussPos(int n, int i) {
  if (!is_line_rule(n) || !line_rule(n).has(i)) return 0.0;
  return line_rule(n)[i].position;
}

double GaussWgt(int n, int i) {
  if (n == 1) return i == 1 ? line_rule(1)[1].weight : 0.0;
  // A point beyond the rules of 2 and 3 points takes its weight from the next larger rule that has it. Callers rely on
  // it.
  for (; is_line_rule(n); ++n) {
    if (line_rule(n).has(i)) return line_rule(n)[i].weight;
  }
  return 0.0;
}

Vec2<double> Gauss3Pos(int n, int i) {
  const Rule<TrianglePoint> rule = triangle_rule(n);
  return rule.has(i) ? rule[i].position : Vec2<double>{0.0, 0.0};
}

double Gauss3Wgt(int n, int i) {
  const Rule<TrianglePoint> rule = triangle_rule(n);
  return rule.has(i) ? rule[i].weight : 0.0;
}

}  // namespace Talvo
