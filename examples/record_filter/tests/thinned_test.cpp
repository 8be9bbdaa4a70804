#include "thinned.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <vector>

namespace record {

void PrintTo(Point const& point, std::ostream* out) { *out << '(' << point.x << ' ' << point.y << ')'; }

namespace {

int whole(double x) { return static_cast<int>(std::floor(x)); }

TEST(Thinned, KeepsTheLowestAndTheHighestOfEachColumnInTheirOrder) {
  const std::vector<Point> points{{0.0, 2}, {0.2, 5}, {0.4, 1}, {0.6, 3},  // highest first
                                  {1.0, 4}, {1.3, 0}, {1.6, 7}, {1.9, 6},  // lowest first
                                  {3.0, 1}, {3.5, 2}};                     // nothing to leave out
  const std::vector<Point> kept{{0.2, 5}, {0.4, 1}, {1.3, 0}, {1.6, 7}, {3.0, 1}, {3.5, 2}};
  EXPECT_EQ(thinned(points, whole), kept);
}

TEST(Thinned, KeepsTheEndsOfALevelColumnAndALonelyPoint) {
  const std::vector<Point> points{{0.0, 2}, {0.5, 2}, {0.9, 2}, {1.5, 3}};
  const std::vector<Point> kept{{0.0, 2}, {0.9, 2}, {1.5, 3}};
  EXPECT_EQ(thinned(points, whole), kept);
}

TEST(Thinned, OfNothingIsNothing) { EXPECT_TRUE(thinned({}, whole).empty()); }

}  // namespace
}  // namespace record
