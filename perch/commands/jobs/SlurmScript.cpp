#include "SlurmScript.h"

#include <fmt/format.h>

#include "ShellText.h"

namespace perch {

std::string slurmScript(const RenderTasks& tasks) {
    std::string script = fmt::format("#!/bin/sh\n#SBATCH --array=1-{}\n", tasks.count);
    if (tasks.threads.value_or(0) > 0) script += fmt::format("#SBATCH --cpus-per-task={}\n", *tasks.threads);
    // What the submitter asks for counts where the command does not say it.
    const char* const threads = tasks.threads ? "" : R"( --threads "${SLURM_CPUS_PER_TASK:-1}")";
    return script + fmt::format("cd {} || exit\nexec {}{} --shard \"$SLURM_ARRAY_TASK_ID/{}\"\n",
                                shellWord(tasks.folder), shellWords(tasks.command), threads, tasks.count);
}

}  // namespace perch
