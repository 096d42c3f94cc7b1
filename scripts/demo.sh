#!/usr/bin/env bash
# Builds everything (the library, the storage formats and the vexpers tool)
# and runs `vexpers demo` on its embedded sample scene.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/prerequisites.sh
cmake --preset default -DVEXPERS_BUILD_TESTS=OFF
cmake --build --preset default -j "$(nproc)"
./build/default/tools/vexpers demo
