# macOS by Zig's compiler and headers. LLVM's linker makes the bundle: Zig's makes libraries alone, and exports all that
# the C++ library defines. The C++ library is linked in, so that the oldest system that we name has what we use.
# The file that includes this one sets CMAKE_SYSTEM_PROCESSOR and KESTREL_ZIG_PROCESSOR.
include("${CMAKE_CURRENT_LIST_DIR}/../Version.cmake")
set(CMAKE_SYSTEM_NAME Darwin)
set(KESTREL_ZIG_TARGET ${KESTREL_ZIG_PROCESSOR}-macos.${KESTREL_MACOS_MINIMUM})
include("${CMAKE_CURRENT_LIST_DIR}/zig.cmake")
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-14)
set(CMAKE_USER_MAKE_RULES_OVERRIDE "${CMAKE_CURRENT_LIST_DIR}/macos-link.cmake")
