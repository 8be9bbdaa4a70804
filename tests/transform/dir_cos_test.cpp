#include <talvo/transform/dir_cos.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "transform/plain_frames.h"

// A frame's matrix and how it is set; what is done with it is tested in dir_cos_transformations_test.cpp.

namespace {

using namespace talvo::test;
using Talvo::Direction;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr long double kRoundoff = 0x1p-53L;

Table created(Vector const& dir, Vector const& ref) {
  Frame frame = frame_of(kNumbered);
  frame.Create(dir, ref);
  return table_of(frame);
}

Table assigned(Vector const& x, Vector const& y, Vector const& z, bool normalise) {
  Frame frame = frame_of(kNumbered);
  frame.Assign(x, y, z, normalise);
  return table_of(frame);
}

double below(double x) { return std::nextafter(x, 0.0); }

// ---------------------------------------------------------------- the class as a binary interface

TEST(DirCosLayout, HoldsItsMatrixAt64BytesInA192ByteObject) {
  static_assert(sizeof(Frame) == 192);
  static_assert(alignof(Frame) == 64);
  const Frame frame;
  const auto* object = reinterpret_cast<const std::byte*>(&frame);
  const auto* matrix = reinterpret_cast<const std::byte*>(&frame.Inner());
  EXPECT_EQ(matrix - object, 64);
}

TEST(DirCosLayout, ExposesARowMajorMatrixOfDoubles) {
  using Matrix = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;
  static_assert(std::is_same_v<decltype(std::declval<Frame&>().Inner()), Matrix&>);
  static_assert(std::is_same_v<decltype(std::declval<Frame const&>().Inner()), Matrix const&>);
  const Frame frame = frame_of(kNumbered);
  for (int k = 0; k < 16; ++k) EXPECT_EQ(frame.Inner().data()[k], k + 1);
}

TEST(DirCosLayout, ExposesTheStoredMatrixItself) {
  Frame frame;
  frame.Inner()(1, 2) = 7.0;
  EXPECT_EQ(std::as_const(frame).Inner()(1, 2), 7.0);
  EXPECT_EQ(&frame.Inner(), &std::as_const(frame).Inner());
}

TEST(DirCosLayout, IsPolymorphicWithoutAVirtualDestructor) {
  static_assert(std::is_polymorphic_v<Frame>);
  static_assert(!std::has_virtual_destructor_v<Frame>);
}

// Every virtual operation with its exact signature: an override would not compile otherwise.
class Recorder : public Frame {
 public:
  using Frame::Frame;
  using Frame::Rotate;

  mutable std::string called;

  void Unit() override { called = "Unit"; }
  void Create(Vector, Vector const&) override { called = "Create"; }
  void Assign(Frame const&) override { called = "Assign frame"; }
  void Assign(Vector const&, Vector const&, Vector const&, bool) override { called = "Assign axes"; }
  void Transpose() override { called = "Transpose"; }
  Frame Transform(Frame const&) const override { return record("Transform"); }
  Frame TransformAlt(Frame const&) const override { return record("TransformAlt"); }
  Frame Rotate(Direction, double) const override { return record("Rotate"); }
  Tensor GtoL(Tensor const& t) const override {
    record("GtoL tensor");
    return t;
  }
  Vector GtoL(Vector const& v) const override {
    record("GtoL vector");
    return v;
  }
  Tensor LtoG(Tensor const& t) const override {
    record("LtoG tensor");
    return t;
  }
  Vector LtoG(Vector const& v) const override {
    record("LtoG vector");
    return v;
  }

