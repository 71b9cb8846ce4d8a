// The options of a command line that say which frames of a sequence are rendered.
#pragma once

#include <string>

#include "FramePlan.h"

namespace CLI {
class App;
}

namespace perch {

// As they were given.
struct SequenceTexts {
    std::string frames;
    bool noPattern = false;
    std::string missingFrame = "error";
    std::string missingLayerFrame = "error";
    std::string shard;
};

// Makes `app` take the options into `texts`, which must outlive it.
void addSequenceOptions(CLI::App& app, SequenceTexts& texts);

// Sets what the options that `app` met stand for. Throws UsageError with what was expected.
void takeSequenceOptions(const CLI::App& app, const SequenceTexts& texts, PictureNames& names);

// What of its files the input's name selects, as ":beauty" at its end does; takes it off the name.
std::string takeSelected(PictureNames& names);

}  // namespace perch
