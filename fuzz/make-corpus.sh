#!/usr/bin/env bash
# Rewrites the seed corpora fuzz/corpus/<harness>/ with the seed tool of the
# default build (cmake --build --preset default first).
set -euo pipefail
cd "$(dirname "$0")/.."
tool=build/default/fuzz/vexpers_fuzz_seeds
rm -rf fuzz/corpus
"$tool" fuzz/corpus
find fuzz/corpus -type f | sort | xargs ls -l | awk '{print $5, $9}'
