#pragma once

/// @file
/// Exact arithmetic on points: fractions without a limit of size. Every finite double is one.

#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>

#include <boost/multiprecision/cpp_int.hpp>

namespace talvo::test {

using Exact = boost::multiprecision::number<boost::multiprecision::cpp_rational_backend, boost::multiprecision::et_off>;

/// The unit roundoff: one rounding to nearest changes a normal number by at most this much of itself. Error bounds
/// count roundings; the few thousandths they add to the count cover the products of two errors.
inline constexpr double kRoundoff = 0x1p-53;

inline Vec2<Exact> exact(Vec2<double> const& p) { return {Exact(p.x), Exact(p.y)}; }
inline Vec3<Exact> exact(Vec3<double> const& p) { return {Exact(p.x), Exact(p.y), Exact(p.z), Exact(0)}; }

inline Exact dot(Vec2<Exact> const& a, Vec2<Exact> const& b) { return a.x * b.x + a.y * b.y; }
inline Exact dot(Vec3<Exact> const& a, Vec3<Exact> const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

/// The z component of the cross product: positive when b is to the left of a.
inline Exact cross(Vec2<Exact> const& a, Vec2<Exact> const& b) { return a.x * b.y - a.y * b.x; }
inline Vec3<Exact> cross(Vec3<Exact> const& a, Vec3<Exact> const& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, Exact(0)};
}

inline Exact magnitude(Exact const& x) { return x < 0 ? Exact(-x) : x; }

/// |actual - expected|, rounded only at the end.
inline double error_of(double actual, Exact const& expected) {
  return magnitude(Exact(actual) - expected).convert_to<double>();
}

}  // namespace talvo::test
