#!/usr/bin/env bash
# Formatting, a build of the library and the program with clang, and clang-tidy over every source of it.
set -u
cd "$(dirname "$0")/.." || exit 2
. scripts/setup.sh

git ls-files -- '*.cpp' '*.h' | xargs clang-format --dry-run -Werror || exit 1
build clang dspwavedecksimpl wavedeck_program || exit $?
git ls-files -- 'src/*.cpp' 'apps/*.cpp' |
  xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet 2>/dev/null || exit 1
echo "lint: clean"
