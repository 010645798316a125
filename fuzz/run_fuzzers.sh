#!/usr/bin/env bash
# run_fuzzers.sh <build-dir> <seconds>: runs every fuzz target of <build-dir>
# for <seconds> on its corpus (<build-dir>/corpus/<target>, grown over runs)
# and its seeds, one after the other, and prints one line per target:
#   <target> execs <n> exec/s <n> crashes <0|1>
# Crash inputs go to <build-dir>/crashes/. Exits 1 if any target crashed.
set -uo pipefail
build=$1
seconds=$2
"$build/fuzz/kora-fuzz-seeds" "$build/fuzz-seeds" >/dev/null || exit 1
mkdir -p "$build/crashes"
status=0
for path in "$build"/fuzz/*_fuzzer; do
  target=$(basename "$path")
  mkdir -p "$build/corpus/$target" "$build/fuzz-seeds/$target"
  log="$build/crashes/$target.log"
  # Lying sizes may ask for up to 4 GiB of address space, which is not
  # touched; the resident limit stays libFuzzer's default.
  "$path" -max_total_time="$seconds" -malloc_limit_mb=4200 -print_final_stats=1 \
    -artifact_prefix="$build/crashes/$target-" \
    "$build/corpus/$target" "$build/fuzz-seeds/$target" >"$log" 2>&1
  crashed=$?
  [ $crashed -ne 0 ] && crashed=1 && status=1
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
  echo "$target execs ${execs:-?} exec/s ${rate:-?} crashes $crashed"
done
exit $status