 private:
  Frame record(const char* operation) const {
    called = operation;
    return {};
  }
};

TEST(DirCosVirtuals, AreDispatchedToTheDerivedClass) {
  Recorder recorder;
  Frame& frame = recorder;
  const auto expect_call = [&](const char* operation, auto&& call) {
    recorder.called.clear();
    call();
    EXPECT_EQ(recorder.called, operation);
  };
  const Vector v{1, 2, 3};
  expect_call("Unit", [&] { frame.Unit(); });
  expect_call("Create", [&] { frame.Create(v, v); });
  expect_call("Assign frame", [&] { frame.Assign(Frame()); });
  expect_call("Assign axes", [&] { frame.Assign(v, v, v, true); });
  expect_call("Transpose", [&] { frame.Transpose(); });
  expect_call("Transform", [&] { frame.Transform(Frame()); });
  expect_call("TransformAlt", [&] { frame.TransformAlt(Frame()); });
  expect_call("Rotate", [&] { frame.Rotate(Talvo::X, 1.0); });
  expect_call("GtoL tensor", [&] { frame.GtoL(Tensor()); });
  expect_call("GtoL vector", [&] { frame.GtoL(v); });
  expect_call("LtoG tensor", [&] { frame.LtoG(Tensor()); });
  expect_call("LtoG vector", [&] { frame.LtoG(v); });
}

// Only these twelve are virtual: the other members do not consult a derived class.
TEST(DirCosVirtuals, AreNotUsedByTheOtherMembers) {
  const Recorder recorder(Vector{0, 1, 0}, Vector{0, 0, 1}, Vector{1, 0, 0}, false);
  const Table m = table_of(recorder);
  EXPECT_EQ(m[1][0], 1.0) << "the constructor assigns the axes, not the derived class";
  EXPECT_TRUE(recorder == Frame(recorder));
  EXPECT_TRUE(equal_tables(table_of(recorder.Rotate(Vector{1, 2, 3}, 0.5)), plain::rotate(m, Vector{1, 2, 3}, 0.5)));
  EXPECT_TRUE(equal_tables(table_of(recorder.Rotate(Vector{1, 2, 3})), plain::rotate(m, Vector{1, 2, 3})));
  EXPECT_TRUE(equal_points(recorder.RotationAngle(), plain::rotation_angle(m)));
  EXPECT_TRUE(equal_points(recorder.AxisVec(Talvo::X, true), {0, 1, 0, 0}));
  EXPECT_EQ(recorder.called, "");
}

// In the Itanium C++ ABI a pointer to a virtual member function on x86-64 is 1 plus the offset of its slot in the
// virtual table, 8 bytes a slot (section 2.3, "Member Function Pointers"); one to another function is its even address.
#if defined(__GXX_ABI_VERSION) && defined(__x86_64__)
constexpr bool kCanReadSlots = true;
#else
constexpr bool kCanReadSlots = false;
#endif

constexpr std::ptrdiff_t kNotVirtual = -1;

template <class Member>
std::ptrdiff_t slot_of(Member member) {
  const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(member);
  return words[0] % 2 == 1 ? (words[0] - 1) / 8 : kNotVirtual;
}

TEST(DirCosVirtuals, StandInTheOrderThatDerivedClassesRelyOn) {
  if (!kCanReadSlots) GTEST_SKIP() << "member function pointers are encoded differently here";
  EXPECT_EQ(slot_of(static_cast<void (Frame::*)()>(&Frame::Unit)), 0);
  EXPECT_EQ(slot_of(static_cast<void (Frame::*)(Vector, Vector const&)>(&Frame::Create)), 1);
  EXPECT_EQ(slot_of(static_cast<void (Frame::*)(Frame const&)>(&Frame::Assign)), 2);
  EXPECT_EQ(slot_of(static_cast<void (Frame::*)(Vector const&, Vector const&, Vector const&, bool)>(&Frame::Assign)),
            3);
  EXPECT_EQ(slot_of(static_cast<void (Frame::*)()>(&Frame::Transpose)), 4);
  EXPECT_EQ(slot_of(static_cast<Frame (Frame::*)(Frame const&) const>(&Frame::Transform)), 5);
  EXPECT_EQ(slot_of(static_cast<Frame (Frame::*)(Frame const&) const>(&Frame::TransformAlt)), 6);
  EXPECT_EQ(slot_of(static_cast<Frame (Frame::*)(Direction, double) const>(&Frame::Rotate)), 7);
  EXPECT_EQ(slot_of(static_cast<Tensor (Frame::*)(Tensor const&) const>(&Frame::GtoL)), 8);
  EXPECT_EQ(slot_of(static_cast<Vector (Frame::*)(Vector const&) const>(&Frame::GtoL)), 9);
  EXPECT_EQ(slot_of(static_cast<Tensor (Frame::*)(Tensor const&) const>(&Frame::LtoG)), 10);
  EXPECT_EQ(slot_of(static_cast<Vector (Frame::*)(Vector const&) const>(&Frame::LtoG)), 11);
}

// A virtual operation that a derived class adds comes next: there is no thirteenth one, and no destructor.
TEST(DirCosVirtuals, FillTwelveSlots) {
  if (!kCanReadSlots) GTEST_SKIP() << "member function pointers are encoded differently here";
  struct Extended : Frame {
    virtual void Added() {}
  };
  EXPECT_EQ(slot_of(&Extended::Added), 12);
}

TEST(DirCosVirtuals, DoNotIncludeTheOtherMembers) {
  if (!kCanReadSlots) GTEST_SKIP() << "member function pointers are encoded differently here";
  EXPECT_EQ(slot_of(static_cast<Frame (Frame::*)(Vector const&, double) const>(&Frame::Rotate)), kNotVirtual);
  EXPECT_EQ(slot_of(static_cast<Frame (Frame::*)(Vector const&) const>(&Frame::Rotate)), kNotVirtual);
  EXPECT_EQ(slot_of(&Frame::RotationAngle), kNotVirtual);
  EXPECT_EQ(slot_of(&Frame::AxisVec), kNotVirtual);
  EXPECT_EQ(slot_of(&Frame::operator==), kNotVirtual);
}

// ---------------------------------------------------------------- construction and copies

TEST(DirCosConstruction, GivesTheIdentityByDefault) { EXPECT_TRUE(equal_tables(table_of(Frame()), kUnit)); }

// The given matrix is column-major and a frame's own row-major: entries keep their indices, not their places in memory.
TEST(DirCosConstruction, CopiesAMatrixEntryByEntry) {
  Eigen::Matrix<double, 4, 4> m;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m(r, c) = kNumbered[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
  }
  m(2, 3) = -0.0;
  const Eigen::Matrix<double, 4, 4> before = m;
  Table expected = kNumbered;
  expected[2][3] = -0.0;
  EXPECT_TRUE(equal_tables(table_of(Frame(m)), expected));
  EXPECT_EQ(m, before) << "the argument is not changed";
}

TEST(DirCosConstruction, FromAxesIsAssign) {
  const Vector x{1, 2, 2, 4}, y{0, 3, 4, 0}, z{0, 0, 0, 0};
  for (bool normalise : {false, true}) {
    EXPECT_TRUE(equal_tables(table_of(Frame(x, y, z, normalise)), assigned(x, y, z, normalise)));
  }
  EXPECT_TRUE(equal_tables(table_of(Frame(x, y, z, true)),
                           {{{0.2, 0, 0, 0}, {2 * 0.2, 3 * 0.2, 0, 0}, {2 * 0.2, 4 * 0.2, 0, 0}, {4 * 0.2, 0, 0, 1}}}));
}

TEST(DirCosCopies, TakeAllSixteenEntries) {
  Table m = kNumbered;
  m[0][3] = -0.0;
  m[3][0] = kNan;
  const Frame original = frame_of(m);
  EXPECT_TRUE(equal_tables(table_of(Frame(original)), m)) << "copy construction";

  Frame source = original;
  EXPECT_TRUE(equal_tables(table_of(Frame(std::move(source))), m)) << "move construction";

  Frame target;
  target = original;
  EXPECT_TRUE(equal_tables(table_of(target), m)) << "copy assignment";

  source = original;
  target.Unit();
  target = std::move(source);
  EXPECT_TRUE(equal_tables(table_of(target), m)) << "move assignment";

  target.Unit();
  target.Assign(original);
  EXPECT_TRUE(equal_tables(table_of(target), m)) << "Assign";
}

TEST(DirCosCopies, AreIndependentOfTheOriginal) {
  Frame original = frame_of(kNumbered);
  const Frame copy(original);
  Frame assigned_copy;
  assigned_copy.Assign(original);
  original.Unit();
  EXPECT_TRUE(equal_tables(table_of(copy), kNumbered));
  EXPECT_TRUE(equal_tables(table_of(assigned_copy), kNumbered));
}

TEST(DirCosCopies, ToItselfChangeNothing) {
  Frame frame = frame_of(kNumbered);
  frame.Assign(frame);
  EXPECT_TRUE(equal_tables(table_of(frame), kNumbered));
}

TEST(DirCosUnit, ResetsAllSixteenEntries) {
  Frame frame = frame_of(kNumbered);
  frame.Unit();
  EXPECT_TRUE(equal_tables(table_of(frame), kUnit));
}

// ---------------------------------------------------------------- Assign

TEST(DirCosAssign, WithNormalisationOfScaledAxesGivesTheIdentity) {
  EXPECT_TRUE(equal_tables(assigned({2, 0, 0}, {0, 3, 0}, {0, 0, 4}, true), kUnit));
}

TEST(DirCosAssign, WithoutNormalisationKeepsTheLengths) {
  EXPECT_TRUE(equal_tables(assigned({2, 0, 0}, {0, 3, 0}, {0, 0, 4}, false),
                           {{{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 4, 0}, {0, 0, 0, 1}}}));
}

TEST(DirCosAssign, PutsEachVectorWithItsWIntoAColumn) {
  EXPECT_TRUE(equal_tables(assigned({1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, false),
                           {{{1, 5, 9, 0}, {2, 6, 10, 0}, {3, 7, 11, 0}, {4, 8, 12, 1}}}));
}

// 1 + 4 + 4 + 16 = 25, and 1/5 is the double 0.2: with w the length is 5, without it 3.
TEST(DirCosAssign, CountsWIntoTheLength) {
  const Vector v{1, 2, 2, 4};
  const Table m = assigned(v, v, v, true);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    EXPECT_EQ(m[0][axis], 0.2);
    EXPECT_EQ(m[1][axis], 2 * 0.2);
    EXPECT_EQ(m[2][axis], 2 * 0.2);
    EXPECT_EQ(m[3][axis], 4 * 0.2);
  }
  EXPECT_EQ(m[3][3], 1.0);
}

// 49 times the rounded reciprocal of 49 is not 1, the quotient is.
TEST(DirCosAssign, MultipliesByTheReciprocalOfTheLength) {
  const Vector v{49, 0, 0};
  const double product = 49.0 * (1.0 / 49.0);
  ASSERT_NE(product, 1.0);
  EXPECT_EQ(assigned(v, v, v, true)[0][0], product);
}

TEST(DirCosAssign, StoresANullVectorAsZeros) {
  Table expected = kUnit;
  expected[0][0] = 0.0;
  EXPECT_TRUE(equal_tables(assigned({0, 0, 0, 0}, {0, 1, 0}, {0, 0, 1}, true), expected));
}

TEST(DirCosAssign, StoresAVectorWithoutLengthUnchanged) {
  // -0.0, squares that underflow to 0, and a NaN: the sum of squares is not greater than 0.
  const Vector x{-0.0, 0.0, -0.0, -0.0}, y{1e-170, -1e-200, 0, 1e-180}, z{3.0, kNan, 4.0, 5.0};
  EXPECT_TRUE(equal_tables(assigned(x, y, z, true), assigned(x, y, z, false)));
}

// The smallest magnitude whose square is not 0 is normalised, the number below it is not. 2^-537 squared is 2^-1074,
// the smallest denormal; its root is exact again.
TEST(DirCosAssign, NormalisesFromTheSmallestSquareOn) {
  const double tiny = 0x1p-537;
  const double tinier = 0x1p-538;
  ASSERT_GT(tiny * tiny, 0.0);
  ASSERT_EQ(tinier * tinier, 0.0);
  const Table m = assigned({tiny, 0, 0}, {0, tinier, 0}, {0, 0, 1}, true);
  EXPECT_EQ(m[0][0], 1.0);
  EXPECT_EQ(m[1][1], tinier);
}

// Squares that overflow: the reciprocal of an infinite length is 0.
TEST(DirCosAssign, MakesAnOverflowingVectorNull) {
  const Table m = assigned({1e200, -1e200, 0, 0}, {kInfinity, 1, 0, 0}, {0, 0, 1}, true);
  EXPECT_TRUE(equal_bits(m[0][0], 0.0));
  EXPECT_TRUE(equal_bits(m[1][0], -0.0));
  EXPECT_TRUE(std::isnan(m[0][1]));
  EXPECT_TRUE(equal_bits(m[1][1], 0.0));
}

TEST(DirCosAssign, TakesVectorsOfAnyKindBitForBit) {
  Random random(21);
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 21, case " << i);
    const Vector x = awkward_vector(random), y = awkward_vector(random), z = awkward_vector(random);
    ASSERT_TRUE(equal_tables(assigned(x, y, z, false), plain::assign(x, y, z, false)));
    ASSERT_TRUE(equal_tables(assigned(x, y, z, true), plain::assign(x, y, z, true)));
  }
}

