// Templates of Open Job Description, held to what is published of their structure, and run without a
// scheduler.
#include <gtest/gtest.h>

#include "Error.h"
#include "JobTemplate.h"
#include "JobTexts.h"
#include "TemplateCheck.h"

namespace perch::test {
namespace {

using Json = nlohmann::json;

TEST(JobTemplateTest, TemplateHasThePublishedStructure) {
    const JobTexts texts;
    for (const std::optional<int> threads : {std::optional<int>(), {0}, {4}}) {
        const Json json = Json::parse(jobTemplate(texts.tasks(kDifficultWords, threads)));
        EXPECT_EQ(breachesOf(json), std::vector<std::string>());
        EXPECT_EQ(json["steps"][0].contains("hostRequirements"), threads == 4);
    }
}

// Each breaks a rule.
TEST(JobTemplateTest, BreachesOfTheStructureAreFound) {
    const JobTexts texts;
    const Json sound = Json::parse(jobTemplate(texts.tasks({"a\nb"})));
    const struct {
        std::string place;
        Json value;
    } breaches[] = {
        {std::string("/") + kFormatKey, "jobtemplate-2024-01"},
        {"/name", ""},
        {"/name", std::string(129, 'a')},
        {"/parameterDefinitions", Json::array()},
        {"/parameterDefinitions/0/name", "has space"},
        {"/parameterDefinitions/0/name", "Argument1"},
        {"/parameterDefinitions/0/dataFlow", "BOTH"},
        {"/parameterDefinitions/1/default", std::string(1025, 'a')},
        {"/parameterDefinitions/1/type", "TEXT"},
        {"/steps", Json::array()},
        {"/steps/0/name", "line\nbreak"},
        {"/steps/0/tasks", 8},
        {"/steps/0/hostRequirements/amounts/0/min", 0},
        {"/steps/0/parameterSpace/taskParameterDefinitions/0/range", "1..8"},
        {"/steps/0/parameterSpace/taskParameterDefinitions/0/name", "1st"},
        {"/steps/0/script/actions/onRun/command", ""},
        {"/steps/0/script/actions/onRun/args/0", "line\nbreak"},
        {"/steps/0/script/actions/onRun/args/0", "{{Param.Unknown}}"},
        {"/steps/0/script/actions/onRun/args/0", "}}"},
        {"/steps/0/script/actions/onRun/args/0", 8},
        {"/steps/0/script/actions/onRun/cancelation/mode", "ASK"},
    };
    for (const auto& [place, value] : breaches) {
        Json broken = sound;
        broken[Json::json_pointer(place)] = value;
        EXPECT_FALSE(breachesOf(broken).empty()) << place << ": " << value;
    }
}

TEST(JobTemplateTest, TasksGetEveryWordAsItWas) {
    const JobTexts texts;
    const Json json = Json::parse(jobTemplate(texts.tasks(kDifficultWords)));
    std::map<std::string, std::string> values;
    for (const Json& parameter : json["parameterDefinitions"])
        values["Param." + parameter["name"].get<std::string>()] = parameter["default"];
    const Json& action = json["steps"][0]["script"]["actions"]["onRun"];
    for (int shard = 1; shard <= kTasks; ++shard) {
        values["Task.Param.Shard"] = std::to_string(shard);
        std::vector<std::string> command{resolved(action["command"], values)};
        for (const Json& argument : action["args"])
            command.push_back(resolved(argument, values));
        const ProgramResult result = runProgram(command, "/");
        EXPECT_EQ(JobTexts::told(result.out),
                  std::vector<std::string>{texts.expected(kDifficultWords, shard)});
        EXPECT_EQ(result.err, "");
    }
}

TEST(JobTemplateTest, TasksTellTheSchedulerHowFarTheyAreUnlessTheCommandSaysHow) {
    RenderTasks tasks = JobTexts().tasks({"-q"});
    const auto argumentsOf = [&tasks] {
        return Json::parse(jobTemplate(tasks))["steps"][0]["script"]["actions"]["onRun"]["args"];
    };
    EXPECT_EQ(std::ranges::count(argumentsOf(), "--progress"), 0);
    tasks.saysProgress = false;
    const Json arguments = argumentsOf();
    const auto option = std::ranges::find(arguments, "--progress");
    ASSERT_NE(option, arguments.end());
    EXPECT_EQ(*(option + 1), "openjd");
}

TEST(JobTemplateTest, WhatATemplateCannotHoldIsRefused) {
    const JobTexts texts;
    EXPECT_THROW(jobTemplate(texts.tasks({"\xFF.png"})), UsageError);
    EXPECT_THROW(jobTemplate(texts.tasks({std::string(1025, '\n')})), UsageError);
    EXPECT_NO_THROW(jobTemplate(texts.tasks({std::string(5000, 'a')})));
    // Each of these takes one of the 50 parameters.
    for (const char* const word : {"\n", "\x7F", "\xC2\x85", "a{{b", "a}}b"}) {
        EXPECT_NO_THROW(jobTemplate(texts.tasks(std::vector<std::string>(49, word)))) << word;
        EXPECT_THROW(jobTemplate(texts.tasks(std::vector<std::string>(50, word))), UsageError) << word;
    }
}

}  // namespace
}  // namespace perch::test
