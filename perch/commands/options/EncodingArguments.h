// The options of how files are written: --compression and --jpeg-quality.
#pragma once

#include <string>
#include <vector>

#include "EncodingOptions.h"

namespace CLI {
class App;
}

namespace perch {

// As they were given; empty: not.
struct EncodingTexts {
    std::string compression;
    std::string jpegQuality;
};

void addEncodingOptions(CLI::App& app, EncodingTexts& texts);

// Throws UsageError.
void takeEncodingOptions(const EncodingTexts& texts, pictures::EncodingOptions& encoding);

// A sentence for each that does nothing for files of the output's format.
std::vector<std::string> idleEncodingOptions(const EncodingTexts& texts, const std::string& output);

}  // namespace perch
