// The basic suite: which tables it hands out, and its memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "OneCommand.h"
#include "PF_Suites.h"
#include "Suites.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SuitesTest = OneCommandTest;

struct SuiteCase {
    const char* name;
    A_long version;
    int slots;
};

constexpr SuiteCase kSuites[] = {
    {"PF Iterate8 Suite", 1, 5},
    {"PF Iterate8 Suite", 2, 5},
    {"PF iterate16 Suite", 1, 3},
    {"PF iterate16 Suite", 2, 3},
    {"PF Param Utils Suite", 1, 10},
    {"PF Param Utils Suite", 2, 10},
    {"PF Param Utils Suite", 3, 9},
    {"PF iterateFloat Suite", 1, 3},
    {"PF iterateFloat Suite", 2, 3},
    {"PF Effect UI Suite", 1, 1},
    {"PF ColorParamSuite", 1, 1},
    {"PF PointParamSuite", 1, 1},
    {"PF AngleParamSuite", 1, 1},
    {"PF AE Channel Suite", 1, 5},
    {"PF AE App Suite", 6, 11},
    {"PF AE App Suite", 7, 12},
    {"PF AE App Suite", 1, 15},
    {"AEGP Effect Suite", 2, 17},
    {"AEGP Effect Suite", 3, 17},
    {"AEGP Effect Suite", 5, 23},
    {"PF ANSI Suite", 1, 19},
    {"PF Handle Suite", 2, 6},
    {"PF World Suite", 2, 3},
    {"PF World Transform Suite", 1, 7},
    {"PF Fill Matte Suite", 2, 7},
    {"PF Pixel Data Suite", 1, 3},
    {"PF Effect Sequence Data Suite", 1, 1},
    {"AEGP Utility Suite", 3, 9},
    {"AEGP Utility Suite", 5, 19},
    {"AEGP Utility Suite", 7, 25},
    {"AEGP Utility Suite", 13, 40},
    {"AEGP PF Interface Suite", 1, 5},
    {"AEGP Stream Suite", 4, 20},
    {"AEGP Stream Suite", 11, 40},
    {"AEGP Dynamic Stream Suite", 1, 17},
    {"AEGP Dynamic Stream Suite", 5, 40},
    {"AEGP Effect Suite", 1, 16},
    {"AEGP Effect Suite", 4, 40},
};

TEST_F(SuitesTest, EveryListedSuiteIsHandedOutWithoutNullSlots) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        for (const SuiteCase& suite : kSuites) {
            SCOPED_TRACE(std::string(suite.name) + " " + std::to_string(suite.version));
            const void* table = nullptr;
            ASSERT_EQ(call.in->pica_basicP->AcquireSuite(suite.name, suite.version, &table), 0);
            const auto* slots = static_cast<void* const*>(table);
            for (int slot = 0; slot < suite.slots; ++slot)
                EXPECT_NE(slots[slot], nullptr) << "slot " << slot;
            EXPECT_EQ(call.in->pica_basicP->ReleaseSuite(suite.name, suite.version), 0);
        }
    });
    EXPECT_THAT(found, IsEmpty());
}

// The parts between separators, without the spaces about them.
std::vector<std::string> partsOf(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        const std::size_t first = part.find_first_not_of(' ');
        if (first != std::string::npos)
            parts.push_back(part.substr(first, part.find_last_not_of(' ') - first + 1));
    }
    return parts;
}

// Rows as "| PF Iterate8 Suite, PF iterate16 Suite | 1, 2 | all |".
TEST_F(SuitesTest, TheTableInTheDocumentsListsEverySuiteAndVersion) {
    std::ifstream document(PERCH_SOURCES "/docs/perch.md");
    std::set<std::pair<std::string, int>> documented;
    for (std::string line; std::getline(document, line);) {
        const std::vector<std::string> cells = partsOf(line, '|');
        if (cells.size() != 3 || cells[0].find("Suite") == std::string::npos) continue;
        for (const std::string& name : partsOf(cells[0], ','))
            for (const std::string& version : partsOf(cells[1], ','))
                documented.emplace(name, std::stoi(version));
    }
    std::set<std::pair<std::string, int>> listed;
    std::set<std::string> names;
    for (const SuiteCase& suite : kSuites) {
        listed.emplace(suite.name, suite.version);
        names.insert(suite.name);
    }
    EXPECT_EQ(documented, listed);
    EXPECT_EQ(suiteNames(), names);
}

