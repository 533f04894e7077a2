#!/usr/bin/env bash
# Runs the fuzz targets of the `fuzz` preset for SECONDS each (default 20),
# all of them or the ones named, starting from the seeds and the regression
# inputs; what they add to the corpus goes to a scratch folder. Stops at the
# first crash, leak, sanitizer report, failed property or hang, and keeps the
# input that caused it under build-fuzz/findings/.
#   fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin=${FUZZ_BIN:-$here/../build-fuzz/fuzz}
findings=$here/../build-fuzz/findings
seconds=${1:-20}
shift $(( $# > 0 ? 1 : 0 ))
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(scan self_format shell_word rewrite codecs lookups options)
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
passed=0
for t in "${targets[@]}"; do
  dirs=("$scratch/$t" "$here/corpus/$t")
  [ -d "$here/regression/$t" ] && dirs+=("$here/regression/$t")
  mkdir -p "$scratch/$t" "$findings"
  if ! "$bin/fuzz_$t" -max_total_time="$seconds" -timeout=10 -artifact_prefix="$findings/$t-" \
      "${dirs[@]}" >"$scratch/$t.log" 2>&1; then
    tail -n 60 "$scratch/$t.log"
    echo "fuzz_$t: finding kept in $findings (reproduce: $bin/fuzz_$t <file>)"
    echo "fuzz: $passed passed, 1 failed"
    exit 1
  fi
  echo "fuzz_$t: $(grep -o 'Done [0-9]* runs in [0-9]* second(s)' "$scratch/$t.log"), no finding"
  passed=$((passed + 1))
done
echo "fuzz: $passed passed, 0 failed"
