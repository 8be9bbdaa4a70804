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
#include <talvo/interpolation/gauss.h>
#include <talvo/interpolation/interpolate1d.h>
#include <talvo/interpolation/interpolate2d.h>
#include <talvo/interpolation/interpolate3d.h>
#include <talvo/interpolation/interpolate3d_infinite.h>
#include <talvo/shape/shape.h>
