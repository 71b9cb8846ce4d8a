#include "Description.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <span>

#include "Console.h"
#include "PF_Values.h"
#include "ParameterText.h"

namespace perch {
namespace {

struct FlagName {
    std::int32_t flag;
    const char* name;
};

constexpr std::array kFlagNames{
    FlagName{PF_OutFlag_KEEP_RESOURCE_OPEN, "KEEP_RESOURCE_OPEN"},
    FlagName{PF_OutFlag_WIDE_TIME_INPUT, "WIDE_TIME_INPUT"},
    FlagName{PF_OutFlag_NON_PARAM_VARY, "NON_PARAM_VARY"},
    FlagName{PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING, "SEQUENCE_DATA_NEEDS_FLATTENING"},
    FlagName{PF_OutFlag_I_DO_DIALOG, "I_DO_DIALOG"},
    FlagName{PF_OutFlag_USE_OUTPUT_EXTENT, "USE_OUTPUT_EXTENT"},
    FlagName{PF_OutFlag_SEND_DO_DIALOG, "SEND_DO_DIALOG"},
    FlagName{PF_OutFlag_DISPLAY_ERROR_MESSAGE, "DISPLAY_ERROR_MESSAGE"},
    FlagName{PF_OutFlag_I_EXPAND_BUFFER, "I_EXPAND_BUFFER"},
    FlagName{PF_OutFlag_PIX_INDEPENDENT, "PIX_INDEPENDENT"},
    FlagName{PF_OutFlag_I_WRITE_INPUT_BUFFER, "I_WRITE_INPUT_BUFFER"},
    FlagName{PF_OutFlag_I_SHRINK_BUFFER, "I_SHRINK_BUFFER"},
    FlagName{PF_OutFlag_WORKS_IN_PLACE, "WORKS_IN_PLACE"},
    FlagName{PF_OutFlag_CUSTOM_UI, "CUSTOM_UI"},
    FlagName{PF_OutFlag_REFRESH_UI, "REFRESH_UI"},
    FlagName{PF_OutFlag_NOP_RENDER, "NOP_RENDER"},
    FlagName{PF_OutFlag_I_USE_SHUTTER_ANGLE, "I_USE_SHUTTER_ANGLE"},
    FlagName{PF_OutFlag_I_USE_AUDIO, "I_USE_AUDIO"},
    FlagName{PF_OutFlag_I_AM_OBSOLETE, "I_AM_OBSOLETE"},
    FlagName{PF_OutFlag_FORCE_RERENDER, "FORCE_RERENDER"},
    FlagName{PF_OutFlag_PiPL_OVERRIDES_OUTDATA_OUTFLAGS, "PiPL_OVERRIDES_OUTDATA_OUTFLAGS"},
    FlagName{PF_OutFlag_I_HAVE_EXTERNAL_DEPENDENCIES, "I_HAVE_EXTERNAL_DEPENDENCIES"},
    FlagName{PF_OutFlag_DEEP_COLOR_AWARE, "DEEP_COLOR_AWARE"},
    FlagName{PF_OutFlag_SEND_UPDATE_PARAMS_UI, "SEND_UPDATE_PARAMS_UI"},
    FlagName{PF_OutFlag_AUDIO_FLOAT_ONLY, "AUDIO_FLOAT_ONLY"},
    FlagName{PF_OutFlag_AUDIO_IIR, "AUDIO_IIR"},
    FlagName{PF_OutFlag_I_SYNTHESIZE_AUDIO, "I_SYNTHESIZE_AUDIO"},
    FlagName{PF_OutFlag_AUDIO_EFFECT_TOO, "AUDIO_EFFECT_TOO"},
    FlagName{PF_OutFlag_AUDIO_EFFECT_ONLY, "AUDIO_EFFECT_ONLY"},
};

constexpr std::array kFlagNames2{
    FlagName{PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS, "SUPPORTS_QUERY_DYNAMIC_FLAGS"},
    FlagName{PF_OutFlag2_I_USE_3D_CAMERA, "I_USE_3D_CAMERA"},
    FlagName{PF_OutFlag2_I_USE_3D_LIGHTS, "I_USE_3D_LIGHTS"},
    FlagName{PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG, "PARAM_GROUP_START_COLLAPSED_FLAG"},
    FlagName{PF_OutFlag2_I_AM_THREADSAFE, "I_AM_THREADSAFE"},
    FlagName{PF_OutFlag2_CAN_COMBINE_WITH_DESTINATION, "CAN_COMBINE_WITH_DESTINATION"},
    FlagName{PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS, "DOESNT_NEED_EMPTY_PIXELS"},
    FlagName{PF_OutFlag2_REVEALS_ZERO_ALPHA, "REVEALS_ZERO_ALPHA"},
    FlagName{PF_OutFlag2_PRESERVES_FULLY_OPAQUE_PIXELS, "PRESERVES_FULLY_OPAQUE_PIXELS"},
    FlagName{PF_OutFlag2_SUPPORTS_SMART_RENDER, "SUPPORTS_SMART_RENDER"},
    FlagName{PF_OutFlag2_FLOAT_COLOR_AWARE, "FLOAT_COLOR_AWARE"},
    FlagName{PF_OutFlag2_I_USE_COLORSPACE_ENUMERATION, "I_USE_COLORSPACE_ENUMERATION"},
    FlagName{PF_OutFlag2_I_AM_DEPRECATED, "I_AM_DEPRECATED"},
    FlagName{PF_OutFlag2_PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER,
             "PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER"},
    FlagName{PF_OutFlag2_AUTOMATIC_WIDE_TIME_INPUT, "AUTOMATIC_WIDE_TIME_INPUT"},
    FlagName{PF_OutFlag2_I_USE_TIMECODE, "I_USE_TIMECODE"},
    FlagName{PF_OutFlag2_DEPENDS_ON_UNREFERENCED_MASKS, "DEPENDS_ON_UNREFERENCED_MASKS"},
    FlagName{PF_OutFlag2_OUTPUT_IS_WATERMARKED, "OUTPUT_IS_WATERMARKED"},
    FlagName{PF_OutFlag2_I_MIX_GUID_DEPENDENCIES, "I_MIX_GUID_DEPENDENCIES"},
    FlagName{PF_OutFlag2_AE13_5_THREADSAFE, "AE13_5_THREADSAFE"},
    FlagName{PF_OutFlag2_SUPPORTS_GET_FLATTENED_SEQUENCE_DATA, "SUPPORTS_GET_FLATTENED_SEQUENCE_DATA"},
    FlagName{PF_OutFlag2_CUSTOM_UI_ASYNC_MANAGER, "CUSTOM_UI_ASYNC_MANAGER"},
    FlagName{PF_OutFlag2_SUPPORTS_GPU_RENDER_F32, "SUPPORTS_GPU_RENDER_F32"},
    FlagName{PF_OutFlag2_SUPPORTS_THREADED_RENDERING, "SUPPORTS_THREADED_RENDERING"},
    FlagName{PF_OutFlag2_MUTABLE_RENDER_SEQUENCE_DATA_SLOWER, "MUTABLE_RENDER_SEQUENCE_DATA_SLOWER"},
    FlagName{PF_OutFlag2_SUPPORTS_DIRECTX_RENDERING, "SUPPORTS_DIRECTX_RENDERING"},
};

std::vector<std::string> namesOf(std::int32_t flags, std::span<const FlagName> table) {
    std::vector<std::string> names;
    for (const auto& [flag, name] : table) {
        if ((flags & flag) == 0) continue;
        names.emplace_back(name);
        flags &= ~flag;
    }
    if (flags != 0) names.push_back(fmt::format("{:#x}", static_cast<std::uint32_t>(flags)));
    return names;
}

std::string rangeText(const Parameter& parameter) {
    const auto& range = parameter.validRange;
    if (!range || isCheckBox(parameter) || !parameter.items.empty()) return "";
    return fmt::format("{} to {}", formatNumber(range->minimum), formatNumber(range->maximum));
}

// Names within a group stand further right.
std::string indentedName(const Parameter& parameter) {
    return std::string(static_cast<std::size_t>(parameter.depth) * 2, ' ') + printable(parameter.name);
}

// "Fast, (separator), Fine": separators count, so they are shown in their places.
std::string itemsText(const Parameter& parameter) {
    std::vector<std::string> items = parameter.items;
    std::ranges::replace_if(items, isSeparator, "(separator)");
    return printable(fmt::format("{}", fmt::join(items, ", ")));
}

using Row = std::array<std::string, 7>;

// Columns padded to their widest entry, the last one left as it is.
std::string alignedTable(const std::vector<Row>& rows) {
    std::array<std::size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::string table;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += fmt::format("{:<{}}  ", row[i], widths[i]);
        line.resize(line.find_last_not_of(' ') + 1);
        table += line + '\n';
    }
    return table;
}

std::string parameterTable(const EffectDescription& description,
                           const std::vector<ParameterOption>& options) {
    std::map<PF_ParamIndex, std::string> optionNames;
    for (const ParameterOption& option : options)
        optionNames[option.parameter.index] = "--" + option.name;
    std::vector<Row> rows{{"index", "name", "option", "type", "range", "default", "items"}};
    for (const Parameter& parameter : description.parameters) {
        rows.push_back({std::to_string(parameter.index), indentedName(parameter),
                        optionNames[parameter.index], parameter.typeName, rangeText(parameter),
                        printable(defaultText(parameter)), itemsText(parameter)});
    }
    return alignedTable(rows);
}

}  // namespace