// ---------------------------------------------------------------- Create

TEST(DirCosCreate, KeepsTheIdentityWithoutADirection) {
  EXPECT_TRUE(equal_tables(created({0, 0, 0}, {0, 1, 0}), kUnit));
  EXPECT_TRUE(equal_tables(created({0, 0, 0}, {kNan, kInfinity, 3}), kUnit));
  EXPECT_TRUE(equal_tables(created({1e-11, 0, 0}, {0, 1, 0}), kUnit));
}

TEST(DirCosCreate, AlongTheGlobalAxesGivesTheIdentity) { EXPECT_EQ(created({2, 0, 0}, {0, 5, 0}), kUnit); }

TEST(DirCosCreate, KeepsTheIdentityWhenTheReferenceIsParallel) {
  EXPECT_TRUE(equal_tables(created({0, 0, 3}, {0, 0, 1}), kUnit));
  EXPECT_TRUE(equal_tables(created({0, 0, 3}, {0, 0, -1}), kUnit));
  EXPECT_TRUE(equal_tables(created({0, 0, 3}, {0, 0, 0}), kUnit));
}

// d = (1/√2, 1/√2, 0), d × (0, 0, 1) = (1/√2, -1/√2, 0) of length 1, and that times d is (0, 0, 1).
TEST(DirCosCreate, InclinedInTheGroundPlaneHasItsYAxisUp) {
  const Table m = created({1, 1, 0}, {0, 0, 1});
  const long double h = std::sqrt(0.5L);
  // 1/√2 by a root and a division, then another length: a few roundings.
  EXPECT_LE(distance(m, {{{h, 0, h}, {h, 0, -h}, {0, 1, 0}}}), 4 * static_cast<double>(kRoundoff));
}

