#!/bin/sh
# Builds the consumer with what pkg-config says about an installed library, and runs it.
#
#   pkg_config.sh PREFIX LIBDIR PROGRAM COMPILER [FLAG...]
#
# PROGRAM is the file to write, and FLAGs are the program's alone. layout.cpp stands for the library: it is compiled with
# LIBRARY_COMPILER and LIBRARY_FLAGS from the environment. Where this CPU cannot run the program, 77 is returned.
set -eu

prefix=$1 libdir=$2 program=$3 compiler=$4
shift 4
here=$(dirname "$0")/consumer

PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig${PKG_CONFIG_PATH:+:$PKG_CONFIG_PATH}
export PKG_CONFIG_PATH
cflags=$(pkg-config --cflags talvo)
libs=$(pkg-config --libs talvo)

# shellcheck disable=SC2086  # LIBRARY_FLAGS, cflags and libs are lists of words
${LIBRARY_COMPILER:-$compiler} -std=c++20 ${LIBRARY_FLAGS:-} $cflags -c "$here/layout.cpp" -o "$program.layout.o"
# shellcheck disable=SC2086
"$compiler" -std=c++20 -O2 "$@" $cflags "$here/main.cpp" "$program.layout.o" -o "$program" \
  $libs "-Wl,-rpath,$prefix/$libdir"

case " $* " in
  *" -march=x86-64-v4 "*) needed="avx512f avx512bw avx512cd avx512dq avx512vl" ;;
  *" -mavx2 "*) needed="avx2" ;;
  *) needed="" ;;
esac
for feature in $needed; do
  if ! grep -qw "$feature" /proc/cpuinfo; then
    echo "Built, but not run: this CPU has no $feature."
    exit 77
  fi
done
"$program"
