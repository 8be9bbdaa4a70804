// One suite of properties for the kernels of all elements. The kernels run on fractions here, so that equalities hold
// exactly; on dual numbers, which differentiate exactly; and on doubles that carry a bound of their own error.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

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
#include "interpolation/rational.h"
#include "support/random.h"

namespace {

using talvo::elements::Hexahedron8;
using talvo::elements::Infinite6;
using talvo::elements::Infinite8;
using talvo::elements::Line2;
using talvo::elements::Line3;
using talvo::elements::Point;
using talvo::elements::Pyramid5;
using talvo::elements::Quadrilateral4;
using talvo::elements::Quadrilateral8;
using talvo::elements::Tetrahedron4;
using talvo::elements::Triangle3;
using talvo::elements::Triangle6;
using talvo::elements::Wedge6;
using talvo::test::Dual;
using talvo::test::Random;
using talvo::test::Rational;

// The geometry functions of an infinite element, as an element of their own.
template <class Infinite>
struct Mapping {
  static constexpr std::size_t dimension = Infinite::dimension;
  static constexpr std::size_t node_count = Infinite::node_count;
  static constexpr auto nodes = Infinite::nodes;

  template <class T>
  static constexpr auto values(Point<T, 3> const& point) {
    return Infinite::mapping_values(point);
  }
  template <class T>
  static constexpr auto derivatives(Point<T, 3> const& point) {
    return Infinite::mapping_derivatives(point);
  }
};

// What the functions of most elements add up to.
struct PartitionOfUnity {
  template <class T, std::size_t Dimension>
  static T sum(Point<T, Dimension> const&) {
    return T(1.0);
  }
};

// What each element is known by: its name in the report, the places of its nodes, the sum of its functions, and the
// function of a node in the form in which textbooks give it (Zienkiewicz and Taylor, The Finite Element Method, volume
// 1: the chapters on standard and mapped elements), mostly in terms of the node's own coordinates.
template <class Element>
struct Known;

template <>
struct Known<Line2> : PartitionOfUnity {
  static constexpr const char* name = "Line2";
  static constexpr Point<double, 1> nodes[]{{-1}, {+1}};

  template <class T>
  static T function(std::size_t node, Point<T, 1> const& p) {
    return (1.0 + p[0] * nodes[node][0]) / 2.0;
  }
};

template <>
struct Known<Line3> : PartitionOfUnity {
  static constexpr const char* name = "Line3";
  static constexpr Point<double, 1> nodes[]{{-1}, {+1}, {0}};

  // Lagrange's polynomial through the three nodes.
  template <class T>
  static T function(std::size_t node, Point<T, 1> const& p) {
    T product = 1.0;
    for (std::size_t other = 0; other < 3; ++other) {
      if (other != node) product = product * (p[0] - nodes[other][0]) / (nodes[node][0] - nodes[other][0]);
    }
    return product;
  }
};

template <>
struct Known<Triangle3> : PartitionOfUnity {
  static constexpr const char* name = "Triangle3";
  static constexpr Point<double, 2> nodes[]{{0, 0}, {1, 0}, {0, 1}};

  template <class T>
  static T function(std::size_t node, Point<T, 2> const& p) {
    return node == 0 ? 1.0 - p[0] - p[1] : p[node - 1];
  }
};

template <>
struct Known<Triangle6> : PartitionOfUnity {
  static constexpr const char* name = "Triangle6";
  static constexpr Point<double, 2> nodes[]{{0, 0}, {1, 0}, {0, 1}, {0.5, 0}, {0.5, 0.5}, {0, 0.5}};

  // With the area coordinates L: L (2 L - 1) at a corner, 4 L L' halfway between two of them.
  template <class T>
  static T function(std::size_t node, Point<T, 2> const& p) {
    const std::array<T, 3> L{1.0 - p[0] - p[1], p[0], p[1]};
    return node < 3 ? L[node] * (2.0 * L[node] - 1.0) : 4.0 * L[node - 3] * L[(node - 2) % 3];
  }
};

template <>
struct Known<Quadrilateral4> : PartitionOfUnity {
  static constexpr const char* name = "Quadrilateral4";
  static constexpr Point<double, 2> nodes[]{{-1, -1}, {+1, -1}, {+1, +1}, {-1, +1}};

