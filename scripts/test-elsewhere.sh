#!/bin/sh
# Builds for another system or processor and tests it in an emulator, for each preset named as an argument; names those
# that it leaves out because a compiler or an emulator is not installed.
set -eu
cd "$(dirname "$0")/.."

# needs PRESET: the programs that it takes
needs() {
    case $1 in
        windows-x64) echo clang++-14 ld.lld llvm-ar-14 x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-windres wine ;;
        linux-arm64) echo aarch64-linux-gnu-g++ qemu-aarch64 ;;
        linux-powerpc64) echo powerpc64-linux-gnu-g++ qemu-ppc64 ;;
        linux-i386) echo g++ ;;
        *) echo "test-elsewhere.sh: no preset $1 is tested elsewhere" >&2; exit 2 ;;
    esac
}

runnable=""
for preset; do
    lacking=""
    programs=$(needs "$preset")
    for program in $programs; do
        command -v "$program" >/dev/null || lacking="$lacking $program"
    done
    if [ -z "$lacking" ]; then runnable="$runnable $preset"; else echo "$preset is not tested: not installed are$lacking"; fi
done
[ -n "$runnable" ] || exit 0

# What the results are held against, and what writes the resources.
cmake --preset release
cmake --build --preset release --target render-cases
cmake --preset tools
cmake --build --preset tools
# shellcheck disable=SC2086 # the list is split on purpose
scripts/test.sh $runnable
