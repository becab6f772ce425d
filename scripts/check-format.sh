#!/usr/bin/env bash
# Fails, naming the files, when a tracked C++ file of src, tests or bench differs from what
# clang-format makes of it (.clang-format). `clang-format -i FILE` mends one.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files -- 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h')
off=()
for file in "${files[@]}"; do
  clang-format --dry-run -Werror "$file" >/dev/null 2>&1 || off+=("$file")
done
if ((${#off[@]})); then
  echo "horalo: these files differ from .clang-format (clang-format -i them):"
  printf '  %s\n' "${off[@]}"
  exit 1
fi
echo "format: ${#files[@]} files as .clang-format has them"