  template <class T>
  static T function(std::size_t node, Point<T, 2> const& p) {
    return (1.0 + p[0] * nodes[node][0]) * (1.0 + p[1] * nodes[node][1]) / 4.0;
  }
};

template <>
struct Known<Quadrilateral8> : PartitionOfUnity {
  static constexpr const char* name = "Quadrilateral8";
  static constexpr Point<double, 2> nodes[]{{-1, -1}, {+1, -1}, {+1, +1}, {-1, +1}, {0, -1}, {+1, 0}, {0, +1}, {-1, 0}};

  template <class T>
  static T function(std::size_t node, Point<T, 2> const& p) {
    const T along_r = p[0] * nodes[node][0], along_s = p[1] * nodes[node][1];
    if (nodes[node][0] == 0) return (1.0 - p[0] * p[0]) * (1.0 + along_s) / 2.0;
    if (nodes[node][1] == 0) return (1.0 - p[1] * p[1]) * (1.0 + along_r) / 2.0;
    return (1.0 + along_r) * (1.0 + along_s) * (along_r + along_s - 1.0) / 4.0;
  }
};

template <>
struct Known<Hexahedron8> : PartitionOfUnity {
  static constexpr const char* name = "Hexahedron8";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {+1, +1, -1}, {-1, +1, -1},
                                            {-1, -1, +1}, {+1, -1, +1}, {+1, +1, +1}, {-1, +1, +1}};

  template <class T>
  static T function(std::size_t node, Point<T, 3> const& p) {
    return (1.0 + p[0] * nodes[node][0]) * (1.0 + p[1] * nodes[node][1]) * (1.0 + p[2] * nodes[node][2]) / 8.0;
  }
};

// An element that is an eight-node one with corners in one place: a function is the sum of those of its corners.
template <class Collapsed, class Full>
struct MergedCorners {
  template <class T>
  static T function(std::size_t node, Point<T, 3> const& p) {
    T sum = 0.0;
    for (std::size_t corner = 0; corner < 8; ++corner) {
      if (Known<Collapsed>::node_of_corner[corner] == node) sum = sum + Known<Full>::function(corner, p);
    }
    return sum;
  }
};

template <>
struct Known<Tetrahedron4> : PartitionOfUnity, MergedCorners<Tetrahedron4, Hexahedron8> {
  static constexpr const char* name = "Tetrahedron4";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {0, +1, -1}, {0, 0, +1}};
  static constexpr std::size_t node_of_corner[]{0, 1, 2, 2, 3, 3, 3, 3};
};

template <>
struct Known<Pyramid5> : PartitionOfUnity, MergedCorners<Pyramid5, Hexahedron8> {
  static constexpr const char* name = "Pyramid5";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {+1, +1, -1}, {-1, +1, -1}, {0, 0, +1}};
  static constexpr std::size_t node_of_corner[]{0, 1, 2, 3, 4, 4, 4, 4};
};

template <>
struct Known<Wedge6> : PartitionOfUnity, MergedCorners<Wedge6, Hexahedron8> {
  static constexpr const char* name = "Wedge6";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {0, +1, -1},
                                            {-1, -1, +1}, {+1, -1, +1}, {0, +1, +1}};
  static constexpr std::size_t node_of_corner[]{0, 1, 2, 2, 3, 4, 5, 5};
};

// The field functions are quadratic along t through t = -1, 0 and 1, but the nodes at t = 1 are at infinity, where the
// field is 0: their part (t + t^2)/2 is missing from the sum.
struct FieldVanishesAtInfinity {
  template <class T>
  static T sum(Point<T, 3> const& p) {
    return 1.0 - (p[2] + p[2] * p[2]) / 2.0;
  }
};

