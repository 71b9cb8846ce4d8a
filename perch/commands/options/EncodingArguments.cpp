#include "EncodingArguments.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "CommandLine.h"
#include "Error.h"
#include "FileFormat.h"

namespace perch {
namespace {

using pictures::FileFormat;
using pictures::kFastCompression;
using pictures::kMostCompression;

constexpr std::array kOpenExrCompressions{"none",  "rle", "zips", "zip",  "piz",
                                          "pxr24", "b44", "b44a", "dwaa", "dwab"};

bool isOfOpenExr(const std::string& compression) {
    return std::ranges::find(kOpenExrCompressions, compression) != kOpenExrCompressions.end();
}

void takeCompression(const std::string& text, pictures::EncodingOptions& encoding) {
    if (text.empty()) return;
    if (isOfOpenExr(text)) {
        encoding.openExrCompression = text;
        return;
    }
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber) {
        throw UsageError(
            fmt::format("--compression takes a whole number from 0 to {}, or for OpenEXR one of {}, not "
                        "\"{}\"",
                        kMostCompression, fmt::join(kOpenExrCompressions, ", "), text));
    }
    encoding.compression = parseNumber("--compression", text, 0, kMostCompression);
}

}  // namespace

void addEncodingOptions(CLI::App& app, EncodingTexts& texts) {
    app.add_option(
           "--compression", texts.compression,
           fmt::format("of PNG and TIFF files, 0 for none to {} for the smallest (default {}); of OpenEXR "
                       "files a name: {} (default zip)",
                       kMostCompression, kFastCompression, fmt::join(kOpenExrCompressions, ", ")))
        ->type_name("LEVEL");
    app.add_option("--jpeg-quality", texts.jpegQuality, "of JPEG files, 1 to 100")->type_name("QUALITY");
}

void takeEncodingOptions(const EncodingTexts& texts, pictures::EncodingOptions& encoding) {
    takeCompression(texts.compression, encoding);
    if (!texts.jpegQuality.empty())
        encoding.jpegQuality = parseNumber("--jpeg-quality", texts.jpegQuality, 1, 100);
}

std::vector<std::string> idleEncodingOptions(const EncodingTexts& texts, const std::string& output) {
    const std::optional<FileFormat> format = pictures::formatOfName(output);
    std::vector<std::string> idle;
    if (!format) return idle;
    const auto add = [&](std::string_view option, std::string_view formats) {
        idle.push_back(
            fmt::format("{} is for {} files and does nothing for \"{}\"", option, formats, output));
    };
    if (isOfOpenExr(texts.compression)) {
        if (format != FileFormat::OpenExr) add("--compression " + texts.compression, "OpenEXR");
    } else if (!texts.compression.empty() && format != FileFormat::Png && format != FileFormat::Tiff) {
        add("--compression " + texts.compression, "PNG and TIFF");
    }
    if (!texts.jpegQuality.empty() && format != FileFormat::Jpeg) add("--jpeg-quality", "JPEG");
    return idle;
}

}  // namespace perch
