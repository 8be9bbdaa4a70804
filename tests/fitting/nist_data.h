#pragma once
// Source: NIST/ITL Statistical Reference Datasets, linear regression,
// https://www.itl.nist.gov/div898/strd/lls/lls.shtml

/// @file
/// The polynomial regressions with certified values: Norris, Pontius, Wampler1 to 5 and Filip. Points are (x, y).

#include <talvo/core/vec2.h>

#include <cmath>
#include <ostream>
#include <vector>

namespace talvo::test::nist {

using Points = std::vector<Vec2<double>>;

// clang-format off

/// Calibration of ozone monitors (Norris, J., NIST).
inline const Points kNorris{
    {0.2, 0.1}, {337.4, 338.8}, {118.2, 118.1}, {884.6, 888}, {10.1, 9.2}, {226.5, 228.1}, {666.3, 668.5},
    {996.3, 998.5}, {448.6, 449.1}, {777, 778.9}, {558.2, 559.2}, {0.4, 0.3}, {0.6, 0.1}, {775.5, 778.1},
    {666.9, 668.8}, {338, 339.3}, {447.5, 448.9}, {11.6, 10.8}, {556, 557.7}, {228.1, 228.3}, {995.8, 998},
    {887.6, 888.8}, {120.2, 119.6}, {0.3, 0.3}, {0.3, 0.6}, {556.8, 557.6}, {339.1, 339.3}, {887.2, 888},
    {999, 998.5}, {779, 778.9}, {11.1, 10.2}, {118.3, 117.6}, {229.2, 228.9}, {669.1, 668.4}, {448.9, 449.2},
    {0.5, 0.2},
};

/// Load cell calibration (Pontius, P., NIST).
inline const Points kPontius{
    {150000, 0.11019}, {300000, 0.21956}, {450000, 0.32949}, {600000, 0.43899}, {750000, 0.54803}, {900000, 0.65694},
    {1050000, 0.76562}, {1200000, 0.87487}, {1350000, 0.98292}, {1500000, 1.09146}, {1650000, 1.20001},
    {1800000, 1.30822}, {1950000, 1.41599}, {2100000, 1.52399}, {2250000, 1.63194}, {2400000, 1.73947},
    {2550000, 1.84646}, {2700000, 1.95392}, {2850000, 2.06128}, {3000000, 2.16844}, {150000, 0.11052},
    {300000, 0.22018}, {450000, 0.32939}, {600000, 0.43886}, {750000, 0.54798}, {900000, 0.65739}, {1050000, 0.76596},
    {1200000, 0.87474}, {1350000, 0.983}, {1500000, 1.0915}, {1650000, 1.20004}, {1800000, 1.30818},
    {1950000, 1.41613}, {2100000, 1.52408}, {2250000, 1.63159}, {2400000, 1.73965}, {2550000, 1.84696},
    {2700000, 1.95445}, {2850000, 2.06177}, {3000000, 2.16829},
};

/// Filippelli, A., NIST.
inline const Points kFilip{
    {-6.860120914, 0.8116}, {-4.324130045, 0.9072}, {-4.358625055, 0.9052}, {-4.358426747, 0.9039},
    {-6.955852379, 0.8053}, {-6.661145254, 0.8377}, {-6.355462942, 0.8667}, {-6.118102026, 0.8809},
    {-7.115148017, 0.7975}, {-6.815308569, 0.8162}, {-6.519993057, 0.8515}, {-6.204119983, 0.8766},
    {-5.853871964, 0.8885}, {-6.109523091, 0.8859}, {-5.79832982, 0.8959}, {-5.482672118, 0.8913},
    {-5.171791386, 0.8959}, {-4.851705903, 0.8971}, {-4.517126416, 0.9021}, {-4.143573228, 0.909},
    {-3.709075441, 0.9139}, {-3.499489089, 0.9199}, {-6.300769497, 0.8692}, {-5.953504836, 0.8872},
    {-5.642065153, 0.89}, {-5.031376979, 0.891}, {-4.680685696, 0.8977}, {-4.329846955, 0.9035},
    {-3.928486195, 0.9078}, {-8.56735134, 0.7675}, {-8.363211311, 0.7705}, {-8.107682739, 0.7713},
    {-7.823908741, 0.7736}, {-7.522878745, 0.7775}, {-7.218819279, 0.7841}, {-6.920818754, 0.7971},
    {-6.628932138, 0.8329}, {-6.323946875, 0.8641}, {-5.991399828, 0.8804}, {-8.781464495, 0.7668},
    {-8.663140179, 0.7633}, {-8.473531488, 0.7678}, {-8.247337057, 0.7697}, {-7.971428747, 0.77},
    {-7.676129393, 0.7749}, {-7.352812702, 0.7796}, {-7.072065318, 0.7897}, {-6.774174009, 0.8131},
    {-6.478861916, 0.8498}, {-6.159517513, 0.8741}, {-6.835647144, 0.8061}, {-6.53165267, 0.846},
    {-6.224098421, 0.8751}, {-5.910094889, 0.8856}, {-5.598599459, 0.8919}, {-5.290645224, 0.8934},
    {-4.974284616, 0.894}, {-4.64454848, 0.8957}, {-4.290560426, 0.9047}, {-3.885055584, 0.9129},
    {-3.408378962, 0.9209}, {-3.13200249, 0.9219}, {-8.726767166, 0.7739}, {-8.66695597, 0.7681},
    {-8.511026475, 0.7665}, {-8.165388579, 0.7703}, {-7.886056648, 0.7702}, {-7.588043762, 0.7761},
    {-7.283412422, 0.7809}, {-6.995678626, 0.7961}, {-6.691862621, 0.8253}, {-6.392544977, 0.8602},
    {-6.067374056, 0.8809}, {-6.684029655, 0.8301}, {-6.378719832, 0.8664}, {-6.065855188, 0.8834},
    {-5.752272167, 0.8898}, {-5.132414673, 0.8964}, {-4.811352704, 0.8963}, {-4.098269308, 0.9074},
    {-3.66174277, 0.9119}, {-3.2644011, 0.9228},
};

// clang-format on

/// Wampler, R. H. (1970), A Report of the Accuracy of Some Widely-Used Least Squares Computer Programs, Journal of the
/// American Statistical Association 65, 549-565: y = 1 + x + ... + x^5 for x = 0, 1, ..., 20, plus a deviation that no
/// polynomial of degree 5 can take up, 1 (Wampler3), 100 (Wampler4) or 10000 times (Wampler5) as large.
inline Points wampler(double deviation_factor) {
  constexpr int kDeviations[] = {759, -2048, 2048, -2048, 2523, -2048, 2048, -2048, 1838, -2048, 2048};
  Points points;
  for (int x = 0; x <= 20; ++x) {
    double y = 1.0;
    for (int k = 0; k < 5; ++k) y = y * x + 1.0;
    points.push_back({static_cast<double>(x), y + deviation_factor * kDeviations[x <= 10 ? x : 20 - x]});
  }
  return points;
}

/// y = 1 + x/10 + x²/100 + ... + x^5/100000, which has five decimal places.
inline Points wampler2() {
  Points points;
  for (int x = 0; x <= 20; ++x) {
    double y = 1.0;
    for (int k = 1; k <= 5; ++k) y = y * x + std::pow(10.0, k);
    points.push_back({static_cast<double>(x), y / 1e5});
  }
  return points;
}

/// One row of the certified values; the norm is the residual standard deviation times the square root of the degrees of
/// freedom.
struct Certified {
  const char* name;
  Points points;
  std::vector<double> coefficients;
  double residual_standard_deviation;
  double r_squared;

