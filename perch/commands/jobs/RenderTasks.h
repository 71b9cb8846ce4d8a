// A render command line that is to be divided among tasks, of which each renders its shard of the frames.
#pragma once

#include <string>
#include <vector>

namespace perch {

struct RenderTasks {
    std::vector<std::string> command;  // the program, "render" and its options
    int count = 1;
    int threads = 0;     // of each task, as the command says; 0: it does not say
    std::string folder;  // absolute: where the command's relative names begin
};

}  // namespace perch
