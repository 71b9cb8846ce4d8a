#!/bin/sh
# Opens the page of perch view on the sample shot, with a focus pull to begin with. PORT chooses its port, NO_OPEN=1 leaves the
# browser closed. Arguments: the Debian packages that the build needs.
set -eu

scripts/install-packages.sh "$@"
cmake --preset release -DKESTREL_DEVELOPER=OFF -DKESTREL_PAGE=ON
cmake --build --preset release --target Kestrel perch

folder=build/release/view
mkdir -p "$folder"
exec build/release/bin/perch view --port "${PORT:-0}" ${NO_OPEN:+--no-open} --save-folder "$folder" \
    -i samples/shot/beauty.####.png --control-layer samples/shot/depth.####.png -o "$folder/pull.####.png" \
    --blur-type Fine --focal-point 1:20,24:70:smooth --in-focus-range 4 --maximum-blur 30
