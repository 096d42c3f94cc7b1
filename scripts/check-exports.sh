#!/usr/bin/env bash
# The library exports only kstd_, ksys_ and kblk_ names; reports progress on
# the required export list when it is available beside the repository, and
# fails when a required name is missing.
set -euo pipefail
lib=${1:?usage: check-exports.sh path/to/libvexpers.so}
bad=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtDdBbRrVvWwiu]$/ {print $3}' | grep -vE '^(kstd_|ksys_|kblk_)' || true)
if [ -n "$bad" ]; then
  echo "exported names outside the kstd_/ksys_/kblk_ prefixes:"; echo "$bad"; exit 1
fi
echo "export prefixes: ok ($(nm -D --defined-only "$lib" | grep -cE ' (kstd_|ksys_|kblk_)') names)"
# Every required name must be present: the gate fails when one goes missing.
list="$(dirname "$0")/../../shared/api/check-exports"
if [ -x "$list" ]; then
  "$list" "$lib"
fi
