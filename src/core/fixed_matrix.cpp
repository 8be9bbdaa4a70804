#include <talvo/core/fixed_matrix.h>

namespace talvo::core {

// The sizes that Jacobians come in.
template class FixedMatrix<double, 1, 1>;
template class FixedMatrix<double, 2, 2>;
template class FixedMatrix<double, 3, 3>;

}  // namespace talvo::core