TEST_F(SuitesTest, OtherNamesAndVersionsAreRefused) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        for (const auto& [name, version] : {SuiteName{"PF Iterate8 Suite", 3}, SuiteName{"PF Iterate8", 1},
                                            SuiteName{"", 1}, SuiteName{"AEGP Layer Suite", 1}}) {
            const void* table = &table;
            EXPECT_NE(call.in->pica_basicP->AcquireSuite(name.c_str(), version, &table), 0) << name;
        }
        const void* table = nullptr;
        EXPECT_NE(call.in->pica_basicP->AcquireSuite(nullptr, 1, &table), 0);
    });
}

TEST_F(SuitesTest, WithheldSuitesAreRefused) {
    HostOptions options = strictOptions();
    options.withheldSuites = {{"PF Iterate8 Suite", 1}, {"PF Handle Suite", 0}};
    runAt(
        PF_Cmd_RENDER,
        [](const EffectCall& call) {
            EXPECT_EQ(call.suite<PF_Iterate8Suite1>("PF Iterate8 Suite", 1), nullptr);
            EXPECT_NE(call.suite<PF_Iterate8Suite1>("PF Iterate8 Suite", 2), nullptr);
            EXPECT_EQ(call.suite<PF_HandleSuite1>("PF Handle Suite", 2), nullptr);
        },
        options);
}

TEST_F(SuitesTest, HostWithoutSuitesGivesNoBasicSuite) {
    HostOptions options = strictOptions();
    options.offersSuites = false;
    runAt(
        PF_Cmd_RENDER, [](const EffectCall& call) { EXPECT_EQ(call.in->pica_basicP, nullptr); }, options);
}

TEST_F(SuitesTest, HostVersionIsAsAsked) {
    HostOptions options = strictOptions();
    options.interfaceVersion = {12, 10};
    runAt(
        PF_Cmd_RENDER,
        [](const EffectCall& call) {
            EXPECT_EQ(call.in->version.major, 12);
            EXPECT_EQ(call.in->version.minor, 10);
        },
        options);
}

TEST_F(SuitesTest, SuiteHeldAtTheEndIsANoteAndReleasedTooOftenAFault) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        call.suite<PF_HandleSuite1>("PF Handle Suite", 2);
        EXPECT_NE(call.in->pica_basicP->ReleaseSuite("PF World Suite", 2), 0);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    {
        Sequence sequence(effect);
        sequence.render(request);
    }
    effect.close();
    std::vector<std::string> lines;
    for (const Finding& finding : effect.findings())
        lines.push_back(describe(finding));
    EXPECT_THAT(lines,
                ElementsAre("RENDER, ReleaseSuite: \"PF World Suite\" version 2 is released more often than "
                            "acquired",
                            "note: GLOBAL_SETDOWN, AcquireSuite: \"PF Handle Suite\" version 2 is acquired 1 "
                            "more times than released"));
}

TEST_F(SuitesTest, TableThatTheEffectWritesIntoIsWholeForTheNextCommand) {
    const auto handles = [](const EffectCall& call) {
        // Effects are given constants, and some take no notice.
        return const_cast<PF_HandleSuite1*>(call.suite<PF_HandleSuite1>("PF Handle Suite", 2));
    };
    script.on(PF_Cmd_FRAME_SETUP, [&](const EffectCall& call) {
        handles(call)->host_new_handle = nullptr;
        return PF_Err_NONE;
    });
    runAt(PF_Cmd_RENDER, [&](const EffectCall& call) { EXPECT_NE(handles(call)->host_new_handle, nullptr); });
    EXPECT_THAT(found, ElementsAre("FRAME_SETUP: a table of callbacks was changed"));
}

TEST_F(SuitesTest, BlocksKeepTheirBytesWhenTheyGrow) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const SPBasicSuite& basic = *call.in->pica_basicP;
        void* block = nullptr;
        ASSERT_EQ(basic.AllocateBlock(3, &block), 0);
        std::memcpy(block, "xyz", 3);
        void* grown = nullptr;
        ASSERT_EQ(basic.ReallocateBlock(block, 5000, &grown), 0);
        EXPECT_EQ(std::memcmp(grown, "xyz", 3), 0);
        EXPECT_EQ(basic.FreeBlock(grown), 0);
        EXPECT_NE(basic.FreeBlock(grown), 0);
        EXPECT_NE(basic.AllocateBlock(~std::size_t{0}, &block), 0);
        EXPECT_NE(basic.IsEqual("a", "a"), 0);
        EXPECT_EQ(basic.IsEqual("a", "b"), 0);
        EXPECT_NE(basic.Undefined(), 0);
    });
    EXPECT_THAT(
        found,
        ElementsAre("RENDER, FreeBlock: the block is not one of the host's, or has been freed before"));
}

}  // namespace
}  // namespace perch::test