template <>
struct Known<Infinite8> : FieldVanishesAtInfinity {
  static constexpr const char* name = "Infinite8Field";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {+1, +1, -1}, {-1, +1, -1},
                                            {-1, -1, 0},  {+1, -1, 0},  {+1, +1, 0},  {-1, +1, 0}};

  template <class T>
  static T function(std::size_t node, Point<T, 3> const& p) {
    const T face = Known<Quadrilateral4>::function(node % 4, Point<T, 2>{p[0], p[1]});
    return node < 4 ? face * (p[2] * (p[2] - 1.0) / 2.0) : face * ((1.0 - p[2]) * (1.0 + p[2]));
  }
};

template <>
struct Known<Infinite6> : FieldVanishesAtInfinity, MergedCorners<Infinite6, Infinite8> {
  static constexpr const char* name = "Infinite6Field";
  static constexpr Point<double, 3> nodes[]{{-1, -1, -1}, {+1, -1, -1}, {0, +1, -1},
                                            {-1, -1, 0},  {+1, -1, 0},  {0, +1, 0}};
  static constexpr std::size_t node_of_corner[]{0, 1, 2, 2, 3, 4, 5, 5};
};

// A point is -2t/(1 - t) times the point below it on the finite face and (1 + t)/(1 - t) times the one on t = 0.
template <>
struct Known<Mapping<Infinite8>> : PartitionOfUnity {
  static constexpr const char* name = "Infinite8Mapping";
  static constexpr auto& nodes = Known<Infinite8>::nodes;

  template <class T>
  static T function(std::size_t node, Point<T, 3> const& p) {
    const T face = Known<Quadrilateral4>::function(node % 4, Point<T, 2>{p[0], p[1]});
    return node < 4 ? -2.0 * p[2] / (1.0 - p[2]) * face : (1.0 + p[2]) / (1.0 - p[2]) * face;
  }
};

template <>
struct Known<Mapping<Infinite6>> : PartitionOfUnity, MergedCorners<Mapping<Infinite6>, Mapping<Infinite8>> {
  static constexpr const char* name = "Infinite6Mapping";
  static constexpr auto& nodes = Known<Infinite6>::nodes;
  static constexpr auto& node_of_corner = Known<Infinite6>::node_of_corner;
};

template <class T, std::size_t Dimension>
Point<T, Dimension> point_on(Point<double, Dimension> const& p) {
  Point<T, Dimension> result;
  for (std::size_t direction = 0; direction < Dimension; ++direction) result[direction] = T(p[direction]);
  return result;
}

// The point as dual numbers, which differentiate along one direction.
template <std::size_t Dimension>
Point<Dual, Dimension> varying_along(std::size_t direction, Point<Rational, Dimension> const& p) {
  Point<Dual, Dimension> result;
  for (std::size_t i = 0; i < Dimension; ++i) result[i] = Dual(p[i], Rational(i == direction ? 1.0 : 0.0));
  return result;
}

// A fraction between -12 and 12, half of the time between -1 and 1. Never 1, where the mapping is infinite.
Rational random_fraction(Random& random) {
  const auto denominator = static_cast<std::int64_t>(2 + random.below(6));
  const std::int64_t size = random.below(2) == 0 ? denominator : 12 * denominator;
  const auto numerator = static_cast<std::int64_t>(random.below(static_cast<std::uint64_t>(2 * size + 1))) - size;
  return numerator == denominator ? Rational(-1.0) : Rational(numerator, denominator);
}

template <std::size_t Dimension>
Point<Rational, Dimension> random_rational_point(Random& random) {
  Point<Rational, Dimension> p;
  for (auto& coordinate : p) coordinate = random_fraction(random);
  return p;
}

// Calls check(point) for many points on fractions, in the element and outside.
template <class Element, class Check>
void for_rational_points(Check check) {
  constexpr int seed = 45;
  Random random(seed);
  for (int i = 0; i < 2000 && !::testing::Test::HasFailure(); ++i) {
    const auto p = random_rational_point<Element::dimension>(random);
    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", case " << i << ", point "
                                      << ::testing::PrintToString(p));
    check(p);
  }
}

template <class Element>
class ElementTest : public ::testing::Test {};

struct ElementNames {
  template <class Element>
  static std::string GetName(int) {
    return Known<Element>::name;
  }
};

