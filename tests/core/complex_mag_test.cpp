#include <talvo/core/complex_mag.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <string>

#include "support/bits.h"
#include "support/random.h"

namespace {

using talvo::test::equal_bits;
using talvo::test::Random;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// One component, in the order of operations that the library promises. Not hypot: the squares may overflow or vanish.
double modulus(double re, double im) { return std::sqrt(re * re + im * im); }

TensSym3<double> any_tens_sym3(Random& random) {
  TensSym3<double> t;
  for (double& component : t.components) component = random.any_double();
  return t;
}

struct ModulusCase {
  const char* name;
  double re;
  double im;
  double expected;

  friend void PrintTo(ModulusCase const& c, std::ostream* out) { *out << c.name; }
};

class ComplexMagOfOneComponent : public ::testing::TestWithParam<ModulusCase> {};

TEST_P(ComplexMagOfOneComponent, IsTheSameForEveryType) {
  const auto [name, re, im, expected] = GetParam();
  const Vec2<double> v2 = ComplexMag(Vec2<double>{re, re}, Vec2<double>{im, im});
  EXPECT_TRUE(equal_bits(v2.x, expected));
  EXPECT_TRUE(equal_bits(v2.y, expected));
  const Vec3<double> v3 = ComplexMag(Vec3<double>{re, re, re}, Vec3<double>{im, im, im});
  EXPECT_TRUE(equal_bits(v3.x, expected));
  EXPECT_TRUE(equal_bits(v3.y, expected));
  EXPECT_TRUE(equal_bits(v3.z, expected));
  const Tens2<double> t2 = ComplexMag(Tens2<double>{re, re, re, re}, Tens2<double>{im, im, im, im});
  EXPECT_TRUE(equal_bits(t2.xx, expected));
  EXPECT_TRUE(equal_bits(t2.xy, expected));
  EXPECT_TRUE(equal_bits(t2.yx, expected));
  EXPECT_TRUE(equal_bits(t2.yy, expected));
  TensSym3<double> re3;
  TensSym3<double> im3;
  for (double& component : re3.components) component = re;
  for (double& component : im3.components) component = im;
  const TensSym3<double> t3 = ComplexMag(re3, im3);
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) EXPECT_TRUE(equal_bits(t3(r, c), expected)) << r << ", " << c;
  }
}

// The squares stand as they are: beyond 1e154 they overflow, below 1e-162 they vanish, and an infinity beside a NaN
// does not hide it, all of which hypot would do otherwise.
// clang-format off
INSTANTIATE_TEST_SUITE_P(ByHand, ComplexMagOfOneComponent, ::testing::Values(
    ModulusCase{"three_four_five",       3.0,        4.0,       5.0},
    ModulusCase{"negative_parts",        -5.0,       -12.0,     13.0},
    ModulusCase{"real_only",             -2.0,       0.0,       2.0},
    ModulusCase{"imaginary_only",        0.0,        -2.0,      2.0},
    ModulusCase{"zero",                  0.0,        0.0,       0.0},
    ModulusCase{"negative_zeros",        -0.0,       -0.0,      0.0},
    ModulusCase{"square_just_finite",    0x1p511,    0.0,       0x1p511},
    ModulusCase{"square_overflows",      0x1p512,    0.0,       kInfinity},
    ModulusCase{"sum_overflows",         0x1.8p511,  0x1.8p511, kInfinity},
    ModulusCase{"square_just_there",     0x1p-537,   0.0,       0x1p-537},
    ModulusCase{"square_vanishes",       0x1p-538,   0.0,       0.0},
    ModulusCase{"infinite",              -kInfinity, 1.0,       kInfinity},
    ModulusCase{"nan",                   kNan,       1.0,       kNan},
    ModulusCase{"infinity_beside_nan",   kInfinity,  kNan,      kNan}),
    [](auto const& i) { return std::string(i.param.name); });
// clang-format on

TEST(ComplexMag, OfVec2TreatsEachComponentByItself) {
  EXPECT_EQ(ComplexMag(Vec2<double>{3.0, 4.0}, Vec2<double>{4.0, 3.0}), (Vec2<double>{5.0, 5.0}));
  EXPECT_EQ(ComplexMag(Vec2<double>{3.0, 5.0}, Vec2<double>{4.0, 12.0}), (Vec2<double>{5.0, 13.0}));
}

TEST(ComplexMag, OfVec3TreatsEachComponentByItself) {
  EXPECT_EQ(ComplexMag(Vec3<double>{3.0, 5.0, 8.0}, Vec3<double>{4.0, 12.0, 15.0}),
            (Vec3<double>{5.0, 13.0, 17.0, 0.0}));
}

TEST(ComplexMag, OfVec3HasNoHomogeneousPart) {
  for (double w : {1.0, -1.0, kInfinity, kNan}) {
    const Vec3<double> v = ComplexMag(Vec3<double>{3.0, 3.0, 3.0, w}, Vec3<double>{4.0, 4.0, 4.0, w});
    EXPECT_TRUE(equal_bits(v.w, 0.0)) << w;
    EXPECT_EQ(v.x, 5.0);
  }
}

TEST(ComplexMag, OfTens2TreatsEachComponentByItself) {
  EXPECT_EQ(ComplexMag(Tens2<double>{3.0, 5.0, 5.0, 8.0}, Tens2<double>{4.0, 12.0, 12.0, 15.0}),
            (Tens2<double>{5.0, 13.0, 13.0, 17.0}));
}

