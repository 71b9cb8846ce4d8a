#!/bin/sh
# Builds the plug-in for each system and packs what ships into dist/, then reads all of it back. Nothing in the archives
# tells when or where they were made.
set -eu
cd "$(dirname "$0")/.."

value() { sed -n "s/^set($1 \([^ )]*\)).*/\1/p" cmake/Version.cmake; }
version=$(value KESTREL_VERSION)
minimum=$(value KESTREL_MACOS_MINIMUM)
SOURCE_DATE_EPOCH=$(scripts/source-date.sh)
export SOURCE_DATE_EPOCH

scripts/install-zig.sh
for preset in tools products windows-x64 macos-arm64 macos-x64 linux-x64; do
    target=Kestrel
    [ "$preset" != tools ] || target=make-resources
    [ "$preset" != products ] || target=all
    cmake --preset "$preset"
    cmake --build --preset "$preset" --target "$target"
done

staged=build/staged
rm -rf dist "$staged"
mkdir -p dist

# stage SYSTEM: an empty folder with the system's README
stage() {
    folder="$staged/Kestrel-$version-$1"
    mkdir -p "$folder"
    sed "s/@VERSION@/$version/; s/@MACOS_MINIMUM@/$minimum/" "packaging/README-${1%-*}.txt" >"$folder/README.txt"
}

stage windows-x64
cp build/windows-x64/Kestrel.aex "$folder"
sed -i 's/$/\r/' "$folder/README.txt"
scripts/pack.py "dist/Kestrel-$version-windows-x64.zip" "$folder"

stage macos-universal
cp -R build/macos-arm64/Kestrel.plugin "$folder"
program=Kestrel.plugin/Contents/MacOS/Kestrel
llvm-lipo-14 -create "build/macos-x64/$program" "build/macos-arm64/$program" -output "$folder/$program"
scripts/pack.py "dist/Kestrel-$version-macos-universal.zip" "$folder"

stage linux-x64
cp -R build/linux-x64/Kestrel.plugin "$folder"
mkdir -p "$folder/bin" "$folder/lib/perch" "$folder/share/man/man1"
cp build/products/bin/perch "$folder/bin"
cp build/products/lib/perch/pictures.so "$folder/lib/perch"
strip "$folder/bin/perch" "$folder/lib/perch/pictures.so"
cp build/products/perch.1 "$folder/share/man/man1"
scripts/pack.py "dist/Kestrel-$version-linux-x64.tar.gz" "$folder"

(cd build/products && cpack -G DEB -B "$OLDPWD/$staged/deb")
cp "$staged"/deb/*.deb dist

if git rev-parse --git-dir >/dev/null 2>&1; then
    git archive --prefix="Kestrel-$version-source/" HEAD | gzip -9n >"dist/Kestrel-$version-source.tar.gz"
else
    echo "There is no archive of the source in dist/: it is made from a git checkout."
fi

(cd dist && sha256sum -- * >SHA256SUMS)
tests/bundles/check_dist.py dist
echo "What ships is in dist/:"
ls -l dist