TEST(DirCosCreate, LeavesTheHomogeneousRowAndColumnThoseOfTheIdentity) {
  const Table m = created({1, 2, 3}, {-1, 5, 2, 99});
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(equal_bits(m[3][i], 0.0));
    EXPECT_TRUE(equal_bits(m[i][3], 0.0));
  }
  EXPECT_EQ(m[3][3], 1.0);
}

// w is neither part of the length nor scaled; that of the reference is not read.
TEST(DirCosCreate, CarriesTheWOfTheDirectionIntoRow3) {
  const Table plain_w = created({0, 2, 0, 0}, {0, 0, 1, 0});
  Table expected = plain_w;
  expected[3][0] = 7.0;
  EXPECT_TRUE(equal_tables(created({0, 2, 0, 7}, {0, 0, 1, 9}), expected));
}

TEST(DirCosCreate, ForgetsTheWOfADirectionThatItDoesNotUse) {
  EXPECT_TRUE(equal_tables(created({0, 0, 0, 7}, {0, 1, 0}), kUnit));
  EXPECT_TRUE(equal_tables(created({0, 0, 3, 7}, {0, 0, 1}), kUnit));
}

// One component of 1e-10 makes a direction; three that are just smaller do not.
TEST(DirCosCreate, NeedsADirectionComponentOf1em10) {
  const Vector ref{1, 2, 4};
  const double less = below(1e-10);
  EXPECT_TRUE(equal_tables(created({less, -less, less}, ref), kUnit));
  EXPECT_NE(created({1e-10, 0, 0}, ref), kUnit);
  EXPECT_NE(created({0, -1e-10, 0}, ref), kUnit);
  EXPECT_NE(created({0, 0, 1e-10}, ref), kUnit);
}

