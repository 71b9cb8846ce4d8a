#include "UseNotes.h"

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
        "the input's colours are sRGB and are written unchanged; tell the program that reads the OpenEXR "
        "file so, or the picture looks washed out");
}

}  // namespace

void noteUse(const RenderOptions& options, const ParameterArguments& parameters, const FramePlan& plan,
             Notes& notes) {
    warnOfMistakes(parameters, notes);
    warnOfKeysOnAStill(plan, parameters.curves, notes);
    for (const std::string& sentence : options.idleOptions)
        notes.warnOfUse(sentence, sentence);
    noteCodesAsLight(options, notes);
}

}  // namespace perch
