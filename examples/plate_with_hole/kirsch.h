#pragma once

/// @file
/// The closed solution of the plate with a circular hole.
///
/// An infinite plate in plane stress under the tension S along x, with a hole of radius a about the origin:
///
///     sigma_r   = S/2 (1 - a²/r²) + S/2 (1 - 4 a²/r² + 3 a⁴/r⁴) cos 2θ
///     sigma_θ   = S/2 (1 + a²/r²) - S/2 (1 + 3 a⁴/r⁴) cos 2θ
///     tau_rθ    = -S/2 (1 + 2 a²/r² - 3 a⁴/r⁴) sin 2θ
///
/// It holds outside the hole, r >= a. Sources: G. Kirsch, "Die Theorie der Elastizität und die Bedürfnisse der
/// Festigkeitslehre", Zeitschrift des Vereines deutscher Ingenieure 42 (1898), 797-807; S. P. Timoshenko and J. N.
/// Goodier, "Theory of Elasticity", 3rd edition, McGraw-Hill 1970, section 35.

#include <talvo/core/tens2.h>
#include <talvo/core/vec3.h>

namespace plate {

inline constexpr double hole_radius = 1;          ///< a, the unit of all lengths
inline constexpr double tension = 1;              ///< S, the unit of all stresses
inline constexpr double exact_concentration = 3;  ///< sigma_θ / S at the hole, at θ = ±90°

/// The stress at radius r and angle theta (radians from the x axis): xx is radial, yy tangential.
Tens2<double> kirsch_polar(double r, double theta);

/// The same state in x and y.
Tens2<double> kirsch(Vec3<double> const& point);

}  // namespace plate
