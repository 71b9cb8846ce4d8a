#!/bin/sh
# Builds and tests each preset named as an argument, in order; stops at the first that fails. The tests that CTest counts are
# programs and shards of them; the line after its count tells how many single tests they held. The page of perch view is part
# of the optimised build alone.
set -eu

jobs=$(nproc)
for preset in "$@"; do
    page=OFF
    [ "$preset" != release ] || page=ON
    cmake --preset "$preset" -D KESTREL_PAGE="$page"
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$jobs"
    awk '/^\[  PASSED  \]/ { passed += $4 } /^(#|ℹ) pass / { passed += $3 } /^\[  SKIPPED \] [0-9]+ tests?[.,]/ { skipped += $4 }
        END { printf "%d single tests passed, %d skipped\n", passed, skipped }' "build/$preset/Testing/Temporary/LastTest.log"
done
