#!/usr/bin/env bash
# Builds everything (the library, the storage formats and the vexpers tool)
# and runs `vexpers demo` on its embedded sample scene.
set -euo pipefail
cd "$(dirname "$0")/.."
need=()
command -v cmake >/dev/null || need+=(cmake)
command -v ninja >/dev/null || need+=(ninja-build)
[ -f /usr/include/rapidjson/reader.h ] || need+=(rapidjson-dev)
if [ ${#need[@]} -gt 0 ]; then apt-get update && apt-get install -y "${need[@]}"; fi
cmake --preset default -DVEXPERS_BUILD_TESTS=OFF
cmake --build --preset default -j "$(nproc)"
./build/default/tools/vexpers demo
