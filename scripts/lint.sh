#!/usr/bin/env bash
# Formatting, a build of the library and the program with clang, and clang-tidy over every source of it.
set -eu
cd "$(dirname "$0")/.." || exit 2
. scripts/setup.sh
install_packages && install_clang && build clang dspwavedecksimpl wavedeck_program || exit $?

git ls-files -- '*.cpp' '*.h' | xargs clang-format --dry-run -Werror ||
  { echo "lint: clang-format would change the lines above" >&2; exit 1; }
# What it finds goes to the standard output; the other stream only counts what it left out.
git ls-files -- 'src/*.cpp' 'apps/*.cpp' |
  xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet 2>/dev/null ||
  { echo "lint: clang-tidy complains of the lines above" >&2; exit 1; }
echo "lint: clean"