TEST(ComplexMag, OfTens2TakesBothShearsFromXY) {
  EXPECT_EQ(ComplexMag(Tens2<double>{3.0, 5.0, 99.0, 8.0}, Tens2<double>{4.0, 12.0, kNan, 15.0}),
            (Tens2<double>{5.0, 13.0, 13.0, 17.0}));
}

// Six Pythagorean triples in the lower triangle, and NaN wherever nothing may be read.
TEST(ComplexMag, OfTensSym3ReadsTheLowerTriangleOnly) {
  // clang-format off
  const TensSym3<double> re{{ 3.0, kNan, kNan, kNan,
                              5.0,  8.0, kNan, kNan,
                              7.0, 20.0,  9.0, kNan,
                             kNan, kNan, kNan, kNan}};
  const TensSym3<double> im{{ 4.0, kNan, kNan, kNan,
                             12.0, 15.0, kNan, kNan,
                             24.0, 21.0, 40.0, kNan,
                             kNan, kNan, kNan, kNan}};
  const TensSym3<double> expected{{ 5.0, 13.0, 25.0, 0.0,
                                   13.0, 17.0, 29.0, 0.0,
                                   25.0, 29.0, 41.0, 0.0,
                                    0.0,  0.0,  0.0, 1.0}};
  // clang-format on
  EXPECT_EQ(ComplexMag(re, im), expected);
}

TEST(ComplexMag, OfTensSym3HasTheHomogeneousPartOfTheUnitMatrix) {
  const TensSym3<double> zero;
  TensSym3<double> nines;
  for (double& component : nines.components) component = -9.0;
  for (TensSym3<double> const& t : {zero, nines}) {
    const TensSym3<double> m = ComplexMag(t, t);
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(equal_bits(m(i, 3), 0.0)) << i;
      EXPECT_TRUE(equal_bits(m(3, i), 0.0)) << i;
    }
    EXPECT_TRUE(equal_bits(m(3, 3), 1.0));
  }
}

TEST(ComplexMag, IsTheRootOfTheSumOfSquaresBitForBit) {
  Random random(1);
  for (int i = 0; i < 50000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 1, case " << i);
    const Vec3<double> re{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const Vec3<double> im{random.any_double(), random.any_double(), random.any_double(), random.any_double()};
    const Vec3<double> v3 = ComplexMag(re, im);
    EXPECT_TRUE(equal_bits(v3.x, modulus(re.x, im.x)));
    EXPECT_TRUE(equal_bits(v3.y, modulus(re.y, im.y)));
    EXPECT_TRUE(equal_bits(v3.z, modulus(re.z, im.z)));
    EXPECT_TRUE(equal_bits(v3.w, 0.0));
    const Vec2<double> v2 = ComplexMag(Vec2<double>{re.x, re.y}, Vec2<double>{im.x, im.y});
    EXPECT_TRUE(equal_bits(v2.x, modulus(re.x, im.x)));
    EXPECT_TRUE(equal_bits(v2.y, modulus(re.y, im.y)));
    const Tens2<double> t2 = ComplexMag(Tens2<double>{re.x, re.y, re.z, re.w}, Tens2<double>{im.x, im.y, im.z, im.w});
    EXPECT_TRUE(equal_bits(t2.xx, modulus(re.x, im.x)));
    EXPECT_TRUE(equal_bits(t2.xy, modulus(re.y, im.y)));
    EXPECT_TRUE(equal_bits(t2.yx, modulus(re.y, im.y)));
    EXPECT_TRUE(equal_bits(t2.yy, modulus(re.w, im.w)));
  }
}

TEST(ComplexMag, OfTensSym3IsTheRootOfTheSumOfSquaresBitForBit) {
  Random random(2);
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 2, case " << i);
    const TensSym3<double> re = any_tens_sym3(random);
    const TensSym3<double> im = any_tens_sym3(random);
    const TensSym3<double> m = ComplexMag(re, im);
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c <= r; ++c) {
        EXPECT_TRUE(equal_bits(m(r, c), modulus(re(r, c), im(r, c)))) << r << ", " << c;
        EXPECT_TRUE(equal_bits(m(c, r), m(r, c))) << r << ", " << c;
      }
    }
  }
}

TEST(ComplexMag, IsFoundWithAndWithoutTheNamespace) {
  const Vec2<double> re{3.0, 4.0};
  const Vec2<double> im{4.0, 3.0};
  EXPECT_EQ(::ComplexMag(re, im), (Vec2<double>{5.0, 5.0}));
  EXPECT_EQ(Talvo::ComplexMag(re, im), (Vec2<double>{5.0, 5.0}));
  using namespace Talvo;  // NOLINT(google-build-using-namespace): both names are one function, so that nothing clashes
  EXPECT_EQ(ComplexMag(re, im), (Vec2<double>{5.0, 5.0}));
}

TEST(ComplexMag, InNamespaceTalvoTakesEveryType) {
  EXPECT_EQ(Talvo::ComplexMag(Vec3<double>{3.0, 0.0, 0.0}, Vec3<double>{4.0, 0.0, 0.0}),
            (Vec3<double>{5.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(Talvo::ComplexMag(Tens2<double>{3.0, 0.0, 0.0, 0.0}, Tens2<double>{4.0, 0.0, 0.0, 0.0}),
            (Tens2<double>{5.0, 0.0, 0.0, 0.0}));
  TensSym3<double> unit_corner;
  unit_corner(3, 3) = 1.0;
  EXPECT_EQ(Talvo::ComplexMag(TensSym3<double>(), TensSym3<double>()), unit_corner);
}

}  // namespace
