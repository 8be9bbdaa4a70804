#include <gtest/gtest.h>
#include <talvo/shape/shape.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

#include "shape/accumulate_derivatives.h"
#include "support/elements.h"
#include "support/random.h"

namespace {

std::atomic<long> allocations = 0;

void* allocate(std::size_t size) {
  ++allocations;
  if (void* block = std::malloc(size > 0 ? size : 1)) return block;
  throw std::bad_alloc();
}

void* allocate_aligned(std::size_t size, std::align_val_t alignment) {
  ++allocations;
  const auto bytes = static_cast<std::size_t>(alignment);
  if (void* block = std::aligned_alloc(bytes, (size / bytes + 1) * bytes)) return block;
  throw std::bad_alloc();
}

}  // namespace

// Every other form of new and delete ends in one of these.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocate_aligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocate_aligned(size, alignment); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }

// Eigen takes its memory from malloc directly. glibc lets a program put its own malloc in front and keeps the real one
// reachable under a second name; the sanitizers do the same and would be in the way.
#if defined(__has_feature)
#define TALVO_TEST_HAS_FEATURE(name) __has_feature(name)
#else
#define TALVO_TEST_HAS_FEATURE(name) 0
#endif
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) &&   \
    !TALVO_TEST_HAS_FEATURE(address_sanitizer) && !TALVO_TEST_HAS_FEATURE(memory_sanitizer) && \
    !TALVO_TEST_HAS_FEATURE(thread_sanitizer)
#define TALVO_TEST_COUNTS_MALLOC 1

