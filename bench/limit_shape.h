#pragma once

/// @file
/// The practical limit: one straight-line kernel per element, written out by hand for its own size, with no class, no
/// choice of element and no checks. They take the same input and give the same bits as the library. Each is a function
/// that is called, not inlined into the loop that times it, as any program with more than one such place would have it.

#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace talvo::bench::limit {

using Two = double __attribute__((vector_size(16)));
using Node = Vec3<double>;

inline Two two(double v) { return Two{v, v}; }
inline Two xy(Node const& n) {
  Two v;
  std::memcpy(&v, &n.x, sizeof v);
  return v;
}
inline Two zw(Node const& n) {
  Two v;
  std::memcpy(&v, &n.z, sizeof v);
  return v;
}

struct J2 {
  double m[2][2];
};
struct J3 {
  double m[3][3];
};

// clang-format off
inline Node sum4(const Node* X, double a, double b, double c, double d) {
  const Two p = two(0) + two(a) * xy(X[0]) + two(b) * xy(X[1]) + two(c) * xy(X[2]) + two(d) * xy(X[3]);
  const Two q = two(0) + two(a) * zw(X[0]) + two(b) * zw(X[1]) + two(c) * zw(X[2]) + two(d) * zw(X[3]);
  return {p[0], p[1], q[0], 0};
}
inline Two sum4_xy(const Node* X, double a, double b, double c, double d) {
  return two(0) + two(a) * xy(X[0]) + two(b) * xy(X[1]) + two(c) * xy(X[2]) + two(d) * xy(X[3]);
}
inline Two sum8_xy(const Node* X, double a, double b, double c, double d, double e, double f, double g, double h) {
  return two(0) + two(a) * xy(X[0]) + two(b) * xy(X[1]) + two(c) * xy(X[2]) + two(d) * xy(X[3])
                + two(e) * xy(X[4]) + two(f) * xy(X[5]) + two(g) * xy(X[6]) + two(h) * xy(X[7]);
}
inline Two sum8_zw(const Node* X, double a, double b, double c, double d, double e, double f, double g, double h) {
  return two(0) + two(a) * zw(X[0]) + two(b) * zw(X[1]) + two(c) * zw(X[2]) + two(d) * zw(X[3])
                + two(e) * zw(X[4]) + two(f) * zw(X[5]) + two(g) * zw(X[6]) + two(h) * zw(X[7]);
}
// clang-format on

struct Quad4 {
  static Node point(const Node* X, double r, double s) {
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    return sum4(X, a * (1 - s), b * (1 - s), b * (1 + s), a * (1 + s));
  }
  static Two point_xy(const Node* X, double r, double s) {
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    return sum4_xy(X, a * (1 - s), b * (1 - s), b * (1 + s), a * (1 + s));
  }
  static J2 jacobian(const Node* X, double r, double s) {
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    const double c = (1 - s) * 0.25;
    const double d = (1 + s) * 0.25;
    const Two dr = sum4_xy(X, -c, c, d, -d);
    const Two ds = sum4_xy(X, -a, -b, b, a);
    return {{{dr[0], dr[1]}, {ds[0], ds[1]}}};
  }
  static Node tangent_r(const Node* X, double, double s) {
    const double c = (1 - s) * 0.25;
    const double d = (1 + s) * 0.25;
    return sum4(X, -c, c, d, -d);
  }
  static Node tangent_s(const Node* X, double r, double) {
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    return sum4(X, -a, -b, b, a);
  }
};

