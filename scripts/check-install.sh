#!/usr/bin/env bash
# Installs the default build into a temporary prefix and builds two consumers
# against it: a C program through pkg-config and a C++ program through CMake's
# find_package. Both must run.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(mktemp -d)
work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
cmake --install build/default --prefix "$prefix" >/dev/null
libdir=$(ls -d "$prefix"/lib*/ | head -n 1)
export PKG_CONFIG_PATH="$libdir/pkgconfig"
cc -std=c11 -Wall -Wextra -Werror tests/install/consumer.c $(pkg-config --cflags --libs vexpers) -o "$work/c_consumer"
LD_LIBRARY_PATH="$libdir" "$work/c_consumer"
cmake -S tests/install/cpp -B "$work/cpp" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cpp" >/dev/null
LD_LIBRARY_PATH="$libdir" "$work/cpp/consumer"
echo "install: ok (prefix $prefix)"
