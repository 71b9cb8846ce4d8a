#include "CommandLine.h"

#include <sys/wait.h>

#include <cstdlib>

Outcome PullFocus(const ScratchFolder& folder, const std::string& arguments, const std::string& before) {
    const ScratchFolder streams;
    const std::string command = "cd '" + folder.path + "' && " + before + " exec '" PULL_FOCUS "' " +
                                arguments + " >'" + streams.file("out") + "' 2>'" + streams.file("err") + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, BytesOf(streams.file("out")),
            BytesOf(streams.file("err"))};
}
