#pragma once

#include <string>

namespace pictures {

// Who is told of each temporary file from before it is made until it is gone, to remove it where this process
// cannot. On any thread.
struct TemporaryFileWatcher {
    void (*appears)(const std::string& path);
    void (*isGone)(const std::string& path);
};

}  // namespace pictures
