#!/bin/sh
# Renders the sample still with a focus pull, in both views, and says where the pictures are. Arguments: the Debian
# packages that the build needs.
set -eu

scripts/install-packages.sh "$@"
cmake --preset release -DKESTREL_DEVELOPER=OFF
cmake --build --preset release --target Kestrel perch

folder=build/release/demo
mkdir -p "$folder"
for view in Normal Focus; do
    build/release/bin/perch render --input samples/still/beauty.png \
        --control-layer samples/still/depth.exr --control-range 1.5:16 \
        --blur-type Fine --focal-point 62 --in-focus-range 4 --maximum-blur 50 --view-mode "$view" \
        --output "$folder/still-$view.png"
done
echo "The picture, focused on the card at 7 m: $folder/still-Normal.png"
echo "What is out of focus, the brighter the more: $folder/still-Focus.png"
