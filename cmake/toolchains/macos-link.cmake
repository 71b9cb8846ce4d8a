# How macos.cmake links a bundle; read after CMake has set its own rules.

# CMake finds out about byte order and pointers with this flag; Zig refuses the one for Apple's compiler.
set(CMAKE_C_VERBOSE_FLAG -v)
set(CMAKE_CXX_VERBOSE_FLAG -v)

set(runtime "${KESTREL_ZIG_ROOT}/runtime/${KESTREL_ZIG_TARGET}")
# The linker itself is called, so that its options need no prefix.
set(CMAKE_CXX_LINKER_WRAPPER_FLAG "")
string(JOIN " " CMAKE_CXX_CREATE_SHARED_MODULE
  "ld64.lld-14 -bundle -arch ${CMAKE_SYSTEM_PROCESSOR}"
  "-platform_version macos ${KESTREL_MACOS_MINIMUM} ${KESTREL_MACOS_MINIMUM} -dead_strip -S"
  "<LINK_FLAGS> -o <TARGET> <OBJECTS> <LINK_LIBRARIES>"
  "\"${runtime}/libc++.a\" \"${runtime}/libc++abi.a\" \"${runtime}/libcompiler_rt.a\""
  "\"${KESTREL_ZIG_PACKAGE}/lib/libc/darwin/libSystem.11.tbd\"")