// With d along y the product d × ref is (ref.z, 0, -ref.x), with d along x it is (0, -ref.z, ref.y).
TEST(DirCosCreate, NeedsAProductComponentOf1em10) {
  const double less = below(1e-10);
  EXPECT_TRUE(equal_tables(created({0, 1, 0}, {less, 5, less}), kUnit));
  EXPECT_TRUE(equal_tables(created({0, 0, 1}, {less, -less, 5}), kUnit));
  EXPECT_NE(created({0, 1, 0}, {0, 5, 1e-10}), kUnit) << "x of the product";
  EXPECT_NE(created({0, 1, 0}, {-1e-10, 5, 0}), kUnit) << "z of the product";
  EXPECT_NE(created({0, 0, 1}, {1e-10, 0, 5}), kUnit) << "y of the product";
}

// One vector may serve as both; it is parallel to itself.
TEST(DirCosCreate, OfOneVectorTwiceKeepsTheIdentity) {
  Vector v{0, 2, 0};
  Frame frame;
  frame.Create(v, v);
  EXPECT_TRUE(equal_tables(table_of(frame), kUnit));
  EXPECT_TRUE(equal_points(v, {0, 2, 0}));
}

// A NaN is never below a bound: it passes as a direction, has no length, and its unit vector is null.
TEST(DirCosCreate, KeepsTheIdentityForADirectionOfNaN) {
  EXPECT_TRUE(equal_tables(created({kNan, 1, 2}, {0, 0, 1}), kUnit));
}

