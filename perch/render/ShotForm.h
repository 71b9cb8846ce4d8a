// What all pictures of a sequence have in common.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "FramePlan.h"
#include "PF_Params.h"
#include "Picture.h"
#include "StillLayers.h"

namespace perch {

class ShotForm {
public:
    // Throws Error, which names the file, where one of the frame's pictures has another size or other samples
    // than the first of its layer had.
    void require(const FrameFiles& files, const FileWorld& input, const LayerWorlds& layers);

private:
    struct Form {
        std::int32_t width = 0;
        std::int32_t height = 0;
        pictures::SampleType type{};
        bool operator==(const Form&) const = default;
    };

    static std::string textOf(const Form& form);

    void require(PF_ParamIndex layer, const std::filesystem::path& path, const pictures::Picture& picture);

    std::map<PF_ParamIndex, Form> forms;  // the input's is at 0
};

}  // namespace perch
