# What every target of this project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

# The results are the same bytes on every machine: no fused multiply-add, no reassociation, and on 32-bit x86
# SSE instead of the x87 unit with its wider intermediates.
add_library(kestrel-numerics INTERFACE)
target_compile_options(kestrel-numerics INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>
  $<$<CXX_COMPILER_ID:MSVC>:/fp:precise>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "i.86|x86|amd64|AMD64")
  target_compile_options(kestrel-numerics INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-msse2 -mfpmath=sse>)
endif()

# Warnings for the project's own sources; never handed on to a consumer.
add_library(kestrel-warnings INTERFACE)
target_compile_options(kestrel-warnings INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2>
  # Constructors name their parameters like the fields they set; only Clang knows that this hides nothing.
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wshadow>
  $<$<CXX_COMPILER_ID:MSVC>:/W4>)
if(KESTREL_WARNINGS_AS_ERRORS)
  target_compile_options(kestrel-warnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Werror> $<$<CXX_COMPILER_ID:MSVC>:/WX>)
endif()

# The folder of a bundle that holds the library for this processor.
string(REGEX REPLACE "^(x86_64|AMD64)$" "x86-64" KESTREL_ARCHITECTURE "${CMAKE_SYSTEM_PROCESSOR}")
if(KESTREL_ARCHITECTURE STREQUAL "x86-64" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(KESTREL_ARCHITECTURE x86)
endif()

if(KESTREL_SANITIZE)
  add_compile_options(-fsanitize=${KESTREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KESTREL_SANITIZE})
endif()

# What ships stops at a write past the end of an array instead of going on with damaged memory, keeps the addresses that
# calls across libraries go through read-only, and marks where indirect jumps may land, for processors that check it.
# docs/performance.md has the cost. Sanitizers see more by themselves.
if(KESTREL_HARDENING AND NOT KESTREL_SANITIZE)
  include(CheckCXXCompilerFlag)
  include(CheckLinkerFlag)
  set(CMAKE_REQUIRED_FLAGS -Werror)  # clang takes another processor's flags, with a warning
  foreach(flag IN ITEMS -fstack-protector-strong -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "KESTREL_HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      add_compile_options(${flag})
    endif()
  endforeach()
  unset(CMAKE_REQUIRED_FLAGS)
  # The C library's checks need the optimiser. Undefined first, as some distributions define it already.
  add_compile_options("$<$<AND:$<CXX_COMPILER_ID:GNU,Clang,AppleClang>,$<NOT:$<CONFIG:Debug>>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
    check_linker_flag(CXX LINKER:-z,relro,-z,now KESTREL_HAS_Z_NOW)
  endif()
  if(KESTREL_HAS_Z_NOW)
    add_link_options(LINKER:-z,relro,-z,now)
  endif()
endif()
