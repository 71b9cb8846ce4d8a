#include "ParallelLine.h"

#include <fmt/format.h>

#include "ShellText.h"

namespace perch {
namespace {

// GNU parallel replaces "{}", "{.}", "{1}", "{= ... =}" and the like wherever they stand. An empty pair of
// quotes behind each brace means nothing to the shell and hides them: 'a{}b' becomes 'a{''}b'.
std::string withoutReplacements(const std::string& text) {
    std::string hidden;
    for (const char c : text)
        hidden += c == '{' ? "{''" : std::string(1, c);
    return hidden;
}

}  // namespace

// The shell of this line reads the command once and parallel's own shell, which is to be the same, once more.
std::string parallelLine(const RenderTasks& tasks) {
    std::string words;
    for (const std::string& word : tasks.command)
        words += shellWord(withoutReplacements(shellWord(word))) + ' ';
    // As many tasks at once as there are processors.
    if (!tasks.threads) words += "--threads 1 ";
    return fmt::format("cd {} && seq {} | PARALLEL_SHELL=/bin/sh parallel {}--shard {{}}/{}\n",
                       shellWord(tasks.folder), tasks.count, words, tasks.count);
}

}  // namespace perch
