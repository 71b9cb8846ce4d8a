#include "ShotForm.h"

#include <fmt/format.h>

#include "Error.h"
#include "FileFormat.h"

namespace perch {

void ShotForm::require(const FrameFiles& files, const FileWorld& input, const LayerWorlds& layers) {
    constexpr PF_ParamIndex kInput = 0;
    require(kInput, files.input, *input.source);
    for (const auto& [layer, path] : files.layers)
        require(layer, path, *layers.at(layer)->source);
}

void ShotForm::require(PF_ParamIndex layer, const std::filesystem::path& path,
                       const pictures::Picture& picture) {
    const Form form{picture.width, picture.height, picture.type()};
    const auto [first, isFirst] = forms.try_emplace(layer, form);
    if (isFirst || first->second == form) return;
    throw InputError(
        fmt::format("\"{}\" has {} and the first frame {}; give all frames of a shot one size and depth",
                    path.string(), textOf(form), textOf(first->second)));
}

std::string ShotForm::textOf(const Form& form) {
    return fmt::format("{} x {} pixels of {}", form.width, form.height, nameOf(form.type));
}

}  // namespace perch
