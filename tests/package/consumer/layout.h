#pragma once

/// @file
/// Size and alignment of every exported type, as the source file that includes this header sees them.

#include <talvo/talvo.h>

#include <array>
#include <cstddef>

struct Layout {
  const char* type;
  std::size_t size;
  std::size_t alignment;
};

template <class T>
constexpr Layout layout_of(const char* type) {
  return {type, sizeof(T), alignof(T)};
}

static constexpr std::array layouts{
    layout_of<Vec2<double>>("Vec2<double>"),
    layout_of<Vec3<double>>("Vec3<double>"),
    layout_of<Tens2<double>>("Tens2<double>"),
    layout_of<TensSym3<double>>("TensSym3<double>"),
    layout_of<talvo::core::FixedVector<double, 3>>("FixedVector<double, 3>"),
    layout_of<talvo::core::FixedVector<double, 8>>("FixedVector<double, 8>"),
    layout_of<talvo::core::FixedMatrix<double, 2, 2>>("FixedMatrix<double, 2, 2>"),
    layout_of<talvo::core::FixedMatrix<double, 3, 3>>("FixedMatrix<double, 3, 3>"),
    layout_of<talvo::core::BaseException>("BaseException"),
    layout_of<talvo::core::error_in_talvo_core>("error_in_talvo_core"),
    layout_of<Talvo::Util::CShape>("CShape"),
    layout_of<Talvo::Util::CDirCos>("CDirCos"),
    layout_of<Talvo::Util::CLagrange>("CLagrange"),
    layout_of<Talvo::Util::LeastSquares>("LeastSquares"),
    layout_of<Talvo::Util::Filter>("Filter"),
};

/// The layouts as layout.cpp sees them, which is compiled with the library's compiler and flags.
std::array<Layout, layouts.size()> layouts_of_the_library();
