#!/bin/sh
# The shared library offers its own names and nobody else's: a second {fmt} or Eigen in the program must not meet its.
#
#   exported_symbols.sh LIBRARY
set -eu

symbols=$(nm -DC --defined-only "$1" | cut -d ' ' -f 2-)
count=$(echo "$symbols" | grep -cE '^T (Talvo|talvo)::')
[ "$count" -gt 20 ] || { echo "only $count functions of talvo are visible"; exit 1; }

# The value types and their functions stand in the global namespace. Instances of the standard library's templates are
# weak copies that every program has as well; with a type of Eigen or {fmt} inside they are not.
own='(typeinfo for |typeinfo name for |vtable for )?(Talvo::|talvo::|Vec[23]<|Tens2<|TensSym3<|ComplexMag\()'
strangers=$(echo "$symbols" | grep -vE "^[TVWBDRu] $own" | grep -vE '^[VWu] [^(]*(std|__gnu_cxx)::' || true)
strangers=$strangers$(echo "$symbols" | grep -E '^[VWu] [^(]*(std|__gnu_cxx)::' | grep -E 'Eigen::|fmt::' || true)
if [ -n "$strangers" ]; then
  echo "Visible outside the library, but not talvo's own:"
  echo "$strangers"
  exit 1
fi
echo "OK: $count functions, all of them talvo's"
