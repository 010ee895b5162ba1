#!/usr/bin/env bash
# Runs a fuzzer, or all of them one after the other; builds them first.
#   scripts/fuzz.sh [SECONDS [NAME...]]    60 s each unless told otherwise
# What is found lies in build/fuzz/found; inputs worth keeping go to tests/fuzz/corpus/NAME, which the tests replay.
set -eu
cd "$(dirname "$0")/.." || exit 2
. scripts/setup.sh
install_packages && install_clang && build fuzz || exit $?

seconds=${1:-60}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- $(cd tests/fuzz && ls fuzz_*.cpp | sed 's/fuzz_\(.*\)\.cpp/\1/')
mkdir -p build/fuzz/found
# Names of stages and options, for the fuzzers of texts.
build/fuzz/bin/wavedeck options | sed -n 's/^ \{0,2\}\([A-Za-z_]\{3,\}\) .*/"\\"\1\\""/p' | sort -u >build/fuzz/names.dict
# Each connection of `websocket` has a thread, and the leak checker overlooks a thread whose number was used before.
if [[ " $* " == *" websocket "* ]] && [ "$(cat /proc/sys/kernel/pid_max)" -lt 1000000 ]; then
  echo "websocket: after some 30,000 inputs leaks may be reported that are none, unless kernel.pid_max is raised" >&2
fi
status=0
for name in "$@"; do
  mkdir -p "build/fuzz/corpus/$name"
  echo "$name" >&2
  "build/fuzz/bin/fuzz_$name" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=3000 -max_len=4096 \
    -dict=build/fuzz/names.dict -print_final_stats=1 -artifact_prefix="build/fuzz/found/$name-" \
    "build/fuzz/corpus/$name" "tests/fuzz/corpus/$name" >"build/fuzz/$name.log" 2>&1 ||
    { status=1; tail -n 40 "build/fuzz/$name.log" >&2; }
done
exit $status
