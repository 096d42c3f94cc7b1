#!/usr/bin/env bash
# Builds the benchmark preset and runs the round-trip comparison of vexpers
# with cereal and Boost.Serialization. Missing packages are installed first
# (the peers are optional for the build; without them only vexpers runs).
#   scripts/bench.sh [roundtrip_compare arguments...]
#   e.g. scripts/bench.sh --sizes 1000,10000,100000 --reps 5
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/prerequisites.sh \
  libbenchmark-dev:/usr/include/benchmark/benchmark.h \
  libcereal-dev:/usr/include/cereal/cereal.hpp \
  libboost-serialization-dev:/usr/include/boost/archive/binary_oarchive.hpp
cmake --preset bench
cmake --build --preset bench -j "$(nproc)" --target roundtrip_compare
exec build/bench/bench/compare/roundtrip_compare "$@"
