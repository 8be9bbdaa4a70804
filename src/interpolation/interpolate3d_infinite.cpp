#include "interpolation/results.h"
#include "interpolation/topology.h"

#include <talvo/interpolation/interpolate3d_infinite.h>
#include <stdexcept>

namespace Talvo::Util::Interpolate3dInfinite {

using namespace talvo::elements;

namespace {

// H and M make a list of nNodes values, so that a negative count fails as the length of that list. The text is the same
// on every platform.
void refuse_negative_length(int nNodes) {
  if (nNodes < 0) throw std::length_error("vector too long");
}

Point<double, 3> point_of(Vec3<double> const& rst) { return {rst.x, rst.y, rst.z}; }

}  // namespace

std::vector<double> H(int nNodes, Vec3<double> const& rst) {
  refuse_negative_length(nNodes);
  return with_infinite_element(node_count(nNodes),
                               [&]<class Element>(Element) { return to_vector(Element::values(point_of(rst))); });
}

std::vector<double> M(int nNodes, Vec3<double> const& rst) {
  refuse_negative_length(nNodes);
  return with_infinite_element(
      node_count(nNodes), [&]<class Element>(Element) { return to_vector(Element::mapping_values(point_of(rst))); });
}

int detail::KnownNodes(int nNodes) {
  return with_infinite_element(node_count(nNodes),
                               []<class Element>(Element) { return static_cast<int>(Element::node_count); });
}

void detail::HDerivatives(int nNodes, Vec3<double> const& rst, double* out) {
  with_infinite_element(node_count(nNodes),
                        [&]<class Element>(Element) { write_columns(Element::derivatives(point_of(rst)), out); });
}

void detail::MDerivatives(int nNodes, Vec3<double> const& rst, double* out) {
  with_infinite_element(node_count(nNodes), [&]<class Element>(Element) {
    write_columns(Element::mapping_derivatives(point_of(rst)), out);
  });
}

}  // namespace Talvo::Util::Interpolate3dInfinite
