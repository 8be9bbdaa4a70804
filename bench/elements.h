#pragma once

/// @file
/// Input of the benchmarks: distorted elements with a point inside each.

#include <talvo/talvo.h>
#include <cstddef>
#include <random>
#include <vector>

namespace talvo::bench {

/// As many elements as a first-level cache holds of the largest kind.
inline constexpr std::size_t element_count = 96;

struct Element {
  Talvo::Util::CShape shape;
  Vec2<double> rs;     ///< a natural point inside an area element
  Vec3<double> rst;    ///< a natural point inside a volume element
  Vec3<double> point;  ///< where the element maps it
};

inline bool is_triangle(Talvo::SpaceType type, int nodes) { return type == Talvo::Area && (nodes == 3 || nodes == 6); }

/// The reference position of node i.
inline Vec3<double> reference_node(Talvo::SpaceType type, int nodes, int i) {
  using Talvo::Util::CShape;
  if (type == Talvo::Volume) return CShape::RST(nodes, i);
  const Vec2<double> rs = CShape::RS(nodes, i);
  return {rs.x, rs.y, 0.0};
}

/// Area or volume elements about their reference shape, each node moved by up to a tenth of an edge.
inline std::vector<Element> elements(Talvo::SpaceType type, int nodes) {
  std::mt19937_64 engine(20260101);
  const double size = is_triangle(type, nodes) ? 0.5 : 1.0;
  std::uniform_real_distribution<double> shift(-0.1 * size, 0.1 * size);
  std::uniform_real_distribution<double> natural(-0.9, 0.9);
  std::uniform_real_distribution<double> inside_triangle(0.05, 0.45);
  std::vector<Element> result;
  result.reserve(element_count);
  for (std::size_t e = 0; e < element_count; ++e) {
    std::vector<Vec3<double>> coor;
    coor.reserve(static_cast<std::size_t>(nodes));
    for (int i = 0; i < nodes; ++i) {
      coor.push_back(reference_node(type, nodes, i) + Vec3<double>{shift(engine), shift(engine), shift(engine)});
    }
    auto& coordinate = is_triangle(type, nodes) ? inside_triangle : natural;
    const Vec3<double> xi{coordinate(engine), coordinate(engine), coordinate(engine)};
    const Talvo::Util::CShape shape(type, coor);
    const Vec3<double> point = type == Talvo::Area ? shape.CoorAtRS(xi.x, xi.y) : shape.CoorAtRST(xi.x, xi.y, xi.z);
    result.push_back({shape, {xi.x, xi.y}, xi, point});
  }
  return result;
}

}  // namespace talvo::bench
