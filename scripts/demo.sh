#!/usr/bin/env bash
# Builds vexpers and runs its main job.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v cmake >/dev/null && command -v ninja >/dev/null || { apt-get update && apt-get install -y cmake ninja-build; }
cmake --preset default -DVEXPERS_BUILD_TESTS=OFF
cmake --build --preset default -j "$(nproc)"
./build/default/examples/vexpers-example
