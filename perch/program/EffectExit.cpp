// What effects and the libraries that they bring call when they call exit(): the program's own function comes
// before the system's. In a worker it ends the process at once, since the exit handlers of other libraries
// may wait forever for threads that are at work.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

#include "Worker.h"

extern "C" __attribute__((visibility("default"))) void exit(int status) noexcept {
    if (!perch::isWorker()) {
        using Exit = void (*)(int);
        if (const auto systemExit = reinterpret_cast<Exit>(dlsym(RTLD_NEXT, "exit"))) systemExit(status);
    }
    _exit(status);
}
