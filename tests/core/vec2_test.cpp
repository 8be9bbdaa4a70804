#include <talvo/core/vec2.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <type_traits>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::Random;

template <class T>
class Vec2Of : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Vec2Of, Scalars);

TYPED_TEST(Vec2Of, IsAPlainAggregateOfTwoComponents) {
  using V = Vec2<TypeParam>;
  static_assert(std::is_aggregate_v<V>);
  static_assert(std::is_standard_layout_v<V>);
  static_assert(std::is_trivially_copyable_v<V>);
  static_assert(std::is_same_v<decltype(V::x), TypeParam> && std::is_same_v<decltype(V::y), TypeParam>);
  EXPECT_EQ(sizeof(V), 2 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(V, x), 0U);
  EXPECT_EQ(offsetof(V, y), sizeof(TypeParam));
}

TEST(Vec2, OfDoublesTakesSixteenBytes) { EXPECT_EQ(sizeof(Vec2<double>), 16U); }

TYPED_TEST(Vec2Of, IsZeroWhenDefaultBuilt) {
  const Vec2<TypeParam> v;
  EXPECT_TRUE(equal_bits(v.x, TypeParam{0}));
  EXPECT_TRUE(equal_bits(v.y, TypeParam{0}));
}

TYPED_TEST(Vec2Of, IsWrittenAsABracedList) {
  const Vec2<TypeParam> v{1, 2};
  EXPECT_EQ(v.x, TypeParam{1});
  EXPECT_EQ(v.y, TypeParam{2});
}

TEST(Vec2, ACopyHasTheSameBits) {
  Random random(1);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 1, case " << i);
    const Vec2<double> original{random.any_double(), random.any_double()};
    const Vec2<double> copy = original;
    EXPECT_TRUE(equal_bits(copy.x, original.x));
    EXPECT_TRUE(equal_bits(copy.y, original.y));
  }
}

TYPED_TEST(Vec2Of, IsEqualWhenBothComponentsAre) {
  using V = Vec2<TypeParam>;
  EXPECT_EQ((V{1, 2}), (V{1, 2}));
  EXPECT_NE((V{1, 2}), (V{3, 2}));
  EXPECT_NE((V{1, 2}), (V{1, 3}));
}

TYPED_TEST(Vec2Of, ComparesAsNumbersDo) {
  using V = Vec2<TypeParam>;
  constexpr TypeParam kNan = std::numeric_limits<TypeParam>::quiet_NaN();
  EXPECT_EQ((V{-TypeParam{0}, 0}), (V{0, -TypeParam{0}}));
  const V nan{kNan, 0};
  EXPECT_NE(nan, nan);
}

TYPED_TEST(Vec2Of, AddsSubtractsAndScalesByComponents) {
  using V = Vec2<TypeParam>;
  constexpr V a{1, 2};
  constexpr V b{10, -4};
  static_assert(a + b == V{11, -2});
  static_assert(a - b == V{-9, 6});
  static_assert(b * TypeParam{3} == V{30, -12});
  static_assert(TypeParam{3} * b == V{30, -12});
}

TEST(Vec2, ArithmeticIsTheScalarOneBitForBit) {
  Random random(2);
  for (int i = 0; i < 10000; ++i) {
    const Vec2<double> a{random.any_double(), random.any_double()};
    const Vec2<double> b{random.any_double(), random.any_double()};
    const double k = random.any_double();
    SCOPED_TRACE(::testing::Message() << "seed 2, case " << i);
    EXPECT_TRUE(equal_bits((a + b).x, a.x + b.x));
    EXPECT_TRUE(equal_bits((a + b).y, a.y + b.y));
    EXPECT_TRUE(equal_bits((a - b).x, a.x - b.x));
    EXPECT_TRUE(equal_bits((a - b).y, a.y - b.y));
    EXPECT_TRUE(equal_bits((a * k).x, a.x * k));
    EXPECT_TRUE(equal_bits((a * k).y, a.y * k));
    EXPECT_TRUE(equal_bits((k * a).x, k * a.x));
    EXPECT_TRUE(equal_bits((k * a).y, k * a.y));
  }
}

}  // namespace
