// How often the interpolation functions allocate, which is a test program of its own because it replaces the global
// allocation functions.

#include <gtest/gtest.h>
#include <talvo/interpolation/interpolate1d.h>
#include <talvo/interpolation/interpolate2d.h>
#include <talvo/interpolation/interpolate3d.h>
#include <talvo/interpolation/interpolate3d_infinite.h>

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

// What operator new was asked for since the program began. The tests run on one thread.
struct Allocations {
  int count = 0;
  std::size_t bytes = 0;
};
Allocations so_far;

}  // namespace

// The array and sized forms of the standard library call these two.
void* operator new(std::size_t size) {
  ++so_far.count;
  so_far.bytes += size;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

namespace Interpolate1d = Talvo::Util::Interpolate1d;
namespace Interpolate2d = Talvo::Util::Interpolate2d;
namespace Interpolate3d = Talvo::Util::Interpolate3d;
namespace Interpolate3dInfinite = Talvo::Util::Interpolate3dInfinite;
using Talvo::Constant;
using Talvo::Full;

// What `call` asks operator new for; its result lives on until both counts are read.
template <class Call>
Allocations allocations_of(Call call) {
  const Allocations before = so_far;
  const auto result = call();
  const Allocations after = so_far;
  return {after.count - before.count, after.bytes - before.bytes};
}

// The one buffer of a vector of `nodes` numbers.
template <class Call>
void expect_one_buffer(int nodes, Call call) {
  const Allocations used = allocations_of(call);
  EXPECT_EQ(used.count, 1) << nodes << " nodes";
  EXPECT_EQ(used.bytes, static_cast<std::size_t>(nodes) * sizeof(double)) << nodes << " nodes";
}

TEST(Allocations, AreCountedInsideTheLibraryToo) {
  const Allocations before = so_far;
  const std::vector<double> values = Interpolate1d::H(3, 0.3, Full);
  ASSERT_EQ(values.size(), 3U);
  EXPECT_GT(so_far.count, before.count);
}

TEST(Allocations, ValuesAllocateTheirResultOnceAndNothingElse) {
  for (const auto order : {Constant, Full}) {
    for (const int n : {2, 3}) expect_one_buffer(n, [=] { return Interpolate1d::H(n, 0.3, order); });
    for (const int n : {3, 4, 6, 8}) expect_one_buffer(n, [=] { return Interpolate2d::H(n, {0.2, 0.3}, order); });
    for (const int n : {4, 5, 6, 8}) expect_one_buffer(n, [=] { return Interpolate3d::H(n, {0.1, 0.2, 0.3}, order); });
  }
  for (const int n : {6, 8}) {
    expect_one_buffer(n, [=] { return Interpolate3dInfinite::H(n, {0.1, 0.2, 0.3}); });
    expect_one_buffer(n, [=] { return Interpolate3dInfinite::M(n, {0.1, 0.2, 0.3}); });
  }
}

// Eigen takes a matrix's memory from malloc. What passes through operator new would be a temporary container.
TEST(Allocations, DerivativesMakeNoTemporaryContainers) {
  for (const auto order : {Constant, Full}) {
    for (const int n : {2, 3}) {
      EXPECT_EQ(allocations_of([=] { return Interpolate1d::HDerivatives(n, 0.3, order); }).count, 0);
    }
    for (const int n : {3, 4, 6, 8}) {
      EXPECT_EQ(allocations_of([=] { return Interpolate2d::HDerivatives(n, {0.2, 0.3}, order); }).count, 0);
    }
    for (const int n : {4, 5, 6, 8}) {
      EXPECT_EQ(allocations_of([=] { return Interpolate3d::HDerivatives(n, {0.1, 0.2, 0.3}, order); }).count, 0);
    }
  }
  for (const int n : {6, 8}) {
    EXPECT_EQ(allocations_of([=] { return Interpolate3dInfinite::HDerivatives(n, {0.1, 0.2, 0.3}); }).count, 0);
    EXPECT_EQ(allocations_of([=] { return Interpolate3dInfinite::MDerivatives(n, {0.1, 0.2, 0.3}); }).count, 0);
  }
}

// A refused count is not turned into a buffer of that size first: an exception and its message need less than a
// kilobyte, INT_MAX numbers 16 gigabytes.
TEST(Allocations, RefusedNodeCountsAllocateNoResult) {
  for (const int count : {INT_MAX, 1'000'000, 1000}) {
    const Allocations before = so_far;
    EXPECT_THROW(Interpolate1d::H(count, 0, Full), std::logic_error);
    EXPECT_THROW(Interpolate2d::H(count, {0, 0}, Full), std::logic_error);
    EXPECT_THROW(Interpolate3d::H(count, {0, 0, 0}, Full), std::logic_error);
    EXPECT_THROW(Interpolate3dInfinite::H(count, {0, 0, 0}), std::logic_error);
    EXPECT_THROW(Interpolate3dInfinite::M(count, {0, 0, 0}), std::logic_error);
    EXPECT_LT(so_far.bytes - before.bytes, 5 * 1024U) << "count " << count;
  }
}

}  // namespace
