#!/bin/sh
# Builds and tests each preset named as an argument, in order; stops at the first that fails. The tests that CTest counts are
# programs and shards of them; the line after its count tells how many single tests they held.
set -eu

jobs=$(nproc)
for preset in "$@"; do
    cmake --preset "$preset"
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$jobs"
    awk '/^\[  PASSED  \]/ { passed += $4 } /^\[  SKIPPED \] [0-9]+ tests?[.,]/ { skipped += $4 }
        END { printf "%d single tests passed, %d skipped\n", passed, skipped }' "build/$preset/Testing/Temporary/LastTest.log"
done
