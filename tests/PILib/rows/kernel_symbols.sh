#!/bin/sh
# kernel_symbols.sh OBJECT...: fails if a kernel source defines a function that the linker may use for other sources
# too: it would hold instructions that not every processor has.
set -eu

kernels=0
for object; do
    case "$object" in *RowKernels_*) ;; *) continue ;; esac
    kernels=$((kernels + 1))
    symbols=$(nm -C --defined-only "$object")
    if printf '%s\n' "$symbols" | grep -E ' [Wwu] '; then
        echo "kernel_symbols: $object shares these functions" >&2
        exit 1
    fi
done
echo "$kernels kernel sources share no function"
