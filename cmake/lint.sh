#!/bin/sh
# Checks the format of every C and C++ file and lints the products' sources with the release build's flags.
set -eu

git ls-files -z '*.h' '*.hpp' '*.ipp' '*.cpp' '*.c' | xargs -0 clang-format --dry-run --Werror
git ls-files -z 'PILib/*.cpp' 'AELib/*.cpp' 'Kestrel/*.cpp' 'focus-core/*.cpp' 'perch/*.cpp' 'examples/*.cpp' |
    xargs -0 -P "$(nproc)" -n 1 clang-tidy --quiet -p build/release
