#include "Child.h"

#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <system_error>

#include "Error.h"

namespace perch {

pid_t startChild(const char* program, std::vector<std::string> words, const PassedDescriptors& descriptors) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    // The same number twice has the descriptor outlive the execution.
    for (const auto& [ours, childs] : descriptors)
        posix_spawn_file_actions_adddup2(&files, ours, childs);
    pid_t child = -1;
    const int error = posix_spawnp(&child, program, &files, &attributes, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw Error(
            fmt::format("cannot start \"{}\": {}", words.front(), std::generic_category().message(error)));
    return child;
}

}  // namespace perch
