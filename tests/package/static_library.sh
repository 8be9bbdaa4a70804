#!/bin/sh
# A static library and the program share the weak functions of Eigen, and the linker keeps one of the two copies. Memory
# is safe only as long as the library has no copy of the allocation functions, which differ with the compiler's flags.
#
#   static_library.sh LIBRARY
set -eu

symbols=$(nm -C --defined-only "$1")
echo "$symbols" | grep -q 'Talvo::Util::CShape::FindRS' || { echo "no symbols of talvo in $1"; exit 1; }
if echo "$symbols" | grep -E ' W .*Eigen::internal::[a-z_]*(malloc|free|realloc|aligned_new|aligned_delete)'; then
  echo "The library must not carry these."
  exit 1
fi
echo "OK"
