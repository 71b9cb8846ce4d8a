// How the library fails: it throws; nothing returns an error code.
//   int 999            a failed assertion; AssertFile and AssertLine say where
//   other int          an error code of the host, passed through ThrowIfErr
//   LibraryError       the library's own errors that are not programming mistakes
//   std::bad_alloc     out of memory
//   std::bad_cast      a buffer of the wrong concrete class
// The globals are plain and unsynchronised: when two threads fail at once, the last writer wins.
#pragma once

#include <cstdint>

#include "Geometry.h"

namespace PILib {

// Thrown by a failed assertion.
inline constexpr int kAssertionFailed = 999;

// Thrown by a context when the user has cancelled; hosts treat this code as a silent end of the command.
inline constexpr int kUserCancelled = 517;

// Thrown by a context that cannot allocate a handle; the host's code for it.
inline constexpr int kOutOfMemory = 4;

// What a row run reports for an exception that carries no code; the host's code for damaged internal state.
inline constexpr int kInternalDamage = 512;

enum LibraryError : std::int32_t {
    kEndOfArchive = 512,  // a read past the end of an archive
};

// Where the last failed assertion stood; null and 0 until the first failure. The file is the source's path in
// the tree without its extension.
extern const char* AssertFile;
extern std::int32_t AssertLine;

// For debugging code to read and set; the library never does.
extern bool gDebugMode;
extern bool gDebugHit;
extern TPoint<int> gDebugPoint;

// Returns if `condition` holds, else records `file` (kept by pointer) and `line` and throws kAssertionFailed.
// The lines are identifiers known to users of the system: they name the check, not today's position in the
// source.
void _Assert(bool condition, int line, const char* file);  // NOLINT(bugprone-reserved-identifier): given name

// Throws `err` as an int unless it is 0.
void ThrowIfErr(int err);

}  // namespace PILib
