#!/usr/bin/env bash
# Builds vexpers with its test suite and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v ninja >/dev/null || need+=(ninja-build)
[ -f /usr/include/rapidjson/reader.h ] || need+=(rapidjson-dev)
if [ ${#need[@]} -gt 0 ]; then apt-get update && apt-get install -y "${need[@]}"; fi
cmake --preset default -DVEXPERS_BUILD_TESTS=ON
cmake --build --preset default -j "$(nproc)"
ctest --preset default