struct Quad8 {
  static Node point(const Node* X, double r, double s) {
    const double br = (1 - r * r) * 0.5;
    const double bs = (1 - s * s) * 0.5;
    const double m5 = br * (1 - s);
    const double m6 = bs * (1 + r);
    const double m7 = br * (1 + s);
    const double m8 = bs * (1 - r);
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    const double n1 = a * (1 - s) - (m8 + m5) * 0.5;
    const double n2 = b * (1 - s) - (m6 + m5) * 0.5;
    const double n3 = b * (1 + s) - (m7 + m6) * 0.5;
    const double n4 = a * (1 + s) - (m8 + m7) * 0.5;
    const Two p = sum8_xy(X, n1, n2, n3, n4, m5, m6, m7, m8);
    const Two q = sum8_zw(X, n1, n2, n3, n4, m5, m6, m7, m8);
    return {p[0], p[1], q[0], 0};
  }
  static Two point_xy(const Node* X, double r, double s) {
    const double br = (1 - r * r) * 0.5;
    const double bs = (1 - s * s) * 0.5;
    const double m5 = br * (1 - s);
    const double m6 = bs * (1 + r);
    const double m7 = br * (1 + s);
    const double m8 = bs * (1 - r);
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    return sum8_xy(X, a * (1 - s) - (m8 + m5) * 0.5, b * (1 - s) - (m6 + m5) * 0.5, b * (1 + s) - (m7 + m6) * 0.5,
                   a * (1 + s) - (m8 + m7) * 0.5, m5, m6, m7, m8);
  }
  static J2 jacobian(const Node* X, double r, double s) {
    const double br = (1 - r * r) * 0.5;
    const double bs = (1 - s * s) * 0.5;
    const double a = (1 - r) * 0.25;
    const double b = (1 + r) * 0.25;
    const double c = (1 - s) * 0.25;
    const double d = (1 + s) * 0.25;
    const double r5 = -r * (1 - s);
    const double r7 = -r * (1 + s);
    const double s6 = -s * (1 + r);
    const double s8 = -s * (1 - r);
    const Two dr = sum8_xy(X, -c - (r5 - bs) * 0.5, c - (r5 + bs) * 0.5, d - (r7 + bs) * 0.5, -d - (r7 - bs) * 0.5, r5,
                           bs, r7, -bs);
    const Two ds = sum8_xy(X, -a - (s8 - br) * 0.5, -b - (s6 - br) * 0.5, b - (s6 + br) * 0.5, a - (s8 + br) * 0.5, -br,
                           s6, br, s8);
    return {{{dr[0], dr[1]}, {ds[0], ds[1]}}};
  }
};

struct Hex8 {
  static Node point(const Node* X, double r, double s, double t) {
    const double a = (1 - r) * 0.125;
    const double b = (1 + r) * 0.125;
    const double aS = a * (1 - s);
    const double bS = b * (1 - s);
    const double bs = b * (1 + s);
    const double as = a * (1 + s);
    const double n1 = aS * (1 - t);
    const double n2 = bS * (1 - t);
    const double n3 = bs * (1 - t);
    const double n4 = as * (1 - t);
    const double n5 = aS * (1 + t);
    const double n6 = bS * (1 + t);
    const double n7 = bs * (1 + t);
    const double n8 = as * (1 + t);
    const Two p = sum8_xy(X, n1, n2, n3, n4, n5, n6, n7, n8);
    const Two q = sum8_zw(X, n1, n2, n3, n4, n5, n6, n7, n8);
    return {p[0], p[1], q[0], 0};
  }
  static Node row_t(const Node* X, double a, double b, double s) {
    const double n1 = a * (1 - s);
    const double n2 = b * (1 - s);
    const double n3 = b * (1 + s);
    const double n4 = a * (1 + s);
    const Two p = sum8_xy(X, -n1, -n2, -n3, -n4, n1, n2, n3, n4);
    const Two q = sum8_zw(X, -n1, -n2, -n3, -n4, n1, n2, n3, n4);
    return {p[0], p[1], q[0], 0};
  }
  static J3 jacobian(const Node* X, double r, double s, double t) {
    const double a = (1 - r) * 0.125;
    const double b = (1 + r) * 0.125;
    const double c = (1 - s) * 0.125;
    const double d = (1 + s) * 0.125;
    const double r1 = c * (1 - t);
    const double r3 = d * (1 - t);
    const double r5 = c * (1 + t);
    const double r7 = d * (1 + t);
    const double s1 = a * (1 - t);
    const double s2 = b * (1 - t);
    const double s5 = a * (1 + t);
    const double s6 = b * (1 + t);
    const Two drp = sum8_xy(X, -r1, r1, r3, -r3, -r5, r5, r7, -r7);
    const Two drq = sum8_zw(X, -r1, r1, r3, -r3, -r5, r5, r7, -r7);
    const Two dsp = sum8_xy(X, -s1, -s2, s2, s1, -s5, -s6, s6, s5);
    const Two dsq = sum8_zw(X, -s1, -s2, s2, s1, -s5, -s6, s6, s5);
    const Node dt = row_t(X, a, b, s);
    return {{{drp[0], drp[1], drq[0]}, {dsp[0], dsp[1], dsq[0]}, {dt.x, dt.y, dt.z}}};
  }
  static Node tangent_t(const Node* X, double r, double s, double) {
    return row_t(X, (1 - r) * 0.125, (1 + r) * 0.125, s);
  }
};

