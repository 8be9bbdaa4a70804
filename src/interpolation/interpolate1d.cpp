#include "interpolation/results.h"
#include "interpolation/topology.h"

#include <talvo/interpolation/interpolate1d.h>
#include <type_traits>

namespace Talvo::Util::Interpolate1d {

using namespace talvo::elements;

namespace {

// Only the 2-node line is taken at its centre.
template <class Element>
Point<double, 1> evaluation_point(double r, OrderType order) {
  if (std::is_same_v<Element, Line2> && order == Constant) return Element::centre;
  return {r};
}

}  // namespace

std::vector<double> H(int nNodes, double r, OrderType order) {
  return with_line_element(node_count(nNodes), [&]<class Element>(Element) {
    return to_vector(Element::values(evaluation_point<Element>(r, order)));
  });
}

int detail::KnownNodes(int nNodes) {
  return with_line_element(node_count(nNodes),
                           []<class Element>(Element) { return static_cast<int>(Element::node_count); });
}

void detail::HDerivatives(int nNodes, double r, OrderType order, double* out) {
  with_line_element(node_count(nNodes), [&]<class Element>(Element) {
    write_columns(Element::derivatives(evaluation_point<Element>(r, order)), out);
  });
}

}  // namespace Talvo::Util::Interpolate1d
