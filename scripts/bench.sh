#!/usr/bin/env bash
# Builds the benchmark preset and runs the round-trip comparison of vexpers
# with cereal and Boost.Serialization. Missing packages are installed first
# (the peers are optional for the build; without them only vexpers runs).
#   scripts/bench.sh [roundtrip_compare arguments...]
#   e.g. scripts/bench.sh --sizes 1000,10000,100000 --reps 5
set -euo pipefail
cd "$(dirname "$0")/.."
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v ninja >/dev/null || need+=(ninja-build)
[ -f /usr/include/rapidjson/reader.h ] || need+=(rapidjson-dev)
[ -f /usr/include/benchmark/benchmark.h ] || need+=(libbenchmark-dev)
[ -f /usr/include/cereal/cereal.hpp ] || need+=(libcereal-dev)
[ -f /usr/include/boost/archive/binary_oarchive.hpp ] || need+=(libboost-serialization-dev)
if [ ${#need[@]} -gt 0 ]; then
  sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  "${sudo[@]}" apt-get update && "${sudo[@]}" apt-get install -y "${need[@]}"
fi
cmake --preset bench
cmake --build --preset bench -j "$(nproc)" --target roundtrip_compare
exec build/bench/bench/compare/roundtrip_compare "$@"
