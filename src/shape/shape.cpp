#include "interpolation/results.h"
#include "interpolation/topology.h"
#include "shape/inverse_mapping.h"
#include "shape/mapping.h"

#include <talvo/shape/shape.h>
#include <cmath>
#include <stdexcept>

namespace Talvo::Util {

using namespace talvo::elements;
using talvo::shape::accumulate;
using talvo::shape::mapped_point;

namespace {

constexpr const char* invalid_topology = "invalid topology specified";

// The centre of an element, in the index of a node.
constexpr int centre_index = -1;
// Face k has the index first_face_index - k.
constexpr int first_face_index = -10;

Vec2<double> to_vec2(Point<double, 2> const& p) { return {p[0], p[1]}; }
Vec3<double> to_vec3(Point<double, 3> const& p) { return {p[0], p[1], p[2], 0.0}; }
Point<double, 2> to_point(Vec2<double> const& v) { return {v.x, v.y}; }
Point<double, 3> to_point(Vec3<double> const& v) { return {v.x, v.y, v.z}; }

// Row `index` of a node table.
template <class Table>
auto const& row(Table const& table, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= table.size()) refuse(invalid_topology);
  return table[static_cast<std::size_t>(index)];
}

void require(SpaceType actual, SpaceType wanted, const char* message) {
  if (actual != wanted) refuse(message);
}

// The tangents have their own kind of error.
[[noreturn]] void refuse_tangent(const char* message) { throw std::runtime_error(message); }

void require_area(SpaceType type) {
  if (type != Area) refuse_tangent("Not area");
}
void require_volume(SpaceType type) {
  if (type != Volume) refuse_tangent("Not volume");
}

Vec3<double> scaled(Vec3<double> const& v, bool normalise) { return normalise ? talvo::unit(v) : v; }

// The derivative of the mapped point along natural direction `Direction` (0: r, 1: s, 2: t).
template <std::size_t Direction>
Vec3<double> tangent(std::vector<Vec3<double>> const& X, Vec2<double> const& rs) {
  return with_area_element(X.size(), [&]<class Element>(Element) {
    return accumulate(Element::derivatives(to_point(rs))[Direction].data(), X.data(), Element::node_count);
  });
}

template <std::size_t Direction>
Vec3<double> tangent(std::vector<Vec3<double>> const& X, Vec3<double> const& rst) {
  return with_volume_element(X.size(), [&]<class Element>(Element) {
    return accumulate(Element::derivatives(to_point(rst))[Direction].data(), X.data(), Element::node_count);
  });
}

}  // namespace

CShape::CShape(SpaceType type, std::vector<Vec3<double>> const& coor) : m_type(type), m_coor(coor) {}
CShape::CShape(CShape const& other) = default;
CShape& CShape::operator=(CShape const& other) = default;
CShape::~CShape() = default;

void CShape::SetCoor(std::vector<Vec3<double>> const& coor) { m_coor = coor; }

Vec3<double> const& CShape::Coor(int i) const {
  // Not vector::at, whose text differs between standard libraries.
  if (i < 0 || i >= NumTopo()) throw std::out_of_range("invalid vector subscript");
  return m_coor[static_cast<std::size_t>(i)];
}

// --- Natural coordinates of nodes, centres and faces ---

double CShape::R(int i) {
  if (i == centre_index) return Line3::centre[0];
  return row(Line3::nodes, i)[0];
}

Vec2<double> CShape::RS(int nNodes, int i) {
  if (i == nNodes) i = centre_index;
  return with_area_element(
      node_count(nNodes),
      [&]<class Element>(Element) { return to_vec2(i == centre_index ? Element::centre : row(Element::nodes, i)); },
      invalid_topology);
}

Vec3<double> CShape::RST(int nNodes, int i) {
  if (i == nNodes) i = centre_index;
  return with_volume_element(
      node_count(nNodes),
      [&]<class Element>(Element) {
        if (i == centre_index) return to_vec3(Element::centre);
        if (i <= first_face_index) return to_vec3(row(Element::face_centres, first_face_index - i));
        return to_vec3(row(Element::nodes, i));
      },
      invalid_topology);
}

Vec2<double> CShape::ClampRange(Vec2<double> const& rs) {
  Vec2<double> result = rs;
  for (double Vec2<double>::*coordinate : {&Vec2<double>::x, &Vec2<double>::y}) {
    const double magnitude = std::fabs(result.*coordinate);
    if (magnitude > 1.0) result = {result.x / magnitude, result.y / magnitude};
  }
  return result;
}

Vec3<double> CShape::ClampRange(Vec3<double> const& rst) {
  Vec3<double> result = rst;
  for (double Vec3<double>::*coordinate : {&Vec3<double>::x, &Vec3<double>::y, &Vec3<double>::z}) {
    const double magnitude = std::fabs(result.*coordinate);
    if (magnitude > 1.0) result = {result.x / magnitude, result.y / magnitude, result.z / magnitude, result.w};
  }
  return result;
}

// --- Mapping ---

Vec3<double> CShape::CoorAtR(double r) const {
  return with_line_element(
      m_coor.size(), [&]<class Element>(Element) { return mapped_point<Element>(m_coor.data(), {r}); },
      "invalid number of values for 1D element");
}

Vec3<double> CShape::CoorAtRS(double r, double s) const {
  return with_area_element(
      m_coor.size(),
      [&]<class Element>(Element) {
        return mapped_point<Element>(m_coor.data(), {r, s});
      },
      "invalid number of values for 2D element");
}

