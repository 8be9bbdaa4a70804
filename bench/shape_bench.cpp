/// @file
/// Element shapes: each operation as it reads ("literal"), through the shared library ("talvo"), and as a hand-written
/// straight-line kernel of that one element ("limit"). Time is per element; the three give equal bits, which is checked
/// before anything is timed.
///
///     shape_bench --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true

#include "compare.h"
#include "elements.h"
#include "limit_shape.h"
#include "literal_shape.h"

#include <string>

namespace {

using namespace talvo::bench;

Numbers numbers(Vec3<double> const& v) { return {v.x, v.y, v.z, v.w}; }
Numbers numbers(Vec2<double> const& v) { return {v.x, v.y}; }
template <int N>
Numbers numbers(Eigen::Matrix<double, N, N> const& m) {
  const Eigen::Matrix<double, N, N> rows = m.transpose();
  return {rows.data(), rows.data() + N * N};
}
Numbers numbers(limit::J2 const& j) { return {&j.m[0][0], &j.m[0][0] + 4}; }
Numbers numbers(limit::J3 const& j) { return {&j.m[0][0], &j.m[0][0] + 9}; }

template <class A, class B, class C>
void add(std::string const& name, Talvo::SpaceType type, int nodes, A literal_form, B library, C limit_form) {
  compare(
      name, elements(type, nodes), [](auto const& result) { return numbers(result); }, literal_form, library,
      limit_form);
}

const Vec3<double>* nodes(Element const& e) { return e.shape.Coor().data(); }

constexpr double tolerance = 1e-9;

template <class Limit>
void add_area(std::string const& name, int count) {
  add(
      "CoorAtRS/" + name, Talvo::Area, count, [](Element const& e) { return literal::CoorAtRS(e.shape, e.rs); },
      [](Element const& e) { return e.shape.CoorAtRS(e.rs.x, e.rs.y); },
      [](Element const& e) { return Limit::point(nodes(e), e.rs.x, e.rs.y); });
  add(
      "Jacobian/" + name, Talvo::Area, count, [](Element const& e) { return literal::Jacobian(e.shape, e.rs); },
      [](Element const& e) { return e.shape.Jacobian(e.rs); },
      [](Element const& e) { return Limit::jacobian(nodes(e), e.rs.x, e.rs.y); });
  add(
      "FindRS/" + name, Talvo::Area, count,
      [](Element const& e) {
        Vec2<double> rs;
        literal::FindRS(e.shape, e.point, rs, tolerance);
        return rs;
      },
      [](Element const& e) {
        Vec2<double> rs;
        e.shape.FindRS(e.point, rs, tolerance);
        return rs;
      },
      [](Element const& e) {
        Vec2<double> rs;
        limit::find<Limit>(nodes(e), e.point, rs, tolerance);
        return rs;
      });
}

void add_tangents() {
  add(
      "VectorR/quad4", Talvo::Area, 4, [](Element const& e) { return literal::VectorR(e.shape, e.rs, false); },
      [](Element const& e) { return e.shape.VectorR(e.rs, false); },
      [](Element const& e) { return limit::Quad4::tangent_r(nodes(e), e.rs.x, e.rs.y); });
  add(
      "VectorT/quad4", Talvo::Area, 4, [](Element const& e) { return literal::Normal(e.shape, e.rs); },
      [](Element const& e) { return e.shape.VectorT(e.rs, false); },
      [](Element const& e) {
        const Vec3<double> b = limit::unit(limit::Quad4::tangent_s(nodes(e), e.rs.x, e.rs.y));
        const Vec3<double> a = limit::unit(limit::Quad4::tangent_r(nodes(e), e.rs.x, e.rs.y));
        return limit::cross(a, b);
      });
  add(
      "VectorT/hex8", Talvo::Volume, 8, [](Element const& e) { return literal::VectorT(e.shape, e.rst, false); },
      [](Element const& e) { return e.shape.VectorT(e.rst, false); },
      [](Element const& e) { return limit::Hex8::tangent_t(nodes(e), e.rst.x, e.rst.y, e.rst.z); });
}

void add_hexahedron() {
  add(
      "CoorAtRST/hex8", Talvo::Volume, 8, [](Element const& e) { return literal::CoorAtRST(e.shape, e.rst); },
      [](Element const& e) { return e.shape.CoorAtRST(e.rst.x, e.rst.y, e.rst.z); },
      [](Element const& e) { return limit::Hex8::point(nodes(e), e.rst.x, e.rst.y, e.rst.z); });
  add(
      "Jacobian/hex8", Talvo::Volume, 8, [](Element const& e) { return literal::Jacobian(e.shape, e.rst); },
      [](Element const& e) { return e.shape.Jacobian(e.rst); },
      [](Element const& e) { return limit::Hex8::jacobian(nodes(e), e.rst.x, e.rst.y, e.rst.z); });
  add(
      "FindRST/hex8", Talvo::Volume, 8,
      [](Element const& e) {
        Vec3<double> rst;
        literal::FindRST(e.shape, e.point, rst);
        return rst;
      },
      [](Element const& e) {
        Vec3<double> rst;
        e.shape.FindRST(e.point, rst, tolerance);
        return rst;
      },
      [](Element const& e) {
        Vec3<double> rst;
        limit::find(nodes(e), e.point, rst);
        return rst;
      });
}

}  // namespace

int main(int argc, char** argv) {
  add_area<limit::Quad4>("quad4", 4);
  add_area<limit::Quad8>("quad8", 8);
  add_hexahedron();
  add_tangents();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
