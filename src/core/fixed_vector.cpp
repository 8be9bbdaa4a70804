#include <talvo/core/fixed_vector.h>

namespace talvo::core {

// The sizes that element values and derivatives come in.
template class FixedVector<double, 1>;
template class FixedVector<double, 2>;
template class FixedVector<double, 3>;
template class FixedVector<double, 4>;
template class FixedVector<double, 5>;
template class FixedVector<double, 6>;
template class FixedVector<double, 7>;
template class FixedVector<double, 8>;

}  // namespace talvo::core
