#include "interpolation/results.h"
#include "interpolation/topology.h"

#include <talvo/interpolation/interpolate2d.h>
#include <type_traits>

namespace Talvo::Util::Interpolate2d {

using namespace talvo::elements;

namespace {

// Only the 4-node quadrilateral is taken at its centre.
template <class Element>
Point<double, 2> evaluation_point(Vec2<double> const& rs, OrderType order) {
  if (std::is_same_v<Element, Quadrilateral4> && order == Constant) return Element::centre;
  return {rs.x, rs.y};
}

}  // namespace

std::vector<double> H(int nNodes, Vec2<double> const& rs, OrderType order) {
  return with_area_element(node_count(nNodes), [&]<class Element>(Element) {
    return to_vector(Element::values(evaluation_point<Element>(rs, order)));
  });
}

int detail::KnownNodes(int nNodes) {
  return with_area_element(node_count(nNodes),
                           []<class Element>(Element) { return static_cast<int>(Element::node_count); });
}

void detail::HDerivatives(int nNodes, Vec2<double> const& rs, OrderType order, double* out) {
  with_area_element(node_count(nNodes), [&]<class Element>(Element) {
    write_columns(Element::derivatives(evaluation_point<Element>(rs, order)), out);
  });
}

}  // namespace Talvo::Util::Interpolate2d
