#include "fitting/normal_equations.h"

#include "core/private_eigen.h"

namespace talvo::fitting {

Solution solve(std::vector<double> const& A, std::vector<double> const& b) {
  using Matrix = talvo_eigen::Matrix<double, talvo_eigen::Dynamic, talvo_eigen::Dynamic, talvo_eigen::RowMajor>;
  const auto n = static_cast<std::ptrdiff_t>(b.size());
  if (n == 0) return {0, {}};
  const talvo_eigen::MatrixXd matrix = talvo_eigen::Map<const Matrix>(A.data(), n, n);
  const talvo_eigen::FullPivLU<talvo_eigen::MatrixXd> lu(matrix);
  const talvo_eigen::VectorXd x = lu.solve(talvo_eigen::Map<const talvo_eigen::VectorXd>(b.data(), n));
  return {lu.rank(), {x.data(), x.data() + n}};
}

}  // namespace talvo::fitting
