// A host that sends commands in any order, with handles, records, sizes and values that no host should send:
// flat bytes for an instance, old and cleared handles, null pointers, negative and huge pictures. What it
// tells about memory is true wherever the plug-in cannot know better.
//
//   Choices choices(seed);
//   HostileHost host(PluginMain, choices);
//   EXPECT_EQ("", host.run(60));
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "RecordingHost.h"

// Numbers out of given bytes, and random ones after them; the same for the same seed and bytes.
class Choices {
public:
    explicit Choices(std::uint32_t seed, std::span<const std::uint8_t> bytes = {})
        : random(seed), bytes(bytes) {}
    // 0 to limit - 1.
    std::size_t below(std::size_t limit);
    bool oneIn(std::size_t n) { return below(n) == 0; }
    template <class Values>
    const auto& of(const Values& values) {
        return values[below(std::size(values))];
    }

private:
    std::mt19937 random;
    std::span<const std::uint8_t> bytes;
};

class HostileHost : public RecordingHost {
public:
    HostileHost(PF_EntryPoint entryPoint, Choices& choices);

    // Global set-up, `count` commands and global set-down. What went wrong: "" if each command ended with 0,
    // a cancel, or an error with the plug-in's message for it, and nothing was written outside the pictures.
    std::string run(int count);
    int refused() const { return refusals; }
    int rendered() const { return renders; }

private:
    struct Call;

    PF_Cmd chooseCommand();
    PF_Handle chooseHandle(PF_Handle usual);
    void makeHandles();
    void bendRecords(Call& call);
    void bendValues();
    void bendCallbacks();
    PF_LayerDef chooseWorld();
    PF_Err send(PF_Cmd command, bool bent);
    // `flat`: the living handle that the command was called with as sequence data, or null.
    void keepHandles(PF_Cmd command, PF_Err result, PF_Handle flat);
    void judge(PF_Cmd command, PF_Err result, bool hasMessage);

    Choices& choices;
    PF_UtilCallbacks allUtils;
    PF_InteractCallbacks allInteractions;
    PF_LayerDef outputDef{};
    std::vector<std::unique_ptr<HostWorld>> pictures;  // of one depth
    std::unique_ptr<HostWorld> controlPicture;
    std::vector<PF_ParamDef> defaults;
    std::vector<PF_Handle> known;  // each handle that was ever in a record
    PF_Handle global = nullptr;    // what a well-behaved host would send
    PF_Handle sequence = nullptr;
    PF_Handle frame = nullptr;
    PF_Cmd following = -1;  // the rest of a frame
    bool hasParams = false;
    std::string wrong;
    int refusals = 0;
    int renders = 0;
};
