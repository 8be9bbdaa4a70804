#include "interpolation/results.h"
#include "interpolation/topology.h"

#include <talvo/interpolation/interpolate3d.h>

namespace Talvo::Util::Interpolate3d {

using namespace talvo::elements;

namespace {

// Every solid is taken at its centre, the merged ones included.
template <class Element>
Point<double, 3> evaluation_point(Vec3<double> const& rst, OrderType order) {
  if (order == Constant) return Element::centre;
  return {rst.x, rst.y, rst.z};
}

}  // namespace

std::vector<double> H(int nNodes, Vec3<double> const& rst, OrderType order) {
  return with_volume_element(node_count(nNodes), [&]<class Element>(Element) {
    return to_vector(Element::values(evaluation_point<Element>(rst, order)));
  });
}

int detail::KnownNodes(int nNodes) {
  return with_volume_element(node_count(nNodes),
                             []<class Element>(Element) { return static_cast<int>(Element::node_count); });
}

void detail::HDerivatives(int nNodes, Vec3<double> const& rst, OrderType order, double* out) {
  with_volume_element(node_count(nNodes), [&]<class Element>(Element) {
    write_columns(Element::derivatives(evaluation_point<Element>(rst, order)), out);
  });
}

}  // namespace Talvo::Util::Interpolate3d
