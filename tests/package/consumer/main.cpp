// A program that uses the library from outside: values, exceptions and Eigen results cross its boundary. All numbers
// are sums of powers of two, so that they are exact under any compiler flags.

#include "layout.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  ++failures;
  std::printf("FAILED: %s\n", what);
}

void types_have_one_layout() {
  const auto library = layouts_of_the_library();
  for (std::size_t i = 0; i < layouts.size(); ++i) {
    expect(layouts[i].size == library[i].size && layouts[i].alignment == library[i].alignment, layouts[i].type);
  }
}

void exceptions_are_caught_by_type() {
  talvo::core::FixedVector<double, 3> v(std::vector<double>{1, 2, 4});
  v /= 2;
  expect(v[0] == 0.5 && v[1] == 1.0 && v[2] == 2.0, "FixedVector divides");
  try {
    v /= 0.0;
    expect(false, "a division by zero throws");
  } catch (talvo::core::error_in_talvo_core const& e) {
    expect(std::strcmp(e.what(), "Division by zero in FixedVector operator/=") == 0, "message of the core's error");
    expect(std::strstr(e.file_name(), "fixed_vector.h") != nullptr && e.line() > 0, "place of the core's error");
  }
  try {
    v.ensure_valid_size(2, "from a list");
    expect(false, "a wrong size throws");
  } catch (talvo::core::BaseException const& e) {
    expect(std::strcmp(e.what(), "It is not sensible to create a FixedVector<3, ...> from a list of size 2!") == 0,
           "message of the base exception");
  }
  try {
    Talvo::Util::Interpolate2d::H(5, {0, 0}, Talvo::Full);
    expect(false, "an unknown element throws");
  } catch (std::logic_error const& e) {
    expect(std::strcmp(e.what(), "invalid number of nodes") == 0, "message of the interpolation's error");
  }
}

// In the middle of the quadrilateral N_k = (1 ± r)(1 ± s)/4 every derivative is ±1/4. The matrices are made, copied,
// grown and freed here, whatever allocator the library would use.
void matrices_belong_to_the_program() {
  std::vector<Eigen::MatrixXd> kept;
  for (int i = 0; i < 1000; ++i) {
    Eigen::MatrixXd d = Talvo::Util::Interpolate2d::HDerivatives(4, {0, 0}, Talvo::Full);
    kept.push_back(d);
    d.resize(i % 7 + 1, 9);
    d.setZero();
  }
  Eigen::MatrixXd sum = Eigen::MatrixXd::Zero(2, 4);
  for (auto const& d : kept) sum += d;
  Eigen::MatrixXd expected(2, 4);
  expected << -250, 250, 250, -250,  //
      -250, -250, 250, 250;
  expect(sum == expected, "derivatives of the 4-node quadrilateral");
  expect(Talvo::Util::Interpolate1d::HDerivatives(2, 0, Talvo::Full).cols() == 2, "derivatives of the line");
  expect(Talvo::Util::Interpolate3d::HDerivatives(8, {0, 0, 0}, Talvo::Full).cols() == 8, "derivatives of the solid");
  expect(Talvo::Util::Interpolate3dInfinite::MDerivatives(8, {0, 0, 0}).cols() == 8, "derivatives to infinity");
}

// Half of the box's edges, on the diagonal: the natural coordinates run over a length of 2.
void jacobians_come_by_value() {
  using Talvo::Util::CShape;
  const CShape line(Talvo::Line, {{0, 0, 0}, {4, 0, 0}});
  const CShape area(Talvo::Area, {{0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {0, 2, 0}});
  const CShape volume(Talvo::Volume, {{0, 0, 0},
                                      {2, 0, 0},
                                      {2, 4, 0},
                                      {0, 4, 0},  //
                                      {0, 0, 8},
                                      {2, 0, 8},
                                      {2, 4, 8},
                                      {0, 4, 8}});
  std::vector<Eigen::Matrix3d> kept;
  for (int i = 0; i < 100; ++i) {
    expect(line.Jacobian(0.5)(0, 0) == 2, "Jacobian of the line");
    expect(area.Jacobian(Vec2<double>{0.5, 0}) == Eigen::Vector2d(2, 1).asDiagonal().toDenseMatrix(),
           "Jacobian of the rectangle");
    kept.push_back(volume.Jacobian(Vec3<double>{0.5, 0, -0.5}));
  }
  for (auto const& J : kept) {
    expect(J == Eigen::Vector3d(1, 2, 4).asDiagonal().toDenseMatrix(), "Jacobian of the box");
  }
}

// The local x axis along global y and the local y axis along global z: a cyclic exchange of the axes. Three of them are
// none at all.
void frames_have_one_layout() {
  using Talvo::Util::CDirCos;
  CDirCos frame;
  frame.Create({0, 1, 0}, {0, 0, 1});
  const Vec3<double> local = frame.GtoL(Vec3<double>{1, 2, 3});
  expect(local.x == 2 && local.y == 3 && local.z == 1, "a vector in local axes");

  std::vector<CDirCos> turned{frame};
  for (int i = 0; i < 2; ++i) turned.push_back(turned.back().Transform(frame));
  expect(turned.back().Inner() == CDirCos::Matrix::Identity(), "three exchanges");
  expect(CDirCos::Matrix(turned[1].Inner() * frame.Inner()) == CDirCos::Matrix::Identity(), "the program's product");

  Eigen::Matrix4d matrix = frame.Inner();
  expect(CDirCos(matrix) == frame, "a frame made of the program's matrix");
}

struct Plate : Talvo::Util::CShape {
  Plate() : CShape(Talvo::Area, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}) {}
  std::vector<double> thickness = std::vector<double>(4, 0.25);
};

void shapes_can_be_derived_from() {
  const std::unique_ptr<Talvo::Util::CShape> plate = std::make_unique<Plate>();
  Vec2<double> rs{};
  expect(plate->FindRS({1.5, 0.5, 0}, rs, 1e-9) && rs.x == 0.5 && rs.y == -0.5, "a point in the plate is found");
  expect(!plate->FindRS({2.5, 0.5, 0}, rs, 1e-9), "a point outside is not");
}

}  // namespace

int main() {
  types_have_one_layout();
  exceptions_are_caught_by_type();
  matrices_belong_to_the_program();
  jacobians_come_by_value();
  frames_have_one_layout();
  shapes_can_be_derived_from();
  if (failures == 0) std::puts("OK");
  return failures == 0 ? 0 : 1;
}
