// `perch render` in a process of its own, whose progress goes to the pages.
#pragma once

#include <sys/types.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Events.h"

namespace perch {

class RenderRun {
public:
    explicit RenderRun(Events& events);
    ~RenderRun();  // cancels
    RenderRun(const RenderRun&) = delete;
    RenderRun& operator=(const RenderRun&) = delete;

    // The words of a command line, the program's name among them. False where one is under way. Throws Error
    // where no process can be started.
    bool start(const std::vector<std::string>& words);
    // False where none is under way.
    bool cancel();

private:
    void follow(int output);
    void tell(const std::string& state, const std::string& text, const std::string& progress);

    Events& events;
    std::mutex mutex;
    pid_t process = -1;      // -1: none is under way
    std::string outputName;  // as the words name it
    std::thread following;
};

}  // namespace perch
