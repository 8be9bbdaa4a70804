#pragma once

/// @file
/// The whole public interface.

#include <talvo/core/complex_mag.h>
#include <talvo/core/direction.h>
#include <talvo/core/error.h>
#include <talvo/core/fixed_matrix.h>
#include <talvo/core/fixed_vector.h>
#include <talvo/core/tens2.h>
#include <talvo/core/tens_sym3.h>
#include <talvo/core/vec2.h>
#include <talvo/core/vec3.h>
#include <talvo/fitting/filter.h>
#include <talvo/fitting/lagrange.h>
#include <talvo/fitting/least_squares.h>
#include <talvo/geometry/angle.h>
#include <talvo/geometry/circle.h>
#include <talvo/geometry/cubic.h>
#include <talvo/geometry/lines.h>
#include <talvo/geometry/measure.h>
#include <talvo/geometry/orientation.h>
#include <talvo/geometry/parabola.h>
#include <talvo/geometry/plane.h>
#include <talvo/geometry/polygon.h>
#include <talvo/geometry/rounding.h>
#include <talvo/geometry/scale.h>
#include <talvo/geometry/sphere.h>
#include <talvo/interpolation/gauss.h>
#include <talvo/interpolation/interpolate1d.h>
#include <talvo/interpolation/interpolate2d.h>
#include <talvo/interpolation/interpolate3d.h>
#include <talvo/interpolation/interpolate3d_infinite.h>
#include <talvo/shape/shape.h>
#include <talvo/transform/dir_cos.h>
