#!/bin/sh
# parallel.sh PROGRAM SHOT: GNU parallel runs what perch job makes of a render of the sequence in SHOT; its tasks together must
# leave what one run leaves, and their reports tell what its report does.
set -eu

perch=$1 shot=$2
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/the {} shot"
cd "$scratch/the {} shot"
ln -s "$shot" plates
mkdir whole parts
set -- "$perch" render -i plates/beauty.####.png --control-layer plates/depth.####.png --focal-point 1:20,24:70:smooth -q
"$@" -o whole/shot.####.png --report whole.json
"$perch" job parallel --tasks 5 -o job.sh -- "$@" -o parts/shot.####.png --report task.#.json
cd /
sh "$scratch/the {} shot/job.sh"
cd "$scratch/the {} shot"
test "$(find parts -type f | wc -l)" -eq 24
diff -r whole parts
"$perch" merge-report task.*.json -o joined.json
"$here/compare-reports.py" whole.json joined.json