std::string versionText(std::uint32_t version) {
    constexpr std::array kStages{"develop", "alpha", "beta", "release"};
    const std::uint32_t major = (version >> 26 & 15U) << 3 | (version >> 19 & 7U);
    const std::uint32_t minor = version >> 15 & 15U;
    const std::uint32_t bugfix = version >> 11 & 15U;
    std::string text = fmt::format("{}.{}", major, minor);
    if (bugfix != 0) text += fmt::format(".{}", bugfix);
    return text + fmt::format(" {} build {}", kStages[version >> 9 & 3U], version & 511U);
}

std::vector<std::string> flagNames(PF_OutFlags flags) {
    return namesOf(flags, kFlagNames);
}

std::vector<std::string> flagNames2(PF_OutFlags2 flags) {
    return namesOf(flags, kFlagNames2);
}

std::string displayName(const EffectDescription& description) {
    return description.name.empty() ? description.path.stem().string() : printable(description.name);
}

std::string describeAsText(const EffectDescription& description,
                           const std::vector<ParameterOption>& options) {
    const auto orNone = [](const std::string& text) { return text.empty() ? "none" : text; };
    const auto joined = [&](const std::vector<std::string>& names) {
        return orNone(fmt::format("{}", fmt::join(names, ", ")));
    };
    return fmt::format("name         {}\n", displayName(description)) +
           fmt::format("category     {}\n", orNone(printable(description.category))) +
           fmt::format("match name   {}\n", orNone(printable(description.matchName))) +
           fmt::format("version      {}\n", versionText(description.version)) +
           fmt::format("entry point  {}\n", description.entryPoint) +
           fmt::format("flags        {}\n", joined(flagNames(description.flags))) +
           fmt::format("more flags   {}\n", joined(flagNames2(description.flags2))) + "\n" +
           parameterTable(description, options);
}

}  // namespace perch
