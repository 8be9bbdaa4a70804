#pragma once

/// @file
/// Fewer points for the same drawing.

#include <functional>
#include <vector>

namespace record {

struct Point {
  double x, y;

  friend bool operator==(Point const&, Point const&) = default;
};

/// Of each run of neighbouring points in the same column only the lowest and the highest (of a level run its ends), in
/// their order. Where a column is as narrow as the pen, the line through them looks like the line through all.
std::vector<Point> thinned(std::vector<Point> const& points, std::function<int(double x)> const& column_of);

}  // namespace record
