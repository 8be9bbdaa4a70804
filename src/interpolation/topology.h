#pragma once

/// @file
/// From a node count to an element: the one place that knows which counts there are.
///
/// `with_..._element(count, action, message)` calls `action(Element{})` for the element of that many nodes and returns
/// what it returns; for an unknown count it throws std::logic_error(message). Everything behind it is fixed-size code,
/// so that a public call decides once. The commonest element is marked, which saves it two comparisons.

#include "interpolation/elements/hexahedron8.h"
#include "interpolation/elements/infinite6.h"
#include "interpolation/elements/infinite8.h"
#include "interpolation/elements/line2.h"
#include "interpolation/elements/line3.h"
#include "interpolation/elements/pyramid5.h"
#include "interpolation/elements/quadrilateral4.h"
#include "interpolation/elements/quadrilateral8.h"
#include "interpolation/elements/tetrahedron4.h"
#include "interpolation/elements/triangle3.h"
#include "interpolation/elements/triangle6.h"
#include "interpolation/elements/wedge6.h"

namespace talvo::elements {

/// Throws std::logic_error(message). A function of its own keeps exception handling out of the code that calls it.
[[noreturn]] void refuse(const char* message);

/// What most operations say about a node count they do not know.
inline constexpr const char* invalid_number_of_nodes = "invalid number of nodes";

template <class Action>
decltype(auto) with_line_element(std::size_t nodes, Action&& action, const char* message = invalid_number_of_nodes) {
  switch (nodes) {
    case 2:
      return action(Line2{});
    case 3:
      return action(Line3{});
    default:
      refuse(message);
  }
}

template <class Action>
decltype(auto) with_area_element(std::size_t nodes, Action&& action, const char* message = invalid_number_of_nodes) {
  switch (nodes) {
    case 4:
      [[likely]] return action(Quadrilateral4{});
    case 3:
      return action(Triangle3{});
    case 6:
      return action(Triangle6{});
    case 8:
      return action(Quadrilateral8{});
    default:
      refuse(message);
  }
}

template <class Action>
decltype(auto) with_volume_element(std::size_t nodes, Action&& action, const char* message = invalid_number_of_nodes) {
  switch (nodes) {
    case 4:
      return action(Tetrahedron4{});
    case 5:
      return action(Pyramid5{});
    case 6:
      return action(Wedge6{});
    case 8:
      [[likely]] return action(Hexahedron8{});
    default:
      refuse(message);
  }
}

template <class Action>
decltype(auto) with_infinite_element(std::size_t nodes, Action&& action,
                                     const char* message = invalid_number_of_nodes) {
  switch (nodes) {
    case 6:
      return action(Infinite6{});
    case 8:
      return action(Infinite8{});
    default:
      refuse(message);
  }
}

/// A caller's `int` as the count that the functions above take; a negative one becomes a count that no element has.
constexpr std::size_t node_count(int nodes) { return static_cast<std::size_t>(nodes); }

}  // namespace talvo::elements
