#include "thinned.h"

#include <algorithm>

namespace record {

std::vector<Point> thinned(std::vector<Point> const& points, std::function<int(double x)> const& column_of) {
  std::vector<Point> kept;
  for (auto from = points.begin(); from != points.end();) {
    const int column = column_of(from->x);
    const auto to = std::find_if(from, points.end(), [&](Point const& point) { return column_of(point.x) != column; });
    auto [low, high] = std::minmax_element(from, to, [](Point const& a, Point const& b) { return a.y < b.y; });
    if (high < low) std::swap(low, high);
    kept.push_back(*low);
    if (high != low) kept.push_back(*high);
    from = to;
  }
  return kept;
}

}  // namespace record