Vec3<double> CShape::CoorAtRST(double r, double s, double t) const {
  return with_volume_element(
      m_coor.size(),
      [&]<class Element>(Element) {
        return mapped_point<Element>(m_coor.data(), {r, s, t});
      },
      "invalid number of values for 3D element");
}

// --- Jacobians ---

void CShape::FillJacobian(double r, double* j) const {
  require(m_type, Line, "SpaceType error");
  *j = with_line_element(m_coor.size(), [&]<class Element>(Element element) {
    return talvo::shape::line_jacobian(element, m_coor.data(), r);
  });
}

void CShape::FillJacobian(Vec2<double> const& rs, double* j) const {
  require(m_type, Area, "SpaceType error");
  with_area_element(m_coor.size(), [&]<class Element>(Element) {
    write_columns(talvo::shape::jacobian<Element>(m_coor.data(), to_point(rs)), j);
  });
}

void CShape::FillJacobian(Vec3<double> const& rst, double* j) const {
  require(m_type, Volume, "SpaceType error");
  with_volume_element(m_coor.size(), [&]<class Element>(Element) {
    write_columns(talvo::shape::jacobian<Element>(m_coor.data(), to_point(rst)), j);
  });
}

void CShape::FillJacobianInfinity(Vec3<double> const& rst, double* j) const {
  require(m_type, Volume, "invalid SpaceType specified");
  with_infinite_element(m_coor.size(), [&]<class Element>(Element) {
    write_columns(talvo::shape::jacobian_of(Element::mapping_derivatives(to_point(rst)), m_coor.data()), j);
  });
}

// NOLINTBEGIN(performance-unnecessary-value-param): a Ref is a view, handed on by value
Vec3<double> CShape::AccumulateDerivatives(
    Eigen::Ref<const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor>> d) const {
  return accumulate(d.data(), m_coor.data(), m_coor.size());
}
// NOLINTEND(performance-unnecessary-value-param)

// --- Tangents ---

Vec3<double> CShape::VectorR(Vec2<double> const& rs, bool normalise) const {
  require_area(m_type);
  return scaled(tangent<0>(m_coor, rs), normalise);
}

Vec3<double> CShape::VectorS(Vec2<double> const& rs, bool normalise) const {
  require_area(m_type);
  return scaled(tangent<1>(m_coor, rs), normalise);
}

Vec3<double> CShape::VectorT(Vec2<double> const& rs, bool normalise) const {
  require_area(m_type);
  const Vec3<double> normal = with_area_element(m_coor.size(), [&]<class Element>(Element) {
    const auto dN = Element::derivatives(to_point(rs));
    const Vec3<double> b = talvo::unit(accumulate(dN[1].data(), m_coor.data(), Element::node_count));
    const Vec3<double> a = talvo::unit(accumulate(dN[0].data(), m_coor.data(), Element::node_count));
    return talvo::cross(a, b);
  });
  return scaled(normal, normalise);
}

Vec3<double> CShape::VectorR(Vec3<double> const& rst, bool normalise) const {
  require_volume(m_type);
  return scaled(tangent<0>(m_coor, rst), normalise);
}

Vec3<double> CShape::VectorS(Vec3<double> const& rst, bool normalise) const {
  require_volume(m_type);
  return scaled(tangent<1>(m_coor, rst), normalise);
}

Vec3<double> CShape::VectorT(Vec3<double> const& rst, bool normalise) const {
  require_volume(m_type);
  return scaled(tangent<2>(m_coor, rst), normalise);
}

// --- Inverse mapping ---

bool CShape::FindRS(Vec3<double> const& point, Vec2<double>& rs, double tol) const {
  require(m_type, Area, "invalid SpaceType specified");
  rs = {0.0, 0.0};
  const auto found = with_area_element(
      m_coor.size(),
      [&]<class Element>(Element) -> std::optional<Point<double, 2>> {
        const auto xi = talvo::shape::newton<Element>(m_coor.data(), point, tol);
        if (!xi) return std::nullopt;
        if constexpr (Element::node_count == 3 || Element::node_count == 6) {
          return talvo::shape::clamp_to_triangle(m_coor.data(), *xi, tol);
        } else {
          return talvo::shape::clamp_to_cube<Element>(m_coor.data(), *xi, 2.0 * tol);
        }
      },
      "invalid number of values for 2D element");
  if (found) rs = to_vec2(*found);
  return found.has_value();
}

bool CShape::FindRST(Vec3<double> const& point, Vec3<double>& rst, double /*tol*/) const {
  require(m_type, Volume, "invalid SpaceType specified");
  const Vec3<double> target = point;  // `point` and `rst` may be one object
  rst = {0.0, 0.0, 0.0, 0.0};
  const auto found = with_volume_element(
      m_coor.size(),
      [&]<class Element>(Element) -> std::optional<Point<double, 3>> {
        const auto xi = talvo::shape::newton<Element>(m_coor.data(), target, 1e-06);
        if (!xi) return std::nullopt;
        if constexpr (Element::node_count == 8) {
          return talvo::shape::clamp_to_cube<Element>(m_coor.data(), *xi, 2e-06);
        } else {
          refuse("invalid number of topology items");
        }
      },
      "invalid number of values for 3D element");
  if (found) rst = to_vec3(*found);
  return found.has_value();
}

}  // namespace Talvo::Util
