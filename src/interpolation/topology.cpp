#include "interpolation/topology.h"

#include <stdexcept>

namespace talvo::elements {

void refuse(const char* message) { throw std::logic_error(message); }

}  // namespace talvo::elements
