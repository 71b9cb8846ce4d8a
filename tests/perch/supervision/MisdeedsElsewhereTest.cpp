// Misdeeds at the commands that only some runs send, and under the other commands of the program. Each is one
// start of it.
#include <gtest/gtest.h>

#include <cctype>

#include "CommandLine.h"
#include "Misdeeds.h"

namespace perch::test {
namespace {

struct Elsewhere {
    const char* command;  // of the program
    const char* mode;
    End end;
    const char* told;  // the command of the effect at its end; else what is said
};

class MisdeedsElsewhereTest : public testing::TestWithParam<Elsewhere> {};

bool isCheck(const std::string& command) {
    return command.starts_with("check");
}

TEST_P(MisdeedsElsewhereTest, EndsWithASentence) {
    const auto& [arguments, mode, end, told] = GetParam();
    const CommandLine commandLine;
    const std::vector<std::string> files = commandLine.files();
    const HostileMode hostile(mode);
    const ProgramResult result = commandLine.run(std::string("perch ") + arguments);
    EXPECT_EQ(result.status, isCheck(arguments) || !endsTheEffect(end) ? 6 : 8) << result.err;
    const std::string& text = isCheck(arguments) ? result.out : result.err;
    if (endsTheEffect(end)) {
        EXPECT_TRUE(tellsOfTheEnd(text, end, told)) << text;
    } else {
        EXPECT_NE(text.find(told), std::string::npos) << text;
    }
    EXPECT_NE(text.find(isCheck(arguments) ? " FAILED: " : "perch: "), std::string::npos) << text;
    EXPECT_TRUE(isCheck(arguments) || result.out.empty()) << result.out;
    EXPECT_EQ(commandLine.files(), files);
}

std::string nameOf(const testing::TestParamInfo<Elsewhere>& test) {
    const std::string command = test.param.command;
    std::string name = command.substr(0, command.find(' ')) + "_" + test.param.mode;
    for (char& c : name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(
    Hostile, MisdeedsElsewhereTest,
    testing::Values(
        Elsewhere{"check {plugins}/Hostile.so --rule 1", "error@GLOBAL_SETUP", End::Failure,
                  "plug-in returned -1 at GLOBAL_SETUP"},
        Elsewhere{"check {plugins}/Hostile.so --rule 1", "throw@GLOBAL_SETUP", End::Throw, "GLOBAL_SETUP"},
        Elsewhere{"check {plugins}/Hostile.so --rule 1", "abort@loading", End::Crash, "loading"},
        Elsewhere{"check {plugins}/Hostile.so --rule 2", "abort@ABOUT", End::Crash, "ABOUT"},
        Elsewhere{"check {plugins}/Hostile.so --rule 2", "throw@ABOUT", End::Throw, "ABOUT"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "left-and-abort@GLOBAL_SETDOWN", End::Failure,
                  "; before that: GLOBAL_SETDOWN, host_dispose_handle: the handle has been disposed before"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "leave-named-thread@RENDER", End::Failure,
                  "GLOBAL_SETDOWN: threads of the effect that have not ended: "},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "leave-thread@loading", End::Failure,
                  "GLOBAL_SETDOWN: threads of the effect that have not ended: 1"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "rounding@pixel", End::Failure,
                  "RENDER, iterate: the rounding mode was changed"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "rounding@SMART_RENDER", End::Failure,
                  "SMART_RENDER: the rounding mode was changed"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "exit7@SMART_PRE_RENDER", End::Exit,
                  "SMART_PRE_RENDER"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "abort@ARBITRARY_CALLBACK", End::Crash,
                  "ARBITRARY_CALLBACK"},
        Elsewhere{"check {plugins}/Hostile.so --rule 9", "read@SEQUENCE_FLATTEN", End::Crash,
                  "SEQUENCE_FLATTEN"},
        Elsewhere{"check {plugins}/Hostile.so --rule 9", "exit0@SEQUENCE_RESETUP", End::Exit,
                  "SEQUENCE_RESETUP"},
        Elsewhere{"check {plugins}/Hostile.so --rule 9 --timeout 0.5", "hang@SEQUENCE_RESETUP", End::Hang,
                  "SEQUENCE_RESETUP"},
        Elsewhere{"check {plugins}/Hostile.so --rule 10", "write@USER_CHANGED_PARAM", End::Crash,
                  "USER_CHANGED_PARAM"},
        Elsewhere{"check {plugins}/Hostile.so --rule 10", "throw@UPDATE_PARAMS_UI", End::Throw,
                  "UPDATE_PARAMS_UI"},
        Elsewhere{"render --plugin {plugins}/Hostile.so -i rgb8.png -o out.png", "abort@SMART_RENDER",
                  End::Crash, "SMART_RENDER"},
        Elsewhere{"check {plugins}/Hostile.so --rule 3", "throw@deleting", End::Throw,
                  "delete_pre_render_data_func"},
        Elsewhere{"render --plugin {plugins}/Hostile.so -i rgb8.png -o out.png --timeout-frame 0.5",
                  "hang@deleting", End::Hang, "delete_pre_render_data_func"},
        Elsewhere{"describe {plugins}/Hostile.so", "abort@ARBITRARY_CALLBACK", End::Crash,
                  "ARBITRARY_CALLBACK"},
        Elsewhere{"describe {plugins}/Hostile.so --json", "exit0@loading", End::Exit, "loading"},
        Elsewhere{"describe {plugins}/Hostile.so", "throw@GLOBAL_SETDOWN", End::Throw, "GLOBAL_SETDOWN"},
        Elsewhere{"describe {plugins}/Hostile.so", "many-parameters@PARAMS_SETUP", End::Failure,
                  "an effect may declare 1000 parameters at most"},
        Elsewhere{"describe {plugins}/Hostile.so --timeout 0.2", "leave-group-and-hang@GLOBAL_SETUP",
                  End::Hang, "GLOBAL_SETUP"},
        Elsewhere{"curve --plugin {plugins}/Hostile.so --frames 1-2 --plain on", "read@PARAMS_SETUP",
                  End::Crash, "PARAMS_SETUP"},
        Elsewhere{"curve --plugin {plugins}/Hostile.so --frames 1-2 --plain on --plot plot.svg",
                  "exit0@GLOBAL_SETDOWN", End::Exit, "GLOBAL_SETDOWN"},
        Elsewhere{"preset --plugin {plugins}/Hostile.so -o look2.json", "throw@GLOBAL_SETDOWN", End::Throw,
                  "GLOBAL_SETDOWN"},
        Elsewhere{"preset --plugin {plugins}/Hostile.so", "overflow@GLOBAL_SETUP", End::Crash,
                  "GLOBAL_SETUP"}),
    nameOf);

}  // namespace
}  // namespace perch::test
