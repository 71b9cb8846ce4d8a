#!/bin/sh
# Builds and tests each preset named as an argument, in order; stops at the first that fails.
set -eu

jobs=$(nproc)
for preset in "$@"; do
    cmake --preset "$preset"
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$jobs"
done
