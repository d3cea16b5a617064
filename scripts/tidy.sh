#!/bin/bash
# tidy.sh [FILE...]: clang-format in check mode and clang-tidy over the project's C++ files, or over
# those named, relative to the top. The compile commands are those of build/tidy.
set -euo pipefail

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

if [ $# -gt 0 ]; then
  files=("$@")
else
  mapfile -t files < <(git ls-files -co --exclude-standard -- '*.h' '*.cpp' \
    ':!tests/*/fixtures/*' ':!tests/repositories' ':!tests/references/*/repository/*')
fi
[ ${#files[@]} -gt 0 ] || { echo "no C++ files" >&2; exit 1; }

# A misspelt check would check nothing, and nobody would notice.
verify_check_names() {
  local known pattern
  known=$(clang-tidy --list-checks --checks='*')
  while read -r pattern; do
    pattern=${pattern#-}
    grep -qx " *${pattern//\*/.*}" <<<"$known" || {
      echo "$1 names no check of clang-tidy: $pattern" >&2
      return 1
    }
  done < <(sed -n '/^Checks:/,/^[A-Z]/{s/^ *\(-\?[a-z][a-zA-Z0-9.*-]*\),\?$/\1/p}' "$1")
}

while read -r config; do
  verify_check_names "$config"
done < <(git ls-files -co --exclude-standard -- '*.clang-tidy')
status=0
clang-format --dry-run --Werror "${files[@]}" || status=1

mapfile -t sources < <(printf '%s\n' "${files[@]}" | grep '\.cpp$' || true)
printf '%s\0' "${sources[@]}" |
  xargs -0 -r -n 1 -P "$(nproc)" clang-tidy --quiet -p build/tidy 2>/dev/null || status=1

[ "$status" = 0 ] || { echo "not tidy" >&2; exit 1; }
echo "${#files[@]} files formatted, ${#sources[@]} sources without a finding"
