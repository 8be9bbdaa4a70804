#!/bin/sh
# The installed files are complete, can be moved, and ask their users for Eigen only.
#
#   installed_files.sh PREFIX LIBDIR SOURCE_DIR BUILD_DIR
set -eu

prefix=$1 libdir=$2 source=$3 build=$4
failed=0

for header in $(cd "$source/include" && find talvo -name '*.h') talvo/config.h; do
  [ -f "$prefix/include/$header" ] || { echo "$header is not installed"; failed=1; }
done
if grep -rnF -e "$source" -e "$build" "$prefix/include" "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig"; then
  echo "These lines name a folder of the machine that built the library."
  failed=1
fi
if grep -rnw fmt "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig" || grep -rn 'include.*<fmt' "$prefix/include"; then
  echo "These lines ask the library's users for {fmt}."
  failed=1
fi
[ "$failed" = 0 ] && echo "OK"
exit "$failed"
