#!/usr/bin/env bash
# run_fuzzers.sh <build-dir> <seconds> [<target>...]: runs the fuzz targets of
# <build-dir> (all of them by default) for <seconds> each on their corpus
# (<build-dir>/corpus/<target>, grown over runs) and seeds, FUZZ_JOBS (default
# 1) at a time, and prints a table: per target the executions, executions per
# second and crashes of this run, and the executions of every run logged so
# far. Each run keeps its log as <build-dir>/logs/<target>-<UTC time>.log;
# crash inputs go to <build-dir>/crashes/. Exits 1 if any target crashed.
set -uo pipefail
build=$1
seconds=$2
shift 2
jobs=${FUZZ_JOBS:-1}
"$build/fuzz/kora-fuzz-seeds" "$build/fuzz-seeds" >/dev/null || exit 1
mkdir -p "$build/crashes" "$build/logs"

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for path in "$build"/fuzz/*_fuzzer; do targets+=("$(basename "$path")"); done
fi

# The libFuzzer flags of a target beyond the common ones.
flags_of() {
  case $1 in
    # An analysis is a few kilobytes; longer inputs only add bytes past
    # the frames.
    analysis_fuzzer) echo "-max_len=8192" ;;
  esac
}

stamp=$(date -u +%Y%m%dT%H%M%S)
run() {
  local target=$1
  mkdir -p "$build/corpus/$target" "$build/fuzz-seeds/$target"
  # Lying sizes may ask for up to 4 GiB of address space, which is not
  # touched; the resident limit stays libFuzzer's default.
  # shellcheck disable=SC2046
  "$build/fuzz/$target" -max_total_time="$seconds" -malloc_limit_mb=4200 -print_final_stats=1 \
    $(flags_of "$target") -artifact_prefix="$build/crashes/$target-" \
    "$build/corpus/$target" "$build/fuzz-seeds/$target" >"$build/logs/$target-$stamp.log" 2>&1
  echo "exit status: $?" >>"$build/logs/$target-$stamp.log"
}

pids=()
for target in "${targets[@]}"; do
  run "$target" &
  pids+=($!)
  if [ ${#pids[@]} -ge "$jobs" ]; then
    wait "${pids[0]}"
    pids=("${pids[@]:1}")
  fi
done
wait

# stat <key> <log>: the value of libFuzzer's final statistics line <key>.
stat() { sed -n "s/^stat::$1: *//p" "$2"; }

status=0
printf '%-26s %12s %8s %8s %14s\n' target execs exec/s crashes "execs to date"
for target in "${targets[@]}"; do
  log="$build/logs/$target-$stamp.log"
  crashes=0
  grep -qx 'exit status: 0' "$log" || { crashes=1; status=1; }
  total=0
  for l in "$build/logs/$target"-*.log; do total=$((total + $(stat number_of_executed_units "$l" || true) + 0)); done
  printf '%-26s %12s %8s %8s %14s\n' "$target" "$(stat number_of_executed_units "$log")" \
    "$(stat average_exec_per_sec "$log")" "$crashes" "$total"
done
exit $status
