#include "content.h"

#include "kirsch.h"

#include <talvo/interpolation/gauss.h>

#include <Eigen/LU>
#include <numbers>

namespace plate {
namespace {

using Talvo::Util::CShape;

/// The sum over the points of a rule: weight times Jacobian determinant, the volume that the point stands for.
class GaussSum {
 public:
  GaussSum(Mesh const& mesh, Element const& element) : mesh_(mesh), element_(element) {}

  void add(double weight, double determinant) {
    if (!(determinant > 0)) {
      throw MeshError(
          mesh_.file, element_.line,
          "the element is turned over or folded (Jacobian determinant " + std::to_string(determinant) + ")");
    }
    total_ += weight * determinant;
  }
  double total() const { return total_; }

 private:
  Mesh const& mesh_;
  Element const& element_;
  double total_ = 0;
};

// The determinant of a straight triangle is constant and that of a 6-node one quadratic, for which 1 and 3 points are
// exact.
void add_triangle(CShape const& shape, GaussSum& sum) {
  const int points = shape.NumTopo() == 3 ? 1 : 3;
  for (int i = 1; i <= points; ++i) {
    // The weights add up to 1, and the natural triangle has the area 1/2.
    sum.add(Talvo::Gauss3Wgt(points, i) / 2, shape.Jacobian(Talvo::Gauss3Pos(points, i)).determinant());
  }
}

// Two points a direction are exact up to cubic terms in it, and no determinant of these elements has higher ones.
constexpr int line_points = 2;

void add_quadrilateral(CShape const& shape, GaussSum& sum) {
  for (int i = 1; i <= line_points; ++i) {
    for (int j = 1; j <= line_points; ++j) {
      const Vec2<double> rs{Talvo::GaussPos(line_points, i), Talvo::GaussPos(line_points, j)};
      sum.add(Talvo::GaussWgt(line_points, i) * Talvo::GaussWgt(line_points, j), shape.Jacobian(rs).determinant());
    }
  }
}

// All solids live on the cube, the tetrahedron, pyramid and wedge with merged corners.
void add_solid(CShape const& shape, GaussSum& sum) {
  for (int i = 1; i <= line_points; ++i) {
    for (int j = 1; j <= line_points; ++j) {
      for (int k = 1; k <= line_points; ++k) {
        const Vec3<double> rst{Talvo::GaussPos(line_points, i), Talvo::GaussPos(line_points, j),
                               Talvo::GaussPos(line_points, k)};
        const double weight =
            Talvo::GaussWgt(line_points, i) * Talvo::GaussWgt(line_points, j) * Talvo::GaussWgt(line_points, k);
        sum.add(weight, shape.Jacobian(rst).determinant());
      }
    }
  }
}

}  // namespace

double gauss_content(Mesh const& mesh) {
  double content = 0;
  for (Element const& element : mesh.elements) {
    const CShape shape = shape_of(mesh, element);
    GaussSum sum(mesh, element);
    if (mesh.dimension == 3) {
      add_solid(shape, sum);
    } else if (element.kind->corners == 3) {
      add_triangle(shape, sum);
    } else {
      add_quadrilateral(shape, sum);
    }
    content += sum.total();
  }
  return content;
}

double exact_content(Bounds const& bounds) {
  // A plate that ends at an axis may miss it by the rounding of the file.
  constexpr double rounding = 1e-6 * hole_radius;
  const auto halves = [](double low, double high) {
    return (low <= -hole_radius && high >= -rounding) + (low <= rounding && high >= hole_radius);
  };
  const int quarters = halves(bounds.low.x, bounds.high.x) * halves(bounds.low.y, bounds.high.y);
  const Vec3<double> extent = bounds.high - bounds.low;
  const double area = extent.x * extent.y - quarters * std::numbers::pi / 4 * hole_radius * hole_radius;
  return extent.z > 0 ? area * extent.z : area;
}

}  // namespace plate