inline Node unit(Node const& v) {
  const double n = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return {v.x / n, v.y / n, v.z / n, 0};
}

inline Node cross(Node const& a, Node const& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, 0};
}

/// Newton for points that lie inside, without what only decides about points outside.
template <class Element>
bool find(const Node* X, Node const& point, Vec2<double>& rs, double tol) {
  double r = 0;
  double s = 0;
  Two d = Element::point_xy(X, r, s) - xy(point);
  for (int step = 0; !(std::fabs(d[0]) <= tol && std::fabs(d[1]) <= tol); ++step) {
    if (step == 100) return false;
    const J2 J = Element::jacobian(X, r, s);
    const double det = J.m[1][1] * J.m[0][0] - J.m[1][0] * J.m[0][1];
    if (det == 0) return false;
    const double inv = 1 / det;
    r = r - (J.m[1][1] * inv * d[0] - J.m[1][0] * inv * d[1]);
    s = s - (-J.m[0][1] * inv * d[0] + J.m[0][0] * inv * d[1]);
    d = Element::point_xy(X, r, s) - xy(point);
  }
  rs = {r, s};
  return std::fabs(r) <= 1 && std::fabs(s) <= 1;
}

inline bool find(const Node* X, Node const& point, Vec3<double>& rst) {
  double r = 0;
  double s = 0;
  double t = 0;
  Node d = Hex8::point(X, r, s, t) - point;
  for (int step = 0; !(std::fabs(d.x) <= 1e-06 && std::fabs(d.y) <= 1e-06 && std::fabs(d.z) <= 1e-06); ++step) {
    if (step == 100) return false;
    const J3 jacobian = Hex8::jacobian(X, r, s, t);
    const auto& J = jacobian.m;
    const double c00 = J[2][2] * J[1][1] - J[2][1] * J[1][2];
    const double c01 = J[2][2] * J[1][0] - J[2][0] * J[1][2];
    const double c02 = J[2][1] * J[1][0] - J[2][0] * J[1][1];
    const double det = c00 * J[0][0] - c01 * J[0][1] + c02 * J[0][2];
    if (det == 0) return false;
    r = r - (c00 / det * d.x + -c01 / det * d.y + c02 / det * d.z);
    s = s - ((J[2][1] * J[0][2] - J[2][2] * J[0][1]) / det * d.x + (J[2][2] * J[0][0] - J[2][0] * J[0][2]) / det * d.y +
             (J[2][0] * J[0][1] - J[2][1] * J[0][0]) / det * d.z);
    t = t - ((J[1][2] * J[0][1] - J[1][1] * J[0][2]) / det * d.x + (J[1][0] * J[0][2] - J[1][2] * J[0][0]) / det * d.y +
             (J[1][1] * J[0][0] - J[1][0] * J[0][1]) / det * d.z);
    d = Hex8::point(X, r, s, t) - point;
  }
  rst = {r, s, t, 0};
  return std::fabs(r) <= 1 && std::fabs(s) <= 1 && std::fabs(t) <= 1;
}

}  // namespace talvo::bench::limit
