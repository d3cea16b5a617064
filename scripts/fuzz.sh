#!/bin/bash
# fuzz.sh SECONDS: runs each fuzz target of build/fuzz for that long, from the seeds of
# fuzz/corpus/NAME (target fuzz_NAME). What they find beyond the seeds stays in build/fuzz/corpus,
# an input that fails in build/fuzz/failures.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
seconds=$1
failed=0
count=0
mkdir -p "$root/build/fuzz/failures"

for target in "$root"/build/fuzz/fuzz/fuzz_*; do
  [ -f "$target" ] && [ -x "$target" ] || continue
  name=${target##*/fuzz_}
  found=$root/build/fuzz/corpus/$name
  mkdir -p "$found"
  folders=("$found")
  [ -d "$root/fuzz/corpus/$name" ] && folders+=("$root/fuzz/corpus/$name")
  echo "== $name, $seconds s"
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$root/build/fuzz/failures/$name-" "${folders[@]}" || failed=$((failed + 1))
  count=$((count + 1))
done

[ "$count" -gt 0 ] || { echo "build/fuzz holds no fuzz targets" >&2; exit 1; }
echo "$count fuzz targets, $failed failed"
[ "$failed" = 0 ]
