#pragma once

/// @file
/// The ten element topologies with the places of their nodes, seeded elements of each, and points in and around them.

#include <gtest/gtest.h>
#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <talvo/shape/space_type.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "support/bits.h"
#include "support/random.h"

namespace talvo::test {

using Nodes = std::vector<Vec3<double>>;

struct Topology {
  const char* name;
  Talvo::SpaceType type;
  Nodes natural;  ///< where the nodes stand in natural coordinates, merged ones in the middle of their corners

  int nodes() const { return static_cast<int>(natural.size()); }
  bool is_triangle() const { return type == Talvo::Area && (nodes() == 3 || nodes() == 6); }

  friend std::ostream& operator<<(std::ostream& out, Topology const& topology) { return out << topology.name; }
};

inline std::vector<Topology> const& topologies() {
  // clang-format off
  static const std::vector<Topology> all{
      {"line_2", Talvo::Line, {{-1, 0, 0}, {1, 0, 0}}},
      {"line_3", Talvo::Line, {{-1, 0, 0}, {1, 0, 0}, {0, 0, 0}}},
      {"triangle_3", Talvo::Area, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}},
      {"triangle_6", Talvo::Area, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.5, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0}}},
      {"quadrilateral_4", Talvo::Area, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}},
      {"quadrilateral_8", Talvo::Area, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0},
                                        {0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}}},
      {"tetrahedron", Talvo::Volume, {{-1, -1, -1}, {1, -1, -1}, {0, 1, -1}, {0, 0, 1}}},
      {"pyramid", Talvo::Volume, {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {0, 0, 1}}},
      {"wedge", Talvo::Volume, {{-1, -1, -1}, {1, -1, -1}, {0, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {0, 1, 1}}},
      {"hexahedron", Talvo::Volume, {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                     {-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}},
  };
  // clang-format on
  return all;
}

inline std::vector<Topology> topologies(Talvo::SpaceType type) {
  std::vector<Topology> chosen;
  std::ranges::copy_if(topologies(), std::back_inserter(chosen), [&](Topology const& t) { return t.type == type; });
  return chosen;
}

/// For INSTANTIATE_TEST_SUITE_P.
inline std::string name_of_topology(::testing::TestParamInfo<Topology> const& info) { return info.param.name; }

/// A slightly distorted element: the natural nodes, each shifted by at most `distortion` of the element's own size in
/// every natural direction, then scaled by 0.5 to 2 per direction, turned, and moved. An area element is turned in the
/// x-y plane and inclined by up to 45 degrees, so that its projection on that plane keeps its size.
inline Nodes distorted_element(Random& random, Topology const& topology, double distortion) {
  const bool solid = topology.type == Talvo::Volume;
  const double size = topology.is_triangle() ? 0.5 : 1.0;
  const double turn = random.uniform(-3.0, 3.0);
  const double tip = solid ? random.uniform(-3.0, 3.0) : 0.0;
  const double slope_x = solid ? 0.0 : random.uniform(-1.0, 1.0);
  const double slope_y = solid ? 0.0 : random.uniform(-1.0, 1.0);
  const Vec3<double> scale{random.uniform(0.5, 2.0), random.uniform(0.5, 2.0), random.uniform(0.5, 2.0)};
  const Vec3<double> centre{random.uniform(-5.0, 5.0), random.uniform(-5.0, 5.0), random.uniform(-5.0, 5.0)};
  Nodes nodes;
  for (Vec3<double> const& natural : topology.natural) {
    auto shifted = [&](double xi) { return xi + random.uniform(-distortion, distortion) * size; };
    const Vec3<double> p{shifted(natural.x) * scale.x, shifted(natural.y) * scale.y, shifted(natural.z) * scale.z};
    // About z by `turn`, then about x by `tip`.
    const double x = std::cos(turn) * p.x - std::sin(turn) * p.y;
    const double y = std::sin(turn) * p.x + std::cos(turn) * p.y;
    const double z = p.z + slope_x * x + slope_y * y;
    nodes.push_back(centre +
                    Vec3<double>{x, std::cos(tip) * y - std::sin(tip) * z, std::sin(tip) * y + std::cos(tip) * z});
  }
  return nodes;
}

/// Nodes anywhere in a cube of size 4, in no order: folded, inverted, sometimes with two nodes in one place or all of
/// them in one plane, and with a `w` that nothing may look at.
inline Nodes tangled_element(Random& random, int count) {
  Nodes nodes;
  const bool flat = random.below(8) == 0;
  for (int k = 0; k < count; ++k) {
    Vec3<double> node{random.uniform(-2.0, 2.0), random.uniform(-2.0, 2.0), flat ? 0.5 : random.uniform(-2.0, 2.0),
                      3.0};
    if (k > 0 && random.below(12) == 0) node = nodes[random.below(nodes.size())];
    nodes.push_back(node);
  }
  return nodes;
}

/// Now and then any double, infinities, NaN and denormals included; else a number from -2 to 2.
inline double awkward(Random& random) { return random.below(6) == 0 ? random.any_double() : random.uniform(-2.0, 2.0); }

inline Nodes awkward_element(Random& random, int count) {
  Nodes nodes;
  for (int k = 0; k < count; ++k) nodes.push_back({awkward(random), awkward(random), awkward(random), awkward(random)});
  return nodes;
}

/// A natural point in the element; t is 0 for an area, s and t for a line.
inline Vec3<double> point_inside(Random& random, Topology const& topology) {
  if (topology.is_triangle()) {
    const double a = random.uniform(0.0, 1.0);
    const double b = random.uniform(0.0, 1.0);
    // The far half of the unit square is folded onto the triangle.
    return a + b <= 1.0 ? Vec3<double>{a, b, 0.0} : Vec3<double>{1.0 - a, 1.0 - b, 0.0};
  }
  Vec3<double> point{random.uniform(-1.0, 1.0), 0.0, 0.0};
  if (topology.type != Talvo::Line) point.y = random.uniform(-1.0, 1.0);
  if (topology.type == Talvo::Volume) point.z = random.uniform(-1.0, 1.0);
  return point;
}

/// A natural point in the element or up to its size beyond.
inline Vec3<double> point_around(Random& random) {
  return {random.uniform(-3.0, 3.0), random.uniform(-3.0, 3.0), random.uniform(-3.0, 3.0)};
}

inline std::string print(Vec3<double> const& p) {
  std::ostringstream out;
  out << std::setprecision(17) << '{' << p.x << ", " << p.y << ", " << p.z << ", " << p.w << '}';
  return out.str();
}

inline std::string print(Nodes const& nodes) {
  std::string text = "nodes";
  for (Vec3<double> const& node : nodes) text += ' ' + print(node);
  return text;
}

/// Bit for bit in all four components, as equal_bits() does it for a number.
inline ::testing::AssertionResult equal_points(Vec3<double> const& actual, Vec3<double> const& expected) {
  if (same_bits(actual.x, expected.x) && same_bits(actual.y, expected.y) && same_bits(actual.z, expected.z) &&
      same_bits(actual.w, expected.w)) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << print(actual) << " instead of " << print(expected);
}

inline ::testing::AssertionResult equal_points(Vec2<double> const& actual, Vec2<double> const& expected) {
  return equal_points(Vec3<double>{actual.x, actual.y, 0.0}, Vec3<double>{expected.x, expected.y, 0.0});
}

}  // namespace talvo::test
