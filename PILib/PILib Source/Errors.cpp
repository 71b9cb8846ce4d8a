#include "Errors.h"

namespace PILib {

const char* AssertFile = nullptr;
std::int32_t AssertLine = 0;

bool gDebugMode = false;
bool gDebugHit = false;
TPoint<int> gDebugPoint = {0, 0};

// NOLINTNEXTLINE(bugprone-reserved-identifier): given name
void _Assert(bool condition, int line, const char* file) {
    if (condition) return;
    AssertLine = line;
    AssertFile = file;
    throw kAssertionFailed;
}

void ThrowIfErr(int err) {
    if (err != 0) throw err;
}

}  // namespace PILib
