#pragma once

/// @file
/// What the elements of this folder have in common.
///
/// Each element is a struct of constants and functions of numbers: its node table, the values of its interpolation
/// functions and their derivatives, written out in the order of evaluation that is part of the result: a product runs
/// from left to right, and nothing is regrouped. They are templates on the number type T, so that a vector of several
/// points, a dual number or an exact fraction can take the place of double; a constant meets a T only in + - * and /.

#include <array>
#include <cstddef>

namespace talvo::elements {

/// A natural point: r, then s, then t.
template <class T, std::size_t Dimension>
using Point = std::array<T, Dimension>;

/// One value per node.
template <class T, std::size_t Nodes>
using Values = std::array<T, Nodes>;

/// One row per natural direction, one column per node.
template <class T, std::size_t Dimension, std::size_t Nodes>
using Derivatives = std::array<std::array<T, Nodes>, Dimension>;

/// A constant as a T.
template <class T>
constexpr T number(double value) {
  return T{} + value;
}

/// Whether each function is 1 at its own node and 0 at the others: ties an element's formulas to its node table.
template <class Element>
constexpr bool is_kronecker() {
  for (std::size_t node = 0; node < Element::node_count; ++node) {
    const auto values = Element::values(Element::nodes[node]);
    for (std::size_t k = 0; k < Element::node_count; ++k) {
      if (values[k] != (k == node ? 1.0 : 0.0)) return false;
    }
  }
  return true;
}

}  // namespace talvo::elements
