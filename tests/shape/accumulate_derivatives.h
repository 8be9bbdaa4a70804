#pragma once

/// @file
/// Access to the one private operation of a shape that has a result of its own.

#include <talvo/shape/shape.h>

#include <Eigen/Core>

namespace talvo::test {

using DerivativeRow = Eigen::Ref<const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor>>;

Vec3<double> accumulate_derivatives(Talvo::Util::CShape const& shape, DerivativeRow const& d);

// The language does not check access in an explicit instantiation: the friend that it defines may call the member.
template <auto Member>
struct CalledFromOutside {
  friend Vec3<double> accumulate_derivatives(Talvo::Util::CShape const& shape, DerivativeRow const& d) {
    return (shape.*Member)(d);
  }
};
template struct CalledFromOutside<&Talvo::Util::CShape::AccumulateDerivatives>;

}  // namespace talvo::test
