// That the geometry functions on points allocate nothing: a test program of its own, because it replaces the global
// allocation functions.

#include <gtest/gtest.h>
#include <talvo/geometry/circle.h>
#include <talvo/geometry/lines.h>
#include <talvo/geometry/measure.h>
#include <talvo/geometry/orientation.h>
#include <talvo/geometry/plane.h>
#include <talvo/geometry/polygon.h>
#include <talvo/geometry/sphere.h>
#include <talvo/interpolation/interpolate1d.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

// The tests run on one thread.
int allocations = 0;

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

// The array and the non-throwing forms of the standard library call these.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocate_aligned(size, alignment); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }

namespace {

using Point2 = Vec2<double>;
using Point3 = Vec3<double>;

/// How often `call` allocates.
template <class Call>
int allocations_of(Call call) {
  const int before = allocations;
  call();
  return allocations - before;
}

TEST(Allocations, AreCountedInsideTheLibraryToo) {
  double value = 0.0;
  EXPECT_GT(allocations_of([&] { value = Talvo::Util::Interpolate1d::H(3, 0.3, Talvo::Full)[0]; }), 0);
  EXPECT_NE(value, 0.0);
}

TEST(Allocations, DirectionsAndPlanesMakeNone) {
  const Point3 v{1, 2, 3}, n{0, 1, 4}, p{5, 6, 7};
  Point3 hit{0, 0, 0};
  bool answer = false;
  double distance = 0.0;
  EXPECT_EQ(allocations_of([&] {
              answer = Talvo::IsHorizontal(v, 1) && Talvo::IsVertical(v, 1);
              answer = (Talvo::IsGlobalX(v, 1) && Talvo::IsGlobalY(v, 1)) || answer;
              distance = Talvo::DistFromPlane(v, n, p);
              answer = Talvo::ParallelToPlane(v, n) || answer;
              answer = Talvo::IntersectPlane(p, n, v, v, hit);
            }),
            0);
  EXPECT_TRUE(answer);
}

TEST(Allocations, LinesMakeNone) {
  const Point3 o{0, 0, 0}, x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, xy{1, 1, 0}, far{5, 1, 0}, farther{6, 1, 0};
  for (const bool segments : {true, false}) {
    EXPECT_EQ(allocations_of([&] {
                Talvo::ClosestPoints(o, x, y, z, segments);                 // not parallel
                Talvo::ClosestPoints(o, x, y, xy, segments);                // parallel, side by side
                Talvo::ClosestPoints(o, x, far, farther, segments);         // parallel, apart
                Talvo::ClosestPoints(o, x, y, {NAN, 0, 0}, segments);       // NaN
                Talvo::ClosestPoints(o, x, y, {INFINITY, 1, 3}, segments);  // infinity
              }),
              0);
  }
  EXPECT_EQ(allocations_of([&] {
              Talvo::DistanceBetweenLines(o, x, y, z);
              Talvo::DistanceBetweenLines(o, x, y, xy);
              Talvo::DistanceBetweenLines(Vec3<float>{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
            }),
            0);
}

TEST(Allocations, PolygonsOfAnySizeMakeNone) {
  for (const int count : {0, 1, 3, 4, 100, 10'000}) {
    std::vector<Point2> polygon;
    polygon.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) polygon.push_back({std::cos(6.28 * k / count), std::sin(6.28 * k / count)});
    for (const double tolerance : {1e-9, 0.0, -1.0, -1e-3, double{NAN}}) {
      EXPECT_EQ(allocations_of([&] {
                  for (const Point2 p : {Point2{0.1, 0.2}, {0.9, -0.1}, {2, 2}, {1, 0}}) {
                    Talvo::IsInside(p, count, polygon.data(), tolerance);
                  }
                }),
                0)
          << count << " vertices, tolerance " << tolerance;
    }
  }
  Point2 hit{0, 0};
  EXPECT_EQ(allocations_of([&] { Talvo::LineIntersect({0, 0}, {2, -1}, {2, 1}, {1, 0}, hit); }), 0);
  EXPECT_EQ(allocations_of([&] { Talvo::LineIntersect({0, 0}, {2, -1}, {2, 1}, {1, 0}); }), 0);
}

TEST(Allocations, CirclesAndSpheresMakeNone) {
  Point2 centre{0, 0};
  Vec2<float> float_centre{0, 0};
  EXPECT_EQ(allocations_of([&] {
              Talvo::CircleCentre(Point2{0, 0}, {2, 0}, {0, 2}, centre);
              Talvo::CircleCentre(Point2{0, 0}, {1, 0}, {2, 0}, centre);
              Talvo::CircleCentre(Vec2<float>{0, 0}, {2, 0}, {0, 2}, float_centre);
            }),
            0);
  // With 4, 2, 1 and 0 points listed.
  const Point3 a{1, 0, 0}, b{-1, 0, 0}, c{0, 1, 0}, d{0, 0, 1};
  Point3 middle{0, 0, 0};
  EXPECT_EQ(allocations_of([&] {
              Talvo::SphereCentre(a, b, c, d, middle);
              Talvo::SphereCentre(a, a, c, d, middle);
              Talvo::SphereCentre(a, a, a, d, middle);
              Talvo::SphereCentre(a, a, d, d, middle);
            }),
            0);
}

TEST(Allocations, MeasuresMakeNone) {
  double sum = 0.0;
  EXPECT_EQ(allocations_of([&] {
              sum += Talvo::TriangleArea(Point2{0, 0}, Point2{1, 0}, Point2{0, 1});
              sum += Talvo::TriangleArea(Point3{0, 0, 0}, Point3{1, 0, 0}, Point3{0, 1, 0});
              sum += Talvo::TetrahedronVolume(0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1);
              sum += Talvo::Determinant4x4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
            }),
            0);
  EXPECT_NE(sum, 0.0);
}

}  // namespace
