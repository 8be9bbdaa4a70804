#include <talvo/fitting/lagrange.h>
#include <cstddef>

namespace Talvo::Util {

int CLagrange::AddPoint(Vec3<double> const& point) {
  m_precalculated = false;
  const double t = m_nodes.empty() ? 0.0 : m_nodes.back().t + 1.0;
  m_nodes.push_back({t, point.x, point.y, point.z});
  return NumPoint();
}

void CLagrange::PreCalculate() {
  const std::size_t n = m_nodes.size();
  // One or two points have these parameters already.
  if (n > 2) {
    for (std::size_t k = 0; k < n; ++k) m_nodes[k].t = static_cast<double>(k) / static_cast<double>(n - 1);
  }
  // Only the new entries start from 1: those of an earlier evaluation keep their product. Callers rely on it.
  m_denominators.resize(n, 1.0);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      if (j != i) m_denominators[i] *= m_nodes[i].t - m_nodes[j].t;
    }
  }
  m_precalculated = true;
}

Vec3<double> CLagrange::Function(double t) {
  if (!m_precalculated) PreCalculate();
  const std::size_t n = m_nodes.size();
  const auto factor = [&](std::size_t j) { return t - m_nodes[j].t; };
  Vec3<double> sum{0.0, 0.0, 0.0, 0.0};
  const auto add = [&](std::size_t i, double product) {
    const double L = product / m_denominators[i];
    sum.x += L * m_nodes[i].x;
    sum.y += L * m_nodes[i].y;
    sum.z += L * m_nodes[i].z;
  };

  // The product of node i runs over the factors of all nodes but i, ascending. Those before i are common to all nodes
  // from i on: `before` is their product. Four nodes at a time then take the remaining ones side by side.
  double before = 1.0;
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    const double f0 = factor(i);
    const double f1 = factor(i + 1);
    const double f2 = factor(i + 2);
    const double f3 = factor(i + 3);
    const double before1 = before * f0;
    const double before2 = before1 * f1;
    const double before3 = before2 * f2;
    double product[4] = {before * f1 * f2 * f3, before1 * f2 * f3, before2 * f3, before3};
    for (std::size_t j = i + 4; j < n; ++j) {
      const double f = factor(j);
      for (double& value : product) value *= f;
    }
    for (std::size_t lane = 0; lane < 4; ++lane) add(i + lane, product[lane]);
    before = before3 * f3;
  }
  for (; i < n; ++i) {
    double product = before;
    for (std::size_t j = i + 1; j < n; ++j) product *= factor(j);
    add(i, product);
    before *= factor(i);
  }
  return sum;
}

}  // namespace Talvo::Util