extern "C" {
void* glibc_malloc(std::size_t size) __asm__("__libc_malloc");
void* glibc_calloc(std::size_t count, std::size_t size) __asm__("__libc_calloc");
void* glibc_realloc(void* block, std::size_t size) __asm__("__libc_realloc");
void* glibc_memalign(std::size_t alignment, std::size_t size) __asm__("__libc_memalign");

void* malloc(std::size_t size) noexcept {
  ++allocations;
  return glibc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
  ++allocations;
  return glibc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
  ++allocations;
  return glibc_realloc(block, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  ++allocations;
  return glibc_memalign(alignment, size);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  ++allocations;
  *block = glibc_memalign(alignment, size);
  return *block == nullptr ? 12 : 0;  // ENOMEM
}
}
#else
#define TALVO_TEST_COUNTS_MALLOC 0
#endif

namespace {

using namespace talvo::test;
using Talvo::Util::CShape;

template <class Call>
long allocations_of(Call const& call) {
  const long before = allocations;
  call();
  return allocations - before;
}

// ---- The counter itself

TEST(AllocationCounterTest, SeesNewOfTheProgramAndOfTheLibrary) {
  EXPECT_GE(allocations_of([] { delete new std::vector<int>(100); }), 1);
  const CShape shape(Talvo::Volume, Nodes(8, {1, 2, 3}));
  EXPECT_GE(allocations_of([&] { delete new CShape(shape); }), 2);
  CShape target(Talvo::Volume, {});
  EXPECT_GE(allocations_of([&] { target.SetCoor(Nodes(100, {1, 2, 3})); }), 2);
}

#if TALVO_TEST_COUNTS_MALLOC
TEST(AllocationCounterTest, SeesTheMallocOfADynamicEigenMatrix) {
  Eigen::Index size = 40;
  double* data = nullptr;
  EXPECT_GE(allocations_of([&] {
              Eigen::MatrixXd matrix(size, size);
              data = matrix.data();
            }),
            1);
  EXPECT_NE(data, nullptr);
}
#endif

// ---- The operations of a shape

// Keeps the compiler from dropping a call whose result nobody uses.
volatile double sink = 0;
void use(double value) { sink = value; }
void use(Vec2<double> const& v) { use(v.x + v.y); }
void use(Vec3<double> const& v) { use(v.x + v.y + v.z); }
template <int N>
void use(Eigen::Matrix<double, N, N> const& m) {
  use(m(0, 0));
}

// One operation with the name under which it fails.
template <class Call>
void expect_none(const char* name, Call const& call) {
  EXPECT_EQ(allocations_of(call), 0) << name;
}

TEST(StaticAllocationTest, TablesAndClampTakeNone) {
  expect_none("R", [] { use(CShape::R(1)); });
  expect_none("RS", [] {
    for (int nodes : {3, 4, 6, 8}) {
      for (int i = -1; i <= nodes; ++i) use(CShape::RS(nodes, i));
    }
  });
  expect_none("RST", [] {
    for (int nodes : {4, 5, 6, 8}) {
      for (int i = -1; i <= nodes; ++i) use(CShape::RST(nodes, i));
      for (int face = -13; face <= -10; ++face) use(CShape::RST(nodes, face));
    }
  });
  expect_none("ClampRange", [] {
    use(CShape::ClampRange(Vec2<double>{3, 6}));
    use(CShape::ClampRange(Vec3<double>{3, 6, 12}));
  });
}

class AllocationTest : public ::testing::TestWithParam<Topology> {
 protected:
  AllocationTest() : shape_(GetParam().type, {}) {
    Random random(5501);
    shape_.SetCoor(distorted_element(random, GetParam(), 0.1));
  }

  int nodes() const { return GetParam().nodes(); }
  bool is(Talvo::SpaceType type) const { return GetParam().type == type; }

  CShape shape_;
};
INSTANTIATE_TEST_SUITE_P(Every, AllocationTest, ::testing::ValuesIn(topologies()), name_of_topology);

TEST_P(AllocationTest, AccessTakesNone) {
  expect_none("NumTopo", [&] { use(shape_.NumTopo()); });
  expect_none("Coor", [&] { use(shape_.Coor(1) + shape_.Coor()[0]); });
}

TEST_P(AllocationTest, MappingTakesNone) {
  if (is(Talvo::Line)) expect_none("CoorAtR", [&] { use(shape_.CoorAtR(0.25)); });
  if (is(Talvo::Area)) expect_none("CoorAtRS", [&] { use(shape_.CoorAtRS(0.25, 0.5)); });
  if (is(Talvo::Volume)) expect_none("CoorAtRST", [&] { use(shape_.CoorAtRST(0.25, 0.5, -0.5)); });
}

TEST_P(AllocationTest, JacobiansTakeNone) {
  if (is(Talvo::Line)) expect_none("Jacobian", [&] { use<1>(shape_.Jacobian(0.25)); });
  if (is(Talvo::Area)) expect_none("Jacobian", [&] { use<2>(shape_.Jacobian(Vec2<double>{0.25, 0.5})); });
  if (is(Talvo::Volume)) expect_none("Jacobian", [&] { use<3>(shape_.Jacobian(Vec3<double>{0.25, 0.5, -0.5})); });
  if (is(Talvo::Volume) && (nodes() == 6 || nodes() == 8)) {
    expect_none("JacobianInfinity", [&] { use<3>(shape_.JacobianInfinity(Vec3<double>{0.25, 0.5, -0.5})); });
  }
}

TEST_P(AllocationTest, AccumulationTakesNone) {
  const Eigen::Matrix<double, 1, Eigen::Dynamic, Eigen::RowMajor> d = Eigen::MatrixXd::Ones(1, nodes());
  expect_none("AccumulateDerivatives", [&] { use(accumulate_derivatives(shape_, d)); });
}

TEST_P(AllocationTest, TangentsTakeNone) {
  if (is(Talvo::Line)) return;
  for (bool normalise : {false, true}) {
    if (is(Talvo::Area)) {
      const Vec2<double> rs{0.25, 0.5};
      expect_none("VectorR", [&] { use(shape_.VectorR(rs, normalise)); });
      expect_none("VectorS", [&] { use(shape_.VectorS(rs, normalise)); });
      expect_none("VectorT", [&] { use(shape_.VectorT(rs, normalise)); });
    } else {
      const Vec3<double> rst{0.25, 0.5, -0.5};
      expect_none("VectorR", [&] { use(shape_.VectorR(rst, normalise)); });
      expect_none("VectorS", [&] { use(shape_.VectorS(rst, normalise)); });
      expect_none("VectorT", [&] { use(shape_.VectorT(rst, normalise)); });
    }
  }
}

TEST_P(AllocationTest, InverseMappingTakesNone) {
  if (is(Talvo::Area)) {
    const Vec3<double> inside = shape_.CoorAtRS(0.25, 0.5);
    Vec2<double> rs;
    bool found = false;
    expect_none("FindRS of a point inside", [&] { found = shape_.FindRS(inside, rs, 1e-9); });
    EXPECT_TRUE(found);
    expect_none("FindRS of a point outside", [&] { found = shape_.FindRS({1e3, 1e3, 0}, rs, 1e-9); });
    EXPECT_FALSE(found);
    expect_none("FindRS without end", [&] { found = shape_.FindRS({1, 1, 0}, rs, -1); });
    EXPECT_FALSE(found);
  }
  if (is(Talvo::Volume)) {
    const Vec3<double> inside = shape_.CoorAtRST(0.25, 0.5, -0.5);
    Vec3<double> rst;
    bool found = false;
    if (nodes() == 8) {
      expect_none("FindRST of a point inside", [&] { found = shape_.FindRST(inside, rst, 0); });
      EXPECT_TRUE(found);
      expect_none("FindRST of a point outside", [&] { found = shape_.FindRST({1e3, 1e3, 0}, rst, 0); });
      EXPECT_FALSE(found);
    }
    // The other solids throw once their search has converged, which takes memory for the text.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expect_none("FindRST without end", [&] { found = shape_.FindRST({nan, 0, 0}, rst, 0); });
    EXPECT_FALSE(found);
  }
}

}  // namespace
