# 64-bit ARM by Debian's cross compiler; its programs run in qemu's user mode.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)
# GCC 12 takes the reversal of at most eight bytes for one of more, on this processor alone.
set(CMAKE_CXX_FLAGS_INIT -Wno-stringop-overflow)