TEST(DirCosCreate, SpellsOutItsProductsBitForBit) {
  Random random(22);
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 22, case " << i);
    const Vector dir = awkward_vector(random), ref = awkward_vector(random);
    ASSERT_TRUE(equal_tables(created(dir, ref), plain::create(dir, ref))) << print(dir) << print(ref);
  }
}

// Nearly parallel and tiny vectors, on both sides of 1e-10.
TEST(DirCosCreate, DecidesNearItsBoundsBitForBit) {
  Random random(23);
  int identities = 0;
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 23, case " << i);
    const double size = random.below(2) == 0 ? 1.0 : 1.5e-10;
    const Vector dir = random_direction(random) * size;
    const Vector off = random_direction(random) * random.uniform(0.0, 4e-10);
    const Vector ref = dir * (1.0 / size) + off;
    const Table expected = plain::create(dir, ref);
    identities += expected == kUnit ? 1 : 0;
    ASSERT_TRUE(equal_tables(created(dir, ref), expected)) << print(dir) << print(ref);
  }
  EXPECT_GT(identities, 400);
  EXPECT_LT(identities, 3600);
}

// The axes against the same construction in long double. With an angle between the vectors of at least 0.1 the product
// d × ref loses less than four bits: its error, a few roundings of |ref|, is divided by |ref|·sin(angle).
TEST(DirCosCreate, GivesRightHandedAxesWithTheReferenceInTheXyPlane) {
  Random random(24);
  const double bound = 100 * static_cast<double>(kRoundoff);
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 24, case " << i);
    const Vector dir = random_direction(random) * std::ldexp(1.0, static_cast<int>(random.below(40)) - 20);
    const Vector ref = random_direction(random);
    using Column = std::array<long double, 3>;
    const auto cross = [](Column const& a, Column const& b) {
      return Column{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const auto length = [](Column const& a) { return std::hypot(a[0], a[1], a[2]); };
    const auto unit = [&](Column const& a) { return Column{a[0] / length(a), a[1] / length(a), a[2] / length(a)}; };
    const Column x = unit({dir.x, dir.y, dir.z});
    const Column normal = cross(x, {ref.x, ref.y, ref.z});
    if (length(normal) < 0.1L * length({ref.x, ref.y, ref.z})) continue;
    if (std::fabs(dir.x) < 1e-9 && std::fabs(dir.y) < 1e-9 && std::fabs(dir.z) < 1e-9) continue;
    const Column z = unit(normal);
    const Column y = cross(z, x);
    const Table m = created(dir, ref);
    ASSERT_LE(distance(m, {{{x[0], y[0], z[0]}, {x[1], y[1], z[1]}, {x[2], y[2], z[2]}}}), bound);
    const Vector local = frame_of(m).GtoL(ref);
    ASSERT_GT(local.y, 0.0);
    ASSERT_LE(std::fabs(local.z), bound);
  }
}

// ---------------------------------------------------------------- Transpose

TEST(DirCosTranspose, SwapsTheWholeMatrix) {
  Frame frame = frame_of(kNumbered);
  frame.Transpose();
  EXPECT_TRUE(equal_tables(table_of(frame), {{{1, 5, 9, 13}, {2, 6, 10, 14}, {3, 7, 11, 15}, {4, 8, 12, 16}}}));
}

TEST(DirCosTranspose, TwiceRestoresTheMatrixExactly) {
  Random random(25);
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 25, case " << i);
    const Table m = awkward_table(random);
    Frame frame = frame_of(m);
    frame.Transpose();
    ASSERT_TRUE(equal_tables(table_of(frame), plain::transposed(m)));
    frame.Transpose();
    ASSERT_TRUE(equal_tables(table_of(frame), m));
  }
}

