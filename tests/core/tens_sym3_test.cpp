#include <talvo/core/tens_sym3.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::Random;

TEST(TensSym3, IsAPlainAggregateOfSixteenComponents) {
  using T = TensSym3<double>;
  static_assert(std::is_aggregate_v<T>);
  static_assert(std::is_standard_layout_v<T>);
  static_assert(std::is_trivially_copyable_v<T>);
  EXPECT_EQ(sizeof(T), 128U);
}

TEST(TensSym3, IsZeroWhenDefaultBuiltTheHomogeneousCornerIncluded) {
  const TensSym3<double> t;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) EXPECT_TRUE(equal_bits(t(r, c), 0.0)) << r << ", " << c;
  }
}

TEST(TensSym3, ListsItsComponentsRowByRow) {
  const TensSym3<double> t{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) EXPECT_EQ(t(r, c), 4 * r + c) << r << ", " << c;
  }
}

TEST(TensSym3, EntryRCLiesAtPosition4RPlusC) {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      TensSym3<double> t;
      t(r, c) = 7.0;
      double raw[16];
      static_assert(sizeof raw == sizeof t);
      std::memcpy(raw, &t, sizeof raw);
      for (int i = 0; i < 16; ++i) EXPECT_EQ(raw[i], i == 4 * r + c ? 7.0 : 0.0) << "entry " << r << ", " << c;
    }
  }
}

TEST(TensSym3, ReadsAndWritesEntriesAtCompileTime) {
  constexpr double kRead = [] {
    TensSym3<double> t;
    t(2, 1) = 5.0;
    return t(2, 1) + t(1, 2);
  }();
  static_assert(kRead == 5.0);
}

TEST(TensSym3, ACopyHasTheSameBitsTheHomogeneousPartIncluded) {
  Random random(1);
  TensSym3<double> original;
  for (double& component : original.components) component = random.any_double();
  const TensSym3<double> copy = original;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) EXPECT_TRUE(equal_bits(copy(r, c), original(r, c))) << "seed 1, " << r << ", " << c;
  }
}

TEST(TensSym3, IsEqualWhenAllSixteenComponentsAre) {
  const TensSym3<double> t{{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}};
  EXPECT_EQ(t, t);
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      TensSym3<double> other = t;
      other(r, c) = -1.0;
      EXPECT_NE(t, other) << r << ", " << c;
    }
  }
}

}  // namespace
