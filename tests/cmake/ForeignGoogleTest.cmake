# GoogleTest for another machine, from the sources that Debian installs beside its own build.
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest "${CMAKE_CURRENT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
