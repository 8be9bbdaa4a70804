#include <talvo/core/vec3.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::Random;

template <class T>
class Vec3Of : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Vec3Of, Scalars);

TYPED_TEST(Vec3Of, IsAPlainAggregateFourWide) {
  using V = Vec3<TypeParam>;
  static_assert(std::is_aggregate_v<V>);
  static_assert(std::is_standard_layout_v<V>);
  static_assert(std::is_trivially_copyable_v<V>);
  static_assert(std::is_same_v<decltype(V::x), TypeParam> && std::is_same_v<decltype(V::w), TypeParam>);
  EXPECT_EQ(sizeof(V), 4 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(V, x), 0 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(V, y), 1 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(V, z), 2 * sizeof(TypeParam));
  EXPECT_EQ(offsetof(V, w), 3 * sizeof(TypeParam));
}

TEST(Vec3, OfDoublesTakesThirtyTwoBytes) { EXPECT_EQ(sizeof(Vec3<double>), 32U); }

TYPED_TEST(Vec3Of, IsNotAPointWhenDefaultBuilt) {
  const Vec3<TypeParam> v;
  EXPECT_TRUE(std::isnan(v.x));
  EXPECT_TRUE(std::isnan(v.y));
  EXPECT_TRUE(std::isnan(v.z));
  EXPECT_TRUE(equal_bits(v.w, TypeParam{0}));
}

TYPED_TEST(Vec3Of, HasNoHomogeneousPartWhenWrittenWithThreeComponents) {
  const Vec3<TypeParam> v{1, 2, 3};
  EXPECT_EQ(v.x, TypeParam{1});
  EXPECT_EQ(v.y, TypeParam{2});
  EXPECT_EQ(v.z, TypeParam{3});
  EXPECT_TRUE(equal_bits(v.w, TypeParam{0}));
}

TYPED_TEST(Vec3Of, TakesAHomogeneousPartAsTheFourthComponent) {
  const Vec3<TypeParam> v{1, 2, 3, 4};
  EXPECT_EQ(v.z, TypeParam{3});
  EXPECT_EQ(v.w, TypeParam{4});
}

TEST(Vec3, ACopyHasTheSameBitsInAllFourComponents) {
  Random random(1);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 1, case " << i);
    const Vec3<double> original{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const Vec3<double> copy = original;
    EXPECT_TRUE(equal_bits(copy.x, original.x));
    EXPECT_TRUE(equal_bits(copy.y, original.y));
    EXPECT_TRUE(equal_bits(copy.z, original.z));
    EXPECT_TRUE(equal_bits(copy.w, original.w));
  }
}

TYPED_TEST(Vec3Of, IsEqualWhenAllFourComponentsAre) {
  using V = Vec3<TypeParam>;
  EXPECT_EQ((V{1, 2, 3, 4}), (V{1, 2, 3, 4}));
  EXPECT_NE((V{1, 2, 3, 4}), (V{9, 2, 3, 4}));
  EXPECT_NE((V{1, 2, 3, 4}), (V{1, 9, 3, 4}));
  EXPECT_NE((V{1, 2, 3, 4}), (V{1, 2, 9, 4}));
  EXPECT_NE((V{1, 2, 3, 4}), (V{1, 2, 3, 9}));
}

TYPED_TEST(Vec3Of, ComparesAsNumbersDo) {
  using V = Vec3<TypeParam>;
  EXPECT_EQ((V{0, -TypeParam{0}, 0}), (V{-TypeParam{0}, 0, 0}));
  const V unset;
  EXPECT_NE(unset, unset);
}

// The arguments carry a w on purpose: no result may inherit it.
TYPED_TEST(Vec3Of, AddsSubtractsAndScalesXYZAndSetsWToZero) {
  using V = Vec3<TypeParam>;
  constexpr V a{1, 2, 3, 5};
  constexpr V b{10, -4, 7, 6};
  static_assert(a + b == V{11, -2, 10, 0});
  static_assert(a - b == V{-9, 6, -4, 0});
  static_assert(b * TypeParam{3} == V{30, -12, 21, 0});
  static_assert(TypeParam{3} * b == V{30, -12, 21, 0});
}

TYPED_TEST(Vec3Of, AnInfiniteOrNanWDoesNotReachTheResult) {
  using V = Vec3<TypeParam>;
  using Limits = std::numeric_limits<TypeParam>;
  const V a{1, 2, 3, Limits::quiet_NaN()};
  const V b{1, 2, 3, Limits::infinity()};
  EXPECT_TRUE(equal_bits((a + b).w, TypeParam{0}));
  EXPECT_TRUE(equal_bits((a - b).w, TypeParam{0}));
  EXPECT_TRUE(equal_bits((a * TypeParam{-1}).w, TypeParam{0}));
  EXPECT_TRUE(equal_bits((TypeParam{-1} * b).w, TypeParam{0}));
}

TEST(Vec3, ArithmeticIsTheScalarOneBitForBit) {
  Random random(2);
  for (int i = 0; i < 10000; ++i) {
    const Vec3<double> a{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const Vec3<double> b{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const double k = random.any_double();
    SCOPED_TRACE(::testing::Message() << "seed 2, case " << i);
    const auto expect = [](Vec3<double> const& v, double x, double y, double z) {
      EXPECT_TRUE(equal_bits(v.x, x));
      EXPECT_TRUE(equal_bits(v.y, y));
      EXPECT_TRUE(equal_bits(v.z, z));
      EXPECT_TRUE(equal_bits(v.w, 0.0));
    };
    expect(a + b, a.x + b.x, a.y + b.y, a.z + b.z);
    expect(a - b, a.x - b.x, a.y - b.y, a.z - b.z);
    expect(a * k, a.x * k, a.y * k, a.z * k);
    expect(k * a, k * a.x, k * a.y, k * a.z);
  }
}

}  // namespace
