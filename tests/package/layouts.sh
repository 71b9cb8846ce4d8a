#!/bin/sh
# layouts.sh: installs the release build with its libraries in lib, lib64 and a multiarch folder; in each perch renders a picture
# from the installed tree and from the tree moved elsewhere, and after the installation is undone nothing is left.
set -eu
cd "$(dirname "$0")/../.."

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"; cmake --preset release -U CMAKE_INSTALL_LIBDIR >/dev/null' EXIT
fail() { echo "layouts.sh: with libraries in $libraries $1" >&2; exit 1; }
quietly() { "$@" >"$scratch/output" 2>&1 || { cat "$scratch/output" >&2; fail "this fails: $*"; }; }
render() { quietly "$1/bin/perch" render --input samples/still/beauty.png --output "$scratch/$2.png" --maximum-blur 9; }

for libraries in lib lib64 "lib/$(gcc -print-multiarch)"; do
    quietly cmake --preset release "-DCMAKE_INSTALL_LIBDIR=$libraries"
    quietly cmake --build --preset release
    prefix="$scratch/in[to"
    quietly cmake --install build/release --prefix "$prefix"
    [ -d "$prefix/$libraries/Kestrel.plugin" ] || fail "the plug-in is elsewhere"
    render "$prefix" installed

    mkdir "$scratch/else where"
    mv "$prefix" "$scratch/else where/tree"
    render "$scratch/else where/tree" moved
    cmp "$scratch/installed.png" "$scratch/moved.png" || fail "the moved tree renders another picture"

    mv "$scratch/else where/tree" "$prefix"
    rmdir "$scratch/else where"
    quietly cmake --build --preset release --target uninstall
    [ ! -e "$prefix" ] || fail "there are still $(find "$prefix")"
    echo "Libraries in $libraries: installed, moved, run and removed"
done
