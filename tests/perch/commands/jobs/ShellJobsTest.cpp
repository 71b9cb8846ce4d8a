// Jobs for Slurm and GNU parallel, read by a shell.
#include <gtest/gtest.h>

#include "JobTexts.h"
#include "ParallelLine.h"
#include "ShellText.h"
#include "SlurmScript.h"

namespace perch::test {
namespace {

TEST(ShellJobsTest, ScriptForSlurmIsAsOneWouldWriteIt) {
    const std::vector<std::string> command{"perch", "render", "-i", "in.####.exr", "-o", "out.####.exr"};
    const RenderTasks tasks{.command = command, .count = 8, .folder = "/shot 12"};
    EXPECT_EQ(slurmScript(tasks),
              "#!/bin/sh\n"
              "#SBATCH --array=1-8\n"
              "cd '/shot 12' || exit\n"
              "exec perch render -i in.####.exr -o out.####.exr --threads \"${SLURM_CPUS_PER_TASK:-1}\" "
              "--shard \"$SLURM_ARRAY_TASK_ID/8\"\n");
}

TEST(ShellJobsTest, ThreadsOfTheCommandAreProcessorsOfTheTask) {
    const JobTexts texts;
    const std::string script = slurmScript(texts.tasks({"--threads", "4"}, 4));
    EXPECT_NE(script.find("#SBATCH --cpus-per-task=4\n"), std::string::npos) << script;
    EXPECT_EQ(script.find("SLURM_CPUS_PER_TASK"), std::string::npos) << script;
}

TEST(ShellJobsTest, ThreadsThatTheCommandSaysAreSaidOnce) {
    const JobTexts texts;
    for (const int threads : {0, 4}) {
        const RenderTasks tasks = texts.tasks({"--threads", std::to_string(threads)}, threads);
        for (const std::string& job : {slurmScript(tasks), parallelLine(tasks)})
            EXPECT_EQ(job.find("--threads"), job.rfind("--threads")) << job;
    }
    EXPECT_EQ(slurmScript(texts.tasks({"--threads", "0"}, 0)).find("--cpus-per-task"), std::string::npos);
}

TEST(ShellJobsTest, SlurmsTasksGetEveryWordAsItWas) {
    const JobTexts texts;
    std::ofstream(texts.folder / "job.sh") << slurmScript(texts.tasks(kDifficultWords));
    for (int shard = 1; shard <= kTasks; ++shard) {
        const std::string task = "SLURM_ARRAY_TASK_ID=" + std::to_string(shard);
        const ProgramResult result =
            runProgram({"/usr/bin/env", task, "/bin/sh", (texts.folder / "job.sh").string()}, "/");
        EXPECT_EQ(JobTexts::told(result.out),
                  std::vector<std::string>{texts.expected(kDifficultWords, shard)});
        EXPECT_EQ(result.err, "");
    }
}

TEST(ShellJobsTest, LineOfParallelIsAsOneWouldWriteIt) {
    const std::vector<std::string> command{"perch", "render", "-i", "in.####.exr", "-o", "out.####.exr"};
    const RenderTasks tasks{.command = command, .count = 8, .folder = "/shot12"};
    EXPECT_EQ(parallelLine(tasks),
              "cd /shot12 && seq 8 | PARALLEL_SHELL=/bin/sh parallel "
              "perch render -i in.####.exr -o out.####.exr --threads 1 --shard {}/8\n");
}

TEST(ShellJobsTest, TasksOfParallelGetEveryWordAsItWas) {
    const JobTexts texts;
    const ProgramResult result =
        runProgram({"/bin/sh", "-c", parallelLine(texts.tasks(kDifficultWords))}, "/");
    EXPECT_EQ(result.status, 0) << result.err;
    const std::vector<std::string> expected{texts.expected(kDifficultWords, 1),
                                            texts.expected(kDifficultWords, 2)};
    EXPECT_EQ(JobTexts::told(result.out), expected);
    EXPECT_FALSE(std::filesystem::exists(texts.folder / "made"));
}

}  // namespace
}  // namespace perch::test
