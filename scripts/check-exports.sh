#!/usr/bin/env bash
# The export gate. libvexpers exports only kstd_, ksys_ and kblk_ names and the
# formats library only kfmt_ names; reports progress on the required export
# list when it is available beside the repository, and fails when a required
# name is missing.
#   check-exports.sh path/to/libvexpers.so [path/to/libvexpers-formats.so]
# Without the second argument the formats library is looked up in the build
# tree beside the first (<build>/src/ -> <build>/formats/); it must exist.
set -euo pipefail
lib=${1:?usage: check-exports.sh path/to/libvexpers.so [path/to/libvexpers-formats.so]}
fmt=${2:-$(dirname "$lib")/../formats/libvexpers-formats.so}

# Every defined dynamic symbol of $1 must match the extended regex $2.
check_prefixes() {
  local file=$1 allowed=$2 label=$3 bad
  [ -f "$file" ] || { echo "$label: $file not found"; exit 1; }
  bad=$(nm -D --defined-only "$file" | awk '$2 ~ /^[TtDdBbRrVvWwiu]$/ {print $3}' | grep -vE "$allowed" || true)
  if [ -n "$bad" ]; then
    echo "$label: exported names outside the allowed prefixes:"; echo "$bad"; exit 1
  fi
  echo "$label export prefixes: ok ($(nm -D --defined-only "$file" | grep -cE " ${allowed#^}") names)"
}

check_prefixes "$lib" '^(kstd_|ksys_|kblk_)' libvexpers
check_prefixes "$fmt" '^kfmt_' libvexpers-formats

# Every required name must be present: the gate fails when one goes missing.
list="$(dirname "$0")/../../shared/api/check-exports"
if [ -x "$list" ]; then
  "$list" "$lib"
fi
