#!/usr/bin/env bash
# Builds vexpers with its test suite and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/prerequisites.sh
cmake --preset default -DVEXPERS_BUILD_TESTS=ON
cmake --build --preset default -j "$(nproc)"
ctest --preset default
