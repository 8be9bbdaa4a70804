/// @file
/// The interpolation functions, which return a container: what they cost beside the one allocation that it takes.
/// "limit" is a hand-written straight-line kernel that fills one container; forms and method are those of compare.h.

#include "compare.h"

#include <talvo/talvo.h>
#include <cstddef>
#include <random>

namespace {

using namespace talvo::bench;
using Talvo::Full;
using talvo::core::FixedVector;
using Solid = Eigen::Matrix<double, 3, Eigen::Dynamic>;

Numbers numbers(std::vector<double> const& values) { return values; }
Numbers numbers(Solid const& m) { return {m.data(), m.data() + m.size()}; }

std::vector<Vec3<double>> points() {
  std::mt19937_64 engine(20260102);
  std::uniform_real_distribution<double> natural(-0.9, 0.9);
  std::vector<Vec3<double>> result(256);
  for (auto& point : result) point = {natural(engine), natural(engine), natural(engine)};
  return result;
}

/// Lists made by name and copied, as the definition of the result reads.
template <std::size_t N>
std::vector<double> copied(std::vector<double> const& values) {
  const FixedVector<double, N> fixed(values);
  std::vector<double> result;
  for (double value : fixed) result.push_back(value);
  return result;
}

std::vector<double> literal_quad4(Vec3<double> const& p) {
  const double r = p.x;
  const double s = p.y;
  return copied<4>(
      {(1 - r) * 0.25 * (1 - s), (1 + r) * 0.25 * (1 - s), (1 + r) * 0.25 * (1 + s), (1 - r) * 0.25 * (1 + s)});
}

std::vector<double> limit_quad4(Vec3<double> const& p) {
  const double a = (1 - p.x) * 0.25;
  const double b = (1 + p.x) * 0.25;
  return {a * (1 - p.y), b * (1 - p.y), b * (1 + p.y), a * (1 + p.y)};
}

std::vector<double> literal_hex8(Vec3<double> const& p) {
  const double r = p.x;
  const double s = p.y;
  const double t = p.z;
  return copied<8>({(1 - r) / 8 * (1 - s) * (1 - t), (1 + r) / 8 * (1 - s) * (1 - t), (1 + r) / 8 * (1 + s) * (1 - t),
                    (1 - r) / 8 * (1 + s) * (1 - t), (1 - r) / 8 * (1 - s) * (1 + t), (1 + r) / 8 * (1 - s) * (1 + t),
                    (1 + r) / 8 * (1 + s) * (1 + t), (1 - r) / 8 * (1 + s) * (1 + t)});
}

std::vector<double> limit_hex8(Vec3<double> const& p) {
  const double a = (1 - p.x) * 0.125;
  const double b = (1 + p.x) * 0.125;
  const double n1 = a * (1 - p.y);
  const double n2 = b * (1 - p.y);
  const double n3 = b * (1 + p.y);
  const double n4 = a * (1 + p.y);
  const double low = 1 - p.z;
  const double high = 1 + p.z;
  return {n1 * low, n2 * low, n3 * low, n4 * low, n1 * high, n2 * high, n3 * high, n4 * high};
}

constexpr double corner[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                 {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};

Solid literal_hex8_derivatives(Vec3<double> const& p) {
  Solid result(3, 8);
  for (int k = 0; k < 8; ++k) {
    const double fr = 1 + corner[k][0] * p.x;
    const double fs = 1 + corner[k][1] * p.y;
    const double ft = 1 + corner[k][2] * p.z;
    result(0, k) = corner[k][0] * (fs / 8 * ft);
    result(1, k) = corner[k][1] * (fr / 8 * ft);
    result(2, k) = corner[k][2] * (fr / 8 * fs);
  }
  return result;
}

Solid limit_hex8_derivatives(Vec3<double> const& p) {
  const double a = (1 - p.x) * 0.125;
  const double b = (1 + p.x) * 0.125;
  const double c = (1 - p.y) * 0.125;
  const double d = (1 + p.y) * 0.125;
  const double S = 1 - p.y;
  const double s = 1 + p.y;
  const double T = 1 - p.z;
  const double t = 1 + p.z;
  Solid m(3, 8);
  // clang-format off
  m << -(c * T), c * T, d * T, -(d * T), -(c * t), c * t, d * t, -(d * t),
       -(a * T), -(b * T), b * T, a * T, -(a * t), -(b * t), b * t, a * t,
       -(a * S), -(b * S), -(b * s), -(a * s), a * S, b * S, b * s, a * s;
  // clang-format on
  return m;
}

}  // namespace

int main(int argc, char** argv) {
  const auto to_numbers = [](auto const& result) { return numbers(result); };
  namespace plane = Talvo::Util::Interpolate2d;
  namespace solid = Talvo::Util::Interpolate3d;
  compare(
      "H/quad4", points(), to_numbers, literal_quad4,
      [](Vec3<double> const& p) {
        return plane::H(4, {p.x, p.y}, Full);
      },
      limit_quad4);
  compare(
      "H/hex8", points(), to_numbers, literal_hex8, [](Vec3<double> const& p) { return solid::H(8, p, Full); },
      limit_hex8);
  compare(
      "HDerivatives/hex8", points(), to_numbers, literal_hex8_derivatives,
      [](Vec3<double> const& p) { return solid::HDerivatives(8, p, Full); }, limit_hex8_derivatives);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
