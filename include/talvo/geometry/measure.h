#pragma once

/// @file
/// Areas and volumes.

#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <talvo/export.h>

namespace Talvo {

/// @name Area of a triangle, never negative; 0 when the points are on one line, up to rounding
/// The products are of the coordinates themselves, not of edges: a triangle far from the origin loses digits. Move it
/// towards the origin first.
/// @{
TALVO_EXPORT double TriangleArea(Vec2<double> const& a, Vec2<double> const& b, Vec2<double> const& c);
TALVO_EXPORT double TriangleArea(Vec3<double> const& a, Vec3<double> const& b, Vec3<double> const& c);
/// @}

/// Signed volume of a tetrahedron: the determinant of the rows (x, y, z, 1), divided by 6.
///
/// @warning The sign is the opposite of the usual one: (0,0,0), (1,0,0), (0,1,0), (0,0,1) gives -1/6.
TALVO_EXPORT double TetrahedronVolume(double x1, double y1, double z1, double x2, double y2, double z2, double x3,
                                      double y3, double z3, double x4, double y4, double z4);

/// Determinant of a 4x4 matrix given row by row, by its 24 products, without pivoting.
TALVO_EXPORT double Determinant4x4(double a11, double a12, double a13, double a14, double a21, double a22, double a23,
                                   double a24, double a31, double a32, double a33, double a34, double a41, double a42,
                                   double a43, double a44);

}  // namespace Talvo
