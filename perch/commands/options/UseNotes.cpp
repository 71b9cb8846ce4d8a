#include "UseNotes.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

#include "FileFormat.h"
#include "ParameterCurve.h"

namespace perch {
namespace {

using pictures::FileFormat;

void warnOfKeysOnAStill(const FramePlan& plan, const std::vector<ParameterCurve>& curves, Notes& notes) {
    if (plan.isSequence || std::ranges::none_of(curves, &ParameterCurve::moves)) return;
    notes.warnOfUse("keys",
                    "parameters have keys and the picture has no frame number, so that their values at "
                    "frame 0 are taken; for another frame name the sequence, like in.####.png, and the "
                    "frame by --frames");
}

// The name alone tells them from TIFF and DPX files, which hold either.
bool isForScreens(const std::filesystem::path& picture) {
    const std::optional<FileFormat> format = pictures::formatOfName(picture);
    return format == FileFormat::Png || format == FileFormat::Jpeg || format == FileFormat::Targa ||
           format == FileFormat::WebP;
}

void noteCodesAsLight(const RenderOptions& options, Notes& notes) {
    if (!isForScreens(options.names.input) || options.settings.transfer) return;
    if (pictures::formatOfName(options.names.output) != FileFormat::OpenExr) return;
    notes.add(
        "codes as light",
        "the input's numbers are written unchanged; where they are sRGB, tell the program that reads the "
        "OpenEXR file so, or the picture looks washed out");
}

// Where the names and options tell that already.
bool isInWholeNumbers(const RenderOptions& options) {
    using pictures::SampleType;
    const std::optional<FileFormat> format = pictures::formatOfName(options.names.output);
    if (const auto type = options.settings.outputType) return !isFloat(*type);
    return format && !holds(*format, SampleType::Float);
}

void warnOfLightAsCodes(const RenderOptions& options, Notes& notes) {
    if (pictures::formatOfName(options.names.input) != FileFormat::OpenExr || !isInWholeNumbers(options))
        return;
    if (options.settings.transfer != pictures::Transfer::Log) return;
    notes.warnOfUse(
        "light as codes",
        fmt::format("--encode log writes light, and \"{}\" is to have whole numbers: it looks dark "
                    "and ends at white; write OpenEXR, or leave --encode out",
                    options.names.output));
}

}  // namespace

void noteUse(const RenderOptions& options, const ParameterArguments& parameters, const FramePlan& plan,
             Notes& notes) {
    warnOfMistakes(parameters, notes);
    warnOfKeysOnAStill(plan, parameters.curves, notes);
    for (const std::string& sentence : options.idleOptions)
        notes.warnOfUse(sentence, sentence);
    noteCodesAsLight(options, notes);
    warnOfLightAsCodes(options, notes);
}

}  // namespace perch
