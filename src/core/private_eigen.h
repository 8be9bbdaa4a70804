#pragma once

/// @file
/// Eigen's decompositions for the library's own use, under a namespace of their own.
///
/// A program that links the library may compile Eigen with other flags. In a static build the linker would merge its
/// functions with ours wherever they were not inlined, and either side could run the other's: other sums, or another
/// allocator. Under another name they are other functions.
///
/// Include this only in sources that include no public header with an Eigen type.

#ifdef EIGEN_CORE_H
#error "Eigen was included before: this source would get the common namespace"
#endif

#define Eigen talvo_eigen
#include <Eigen/LU>
#undef Eigen
