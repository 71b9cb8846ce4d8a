// `perch render` in a process of its own, whose progress goes to the pages.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Child.h"
#include "Descriptor.h"
#include "Events.h"

namespace perch {

class RenderRun {
public:
    // `grace` is the time that a render gets to obey a signal when this ends.
    explicit RenderRun(Events& events, std::string program = kThisProgram,
                       std::chrono::milliseconds grace = std::chrono::seconds(2));
    ~RenderRun();  // cancels, and ends a render that does not obey
    RenderRun(const RenderRun&) = delete;
    RenderRun& operator=(const RenderRun&) = delete;

    // The words of a command line, the program's name among them. False where one is under way. Throws Error
    // where no process can be started.
    bool start(const std::vector<std::string>& words);
    // False where none is under way.
    bool cancel();

private:
    void follow(Child& process, const Descriptor& output, const std::string& outputName);
    void tell(const std::string& state, const std::string& sentence);

    Events& events;
    const std::string program;
    const std::chrono::milliseconds grace;
    std::mutex mutex;
    std::shared_ptr<Child> underWay;  // null: none is
    std::thread following;
};

}  // namespace perch