// ---------------------------------------------------------------- equality

TEST(DirCosEquality, ToleratesHalfOf1em10) {
  // A frame and one whose axes differ by 5e-11 in one component, and by 2e-10.
  Table close = kUnit, far = kUnit;
  close[1][0] = 5e-11;
  far[1][0] = 2e-10;
  EXPECT_TRUE(frame_of(kUnit) == frame_of(close));
  EXPECT_FALSE(frame_of(kUnit) == frame_of(far));
}

// 0 - 1e-10 is exact, so that both sides of the bound are neighbours. Every component of every axis counts.
TEST(DirCosEquality, EndsAt1em10InEveryComponent) {
  Table zero{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (std::size_t r = 0; r < 3; ++r) {
      SCOPED_TRACE(::testing::Message() << "entry (" << r << ", " << axis << ')');
      for (double sign : {1.0, -1.0}) {
        Table other = zero;
        other[r][axis] = sign * below(1e-10);
        EXPECT_TRUE(frame_of(zero) == frame_of(other));
        EXPECT_TRUE(frame_of(other) == frame_of(zero));
        other[r][axis] = sign * 1e-10;
        EXPECT_FALSE(frame_of(zero) == frame_of(other));
        EXPECT_FALSE(frame_of(other) == frame_of(zero));
      }
    }
  }
}

TEST(DirCosEquality, DoesNotLookAtRow3AndColumn3) {
  for (std::size_t i = 0; i < 4; ++i) {
    for (double value : {17.0, kNan}) {
      Table other = kUnit;
      other[3][i] = value;
      EXPECT_TRUE(frame_of(kUnit) == frame_of(other));
      other = kUnit;
      other[i][3] = value;
      EXPECT_TRUE(frame_of(kUnit) == frame_of(other));
    }
  }
}

// The difference of two NaN, or of two equal infinities, is NaN, which is not below the bound.
TEST(DirCosEquality, FailsForNaNAndInfinityEvenWithItself) {
  for (double value : {kNan, kInfinity, -kInfinity}) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      for (std::size_t r = 0; r < 3; ++r) {
        Table m = kUnit;
        m[r][axis] = value;
        EXPECT_FALSE(frame_of(m) == frame_of(m));
      }
    }
  }
}

TEST(DirCosEquality, HoldsForAWholeCopy) {
  Random random(26);
  for (int i = 0; i < 100; ++i) {
    const Frame frame = frame_of(random_rotation(random));
    EXPECT_TRUE(frame == Frame(frame));
  }
}

TEST(DirCosEquality, DecidesAsTheComparisonOfNineDifferences) {
  Random random(27);
  int equal = 0;
  for (int i = 0; i < 4000; ++i) {
    SCOPED_TRACE(::testing::Message() << "seed 27, case " << i);
    const Table a = awkward_table(random);
    Table b = a;
    for (auto& row : b) {
      for (double& entry : row) entry += random.uniform(-1.05e-10, 1.05e-10);
    }
    const bool expected = plain::equal(a, b);
    equal += expected ? 1 : 0;
    ASSERT_EQ(frame_of(a) == frame_of(b), expected) << print(a) << print(b);
  }
  EXPECT_GT(equal, 400);
  EXPECT_LT(equal, 3600);
}

}  // namespace
