#include "core/square.h"

#include <talvo/geometry/measure.h>
#include <cmath>

namespace Talvo {

double TriangleArea(Vec2<double> const& a, Vec2<double> const& b, Vec2<double> const& c) {
  return 0.5 * std::fabs((c.y - a.y) * b.x + (b.y - c.y) * a.x + (a.y - b.y) * c.x);
}

double TriangleArea(Vec3<double> const& a, Vec3<double> const& b, Vec3<double> const& c) {
  // Components of the cross product of two edges, multiplied out.
  const double e1 = b.x * a.z - c.x * a.z - a.x * b.z + c.x * b.z + a.x * c.z - b.x * c.z;
  const double e2 = b.x * a.y - c.x * a.y - a.x * b.y + c.x * b.y + a.x * c.y - b.x * c.y;
  const double e3 = a.z * b.y - a.z * c.y - b.z * a.y + b.z * c.y + a.y * c.z - b.y * c.z;
  return 0.5 * std::sqrt(talvo::square(e1) + talvo::square(e2) + talvo::square(e3));
}

double TetrahedronVolume(double x1, double y1, double z1, double x2, double y2, double z2, double x3, double y3,
                         double z3, double x4, double y4, double z4) {
  return Determinant4x4(x1, y1, z1, 1.0, x2, y2, z2, 1.0, x3, y3, z3, 1.0, x4, y4, z4, 1.0) / 6.0;
}

// clang-format off
double Determinant4x4(double a11, double a12, double a13, double a14,
                      double a21, double a22, double a23, double a24,
                      double a31, double a32, double a33, double a34,
                      double a41, double a42, double a43, double a44) {
  // Leibniz: the permutations of the columns in lexicographic order, factors by row.
  return a11 * a22 * a33 * a44 - a11 * a22 * a34 * a43 - a11 * a23 * a32 * a44
       + a11 * a23 * a34 * a42 + a11 * a24 * a32 * a43 - a11 * a24 * a33 * a42
       - a12 * a21 * a33 * a44 + a12 * a21 * a34 * a43 + a12 * a23 * a31 * a44
       - a12 * a23 * a34 * a41 - a12 * a24 * a31 * a43 + a12 * a24 * a33 * a41
       + a13 * a21 * a32 * a44 - a13 * a21 * a34 * a42 - a13 * a22 * a31 * a44
       + a13 * a22 * a34 * a41 + a13 * a24 * a31 * a42 - a13 * a24 * a32 * a41
       - a14 * a21 * a32 * a43 + a14 * a21 * a33 * a42 + a14 * a22 * a31 * a43
       - a14 * a22 * a33 * a41 - a14 * a23 * a31 * a42 + a14 * a23 * a32 * a41;
}
// clang-format on

}  // namespace Talvo