using Elements =
    ::testing::Types<Line2, Line3, Triangle3, Triangle6, Quadrilateral4, Quadrilateral8, Tetrahedron4, Pyramid5, Wedge6,
                     Hexahedron8, Infinite6, Infinite8, Mapping<Infinite6>, Mapping<Infinite8>>;
TYPED_TEST_SUITE(ElementTest, Elements, ElementNames);

TYPED_TEST(ElementTest, NodesAreWhereTheyBelong) {
  constexpr auto& expected = Known<TypeParam>::nodes;
  static_assert(TypeParam::node_count == std::extent_v<std::remove_reference_t<decltype(expected)>>);
  static_assert(TypeParam::nodes.size() == TypeParam::node_count);
  for (std::size_t node = 0; node < TypeParam::node_count; ++node) {
    EXPECT_EQ(TypeParam::nodes[node], expected[node]) << "node " << node + 1;
  }
}

TYPED_TEST(ElementTest, EachFunctionIsOneAtItsOwnNodeAndZeroAtTheOthers) {
  for (std::size_t place = 0; place < TypeParam::node_count; ++place) {
    const auto values = TypeParam::values(Known<TypeParam>::nodes[place]);
    ASSERT_EQ(values.size(), TypeParam::node_count);
    for (std::size_t node = 0; node < TypeParam::node_count; ++node) {
      EXPECT_EQ(values[node], node == place ? 1.0 : 0.0) << "function " << node + 1 << " at node " << place + 1;
    }
  }
}

TYPED_TEST(ElementTest, FunctionsAreThoseOfTheTextbook) {
  for_rational_points<TypeParam>([](auto const& p) {
    const auto values = TypeParam::values(p);
    for (std::size_t node = 0; node < TypeParam::node_count; ++node) {
      EXPECT_EQ(values[node], Known<TypeParam>::function(node, p)) << "node " << node + 1;
    }
  });
}

TYPED_TEST(ElementTest, DerivativesAreThoseOfTheFunctions) {
  for_rational_points<TypeParam>([](auto const& p) {
    const auto derivatives = TypeParam::derivatives(p);
    ASSERT_EQ(derivatives.size(), TypeParam::dimension);
    for (std::size_t direction = 0; direction < TypeParam::dimension; ++direction) {
      const auto functions = TypeParam::values(varying_along(direction, p));
      for (std::size_t node = 0; node < TypeParam::node_count; ++node) {
        EXPECT_EQ(derivatives[direction][node], functions[node].slope)
            << "direction " << direction << ", node " << node + 1;
      }
    }
  });
}

TYPED_TEST(ElementTest, FunctionsAddUpAndDerivativesCancelExactly) {
  for_rational_points<TypeParam>([](auto const& p) {
    Rational total;
    for (auto const& value : TypeParam::values(p)) total = total + value;
    EXPECT_EQ(total, Known<TypeParam>::sum(p));

    const auto derivatives = TypeParam::derivatives(p);
    for (std::size_t direction = 0; direction < TypeParam::dimension; ++direction) {
      Rational row_total;
      for (auto const& derivative : derivatives[direction]) row_total = row_total + derivative;
      EXPECT_EQ(row_total, Known<TypeParam>::sum(varying_along(direction, p)).slope) << "direction " << direction;
    }
  });
}

// A double with a bound of the error that it has gathered (running error analysis: Higham, Accuracy and Stability of
// Numerical Algorithms, section 3.3). Each operation passes on the errors of its operands and adds half an ulp of its
// result, at most 2^-53 of it.
struct Bounded {
  double value = 0;
  double error = 0;

  Bounded(double exact = 0) : value(exact) {}
  Bounded(double result, double inherited) : value(result), error(inherited + 0x1p-53 * std::abs(result)) {}

  friend Bounded operator-(Bounded a) {
    a.value = -a.value;
    return a;
  }
  friend Bounded operator+(Bounded a, Bounded b) { return {a.value + b.value, a.error + b.error}; }
  friend Bounded operator-(Bounded a, Bounded b) { return {a.value - b.value, a.error + b.error}; }
  friend Bounded operator*(Bounded a, Bounded b) {
    return {a.value * b.value, std::abs(a.value) * b.error + a.error * std::abs(b.value) + a.error * b.error};
  }
  friend Bounded operator/(Bounded a, Bounded b) {
    const double quotient = a.value / b.value;
    return {quotient, (a.error + std::abs(quotient) * b.error) / (std::abs(b.value) - b.error)};
  }
};

