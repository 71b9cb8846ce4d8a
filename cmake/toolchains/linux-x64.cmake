# Linux with a C library as old as 2.17, and the C++ library linked in: the plug-in loads on the systems of studios, which
# are years behind.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KESTREL_ZIG_TARGET x86_64-linux-gnu.2.17)
include("${CMAKE_CURRENT_LIST_DIR}/zig.cmake")
set(KESTREL_PLUGIN_SOURCES "${CMAKE_CURRENT_LIST_DIR}/../zig/Unload.cpp")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-s")
