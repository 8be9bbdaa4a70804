#include "core/private_eigen.h"
#include "core/square.h"

#include <talvo/geometry/parabola.h>

namespace Talvo::Util {

bool Parabola(double* const x, double* const y, double* const coeff) {
  // Fixed sizes: the dynamic solve answers differently for repeated abscissae.
  const talvo_eigen::Vector3d ordinates(y[0], y[1], y[2]);
  talvo_eigen::Matrix3d A;
  for (int i = 0; i < 3; ++i) A.row(i) << 1.0, x[i], talvo::square(x[i]);
  const talvo_eigen::Vector3d solution = A.partialPivLu().solve(ordinates);
  for (int i = 0; i < 3; ++i) coeff[i] = solution[i];
  return (A * solution).isApprox(ordinates, 1e-12);
}

}  // namespace Talvo::Util
