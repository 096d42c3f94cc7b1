#!/usr/bin/env bash
# Runs the fuzz harnesses of the fuzz build (cmake --preset fuzz; cmake
# --build --preset fuzz) one after the other, each on a working copy of its
# checked-in seed and regression corpora, and prints the executions of each.
# Fails when a harness finds a crash, a leak or a timeout (its input is left
# in the working directory, named in the output).
#
#   fuzz/run.sh SECONDS [HARNESS[:SECONDS[:MAX_LEN]] ...]
#
# Without harnesses: all five, SECONDS each. FUZZ_WORK names the working
# directory (default: a new temporary one).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?usage: fuzz/run.sh SECONDS [HARNESS[:SECONDS[:MAX_LEN]] ...]}
shift
plan=("$@")
[ ${#plan[@]} -gt 0 ] || plan=(sections compose read_json read_binary graph)
work=${FUZZ_WORK:-$(mktemp -d)}
mkdir -p "$work"
status=0
total=0
for entry in "${plan[@]}"; do
  IFS=: read -r harness time maxLen <<<"$entry"
  time=${time:-$seconds}
  program=build/fuzz/fuzz/fuzz_$harness
  [ -x "$program" ] || { echo "fuzz: $program is not built"; exit 1; }
  mkdir -p "$work/$harness"
  log=$work/$harness.log
  flags=(-max_total_time="$time" -timeout=20 -print_final_stats=1 -artifact_prefix="$work/$harness-")
  [ -z "$maxLen" ] || flags+=(-max_len="$maxLen")
  if "$program" "${flags[@]}" "$work/$harness" "fuzz/corpus/$harness" "fuzz/regressions/$harness" >"$log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    total=$((total + runs))
    printf '%-12s %10d executions in %4d s, 0 crashes\n' "$harness" "$runs" "$time"
  else
    status=1
    printf '%-12s FAILED after %s s: see %s\n' "$harness" "$time" "$log"
    grep -E '^fuzz:|^SUMMARY|ERROR:|Test unit written' "$log" | head -5 || true
  fi
done
echo "fuzz: $total executions in all"
exit $status
