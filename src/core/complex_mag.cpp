#include "core/square.h"

#include <talvo/core/complex_mag.h>
#include <cmath>

namespace {

double modulus(double re, double im) { return std::sqrt(talvo::square(re) + talvo::square(im)); }

}  // namespace

Vec2<double> ComplexMag(Vec2<double> const& re, Vec2<double> const& im) {
  return {modulus(re.x, im.x), modulus(re.y, im.y)};
}

Vec3<double> ComplexMag(Vec3<double> const& re, Vec3<double> const& im) {
  return {modulus(re.x, im.x), modulus(re.y, im.y), modulus(re.z, im.z), 0.0};
}

Tens2<double> ComplexMag(Tens2<double> const& re, Tens2<double> const& im) {
  const double shear = modulus(re.xy, im.xy);
  return {modulus(re.xx, im.xx), shear, shear, modulus(re.yy, im.yy)};
}

TensSym3<double> ComplexMag(TensSym3<double> const& re, TensSym3<double> const& im) {
  TensSym3<double> result;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column <= row; ++column) {
      result(row, column) = result(column, row) = modulus(re(row, column), im(row, column));
    }
  }
  result(3, 3) = 1.0;
  return result;
}
