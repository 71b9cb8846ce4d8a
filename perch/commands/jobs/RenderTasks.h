// A render command line that is to be divided among tasks, of which each renders its shard of the frames.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace perch {

struct RenderTasks {
    std::vector<std::string> command;  // the program, "render" and its options
    int count = 1;
    std::optional<int> threads{};  // of each task, 0 for one per processor; absent: the command does not say
    bool saysProgress = false;     // how its progress is told
    std::string folder;            // absolute: where the command's relative names begin
};

}  // namespace perch