// The bound is computed in floating point too: some hundred roundings of at most 2^-53 each.
constexpr double kRoundingOfTheBound = 1 + 1e-12;

template <class Values>
Bounded total(Values const& values) {
  Bounded sum;
  for (auto const& value : values) sum = sum + value;
  return sum;
}

// Checks the sums of the functions and of each row of derivatives at p; returns the largest error they were allowed.
template <class Element, std::size_t Dimension>
double expect_sums_within_their_bounds(Point<double, Dimension> const& p) {
  const auto on_bounded = point_on<Bounded>(p);
  const Bounded excess = total(Element::values(on_bounded)) - Known<Element>::sum(on_bounded);
  EXPECT_LE(std::abs(excess.value), excess.error * kRoundingOfTheBound) << "sum of the functions";

  double largest = excess.error;
  const auto derivatives = Element::derivatives(on_bounded);
  for (std::size_t direction = 0; direction < Dimension; ++direction) {
    // Only the field functions of infinite elements have another sum than 1: it falls by t + 1/2 along t.
    constexpr bool falls = std::is_base_of_v<FieldVanishesAtInfinity, Known<Element>>;
    const Bounded row = total(derivatives[direction]);
    const Bounded left = falls && direction == 2 ? row + on_bounded[2] + 0.5 : row;
    EXPECT_LE(std::abs(left.value), left.error * kRoundingOfTheBound)
        << "sum of the derivatives, direction " << direction;
    largest = std::max(largest, left.error);
  }
  return largest;
}

TYPED_TEST(ElementTest, SumsAreWithinTheRoundingOfTheirOperationsAnywhere) {
  constexpr int seed = 46;
  Random random(seed);
  for (int i = 0; i < 5000 && !this->HasFailure(); ++i) {
    Point<double, TypeParam::dimension> p;
    for (auto& coordinate : p) coordinate = random.uniform(-100, 100);
    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", case " << i);
    expect_sums_within_their_bounds<TypeParam>(p);
  }
}

// A point of the smallest box around the nodes.
template <class Element>
auto random_point_between_nodes(Random& random) {
  Point<double, Element::dimension> p;
  for (std::size_t direction = 0; direction < Element::dimension; ++direction) {
    double low = Known<Element>::nodes[0][direction], high = low;
    for (auto const& node : Known<Element>::nodes) {
      low = std::min(low, node[direction]);
      high = std::max(high, node[direction]);
    }
    p[direction] = random.uniform(low, high);
  }
  return p;
}

// What the operations may lose between the nodes, in ulps of 1, so that the bounds themselves are seen to be tight. The
// 6-node triangle's derivatives along s lose the most. In half ulps, with r and s up to 1:
//   mid-sides    4 - 8 s - 4 r rounds numbers up to 8, 4, 4 and 8; 4 r and -4 r one up to 4 each. Each enters the sum
//                twice, as itself and half in each of two corners: 2 (24 + 4 + 4) = 64
//   corners      sum of two mid-sides (12, 0, 4), of which half is passed on, its half (6, 0, 2) and the corner
//                (5, 0, 3): 6 + 6 + 5 + 2 + 2 + 3 = 24
//   partial sums up to 5, 5, 8, 4, 8 and 0, together 30
// which is 118 half ulps.
constexpr double kUlpsBetweenNodes = 59;

TYPED_TEST(ElementTest, SumsBetweenTheNodesAreWithinAFewUlps) {
  constexpr int seed = 47;
  Random random(seed);
  for (int i = 0; i < 5000 && !this->HasFailure(); ++i) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed << ", case " << i);
    const auto p = random_point_between_nodes<TypeParam>(random);
    EXPECT_LE(expect_sums_within_their_bounds<TypeParam>(p), kUlpsBetweenNodes * 0x1p-52 * kRoundingOfTheBound);
  }
}

}  // namespace