  int order() const { return static_cast<int>(coefficients.size()) - 1; }
  double norm() const {
    return residual_standard_deviation * std::sqrt(static_cast<double>(points.size() - coefficients.size()));
  }
  friend void PrintTo(Certified const& set, std::ostream* out) { *out << set.name; }
};

// clang-format off
inline const Certified kNorrisSet{"Norris", kNorris, {-0.262323073774029, 1.00211681802045},
                                  0.884796396144373, 0.999993745883712};
inline const Certified kPontiusSet{"Pontius", kPontius,
                                   {0.673565789473684E-03, 0.732059160401003E-06, -0.316081871345029E-14},
                                   0.205177424076185E-03, 0.999999900178537};
inline const Certified kFilipSet{"Filip", kFilip,
                                 {-1467.48961422980, -2772.17959193342, -2316.37108160893, -1127.97394098372,
                                  -354.478233703349, -75.1242017393757, -10.8753180355343, -1.06221498588947,
                                  -0.670191154593408E-01, -0.246781078275479E-02, -0.402962525080404E-04},
                                 0.334801051324544E-02, 0.996727416185620};
inline const Certified kWampler1Set{"Wampler1", wampler(0), {1, 1, 1, 1, 1, 1}, 0.0, 1.0};
inline const Certified kWampler2Set{"Wampler2", wampler2(), {1, 0.1, 0.01, 0.001, 0.0001, 0.00001}, 0.0, 1.0};
inline const Certified kWampler3Set{"Wampler3", wampler(1), {1, 1, 1, 1, 1, 1}, 2360.14502379268, 0.999995559025820};
inline const Certified kWampler4Set{"Wampler4", wampler(100), {1, 1, 1, 1, 1, 1}, 236014.502379268, 0.957478440825662};
inline const Certified kWampler5Set{"Wampler5", wampler(10000), {1, 1, 1, 1, 1, 1},
                                    23601450.2379268, 0.224668921574940E-02};
// clang-format on

}  // namespace talvo::test::nist
