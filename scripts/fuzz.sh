#!/bin/bash
# fuzz.sh SECONDS [NAME...]: runs each fuzz target of build/fuzz, or those named, for that long, from
# the seeds that fuzz/CMakeLists.txt gives it. What they find beyond the seeds stays in
# build/fuzz/corpus, an input that fails in build/fuzz/failures.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
seconds=$1
shift
failed=0
count=0
mkdir -p "$root/build/fuzz/failures"

for seeds in "$root"/build/fuzz/fuzz/fuzz_*.seeds; do
  target=${seeds%.seeds}
  name=${target##*/fuzz_}
  [ -x "$target" ] || continue
  [ $# = 0 ] || [[ " $* " == *" $name "* ]] || continue
  found=$root/build/fuzz/corpus/$name
  mkdir -p "$found"
  mapfile -t folders <"$seeds"
  echo "== $name, $seconds s"
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$root/build/fuzz/failures/$name-" "$found" "${folders[@]}" || failed=$((failed + 1))
  count=$((count + 1))
done

[ "$count" -gt 0 ] || { echo "build/fuzz holds no fuzz targets" >&2; exit 1; }
echo "$count fuzz targets, $failed failed"
[ "$failed" = 0 ]
