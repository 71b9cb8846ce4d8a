# Windows by Debian's clang with mingw-w64's C and C++ libraries (posix threads), all linked in. Not by its GCC, which
# cannot place vectors of 32 and 64 bytes on the stack: it takes the stack to be aligned to 16 bytes there and no more.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(triple x86_64-w64-mingw32)

execute_process(COMMAND ${triple}-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc_root "${libgcc}" DIRECTORY)
set(system_root "/usr/${triple}")

set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_C_COMPILER_TARGET ${triple})
set(CMAKE_CXX_COMPILER_TARGET ${triple})
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_AR llvm-ar-14)
set(CMAKE_RANLIB llvm-ranlib-14)

# clang looks for these libraries where other distributions have them.
set(CMAKE_C_FLAGS_INIT "-nostdlibinc -isystem ${system_root}/include")
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -nostdlibinc -isystem \"${gcc_root}/include/c++\" \
-isystem \"${gcc_root}/include/c++/${triple}\" -isystem ${system_root}/include")
# No time of the build in the file: the same input gives the same bytes.
string(JOIN " " linker_flags "-Wno-unused-command-line-argument -fuse-ld=lld -static -s -Wl,--no-insert-timestamp"
  "-B\"${gcc_root}\" -B${system_root}/lib -L\"${gcc_root}\" -L${system_root}/lib -lpthread -lssp")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${linker_flags}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${linker_flags}")

set(CMAKE_FIND_ROOT_PATH ${system_root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
