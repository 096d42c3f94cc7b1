#!/usr/bin/env bash
# Builds vexpers with its test suite and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v cmake >/dev/null && command -v ninja >/dev/null || { apt-get update && apt-get install -y cmake ninja-build; }
cmake --preset default
cmake --build --preset default -j "$(nproc)"
ctest --preset default
