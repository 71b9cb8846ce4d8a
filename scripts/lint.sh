#!/bin/sh
# Checks the format of every C and C++ file and lints the products' sources with the release build's flags.
set -eu

git ls-files -z '*.h' '*.hpp' '*.ipp' '*.cpp' '*.c' | xargs -0 clang-format --dry-run --Werror
# Clang cannot read GCC's precompiled headers.
cmake --preset release -B build/lint -D CMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null
# What another system builds has no flags here.
git ls-files 'PILib/*.cpp' 'AELib/*.cpp' 'Kestrel/*.cpp' 'focus-core/*.cpp' 'perch/*.cpp' 'examples/*.cpp' |
    while read -r source; do
        if grep -qF "/$source\"" build/lint/compile_commands.json; then printf '%s\0' "$source"; fi
    done |
    xargs -0 -P "$(nproc)" -n 1 clang-tidy --quiet -p build/lint
