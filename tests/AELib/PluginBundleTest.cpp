// The bundle as a host meets it: identity, exports, and the parameters that the plug-in declares.

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>

#include "PluginHost.h"

namespace {

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::uint32_t Number(const std::string& bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(offset, size))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

// The properties of the one resource in the bundle's resource file, by key.
std::map<std::uint32_t, std::string> Properties() {
    const std::string file = Contents(PluginContents() / "Resources" / "Kestrel.rsrc");
    const std::string list = file.substr(Number(file, 0, 4) + 4);
    EXPECT_EQ(0U, Number(list, 0, 4));
    std::map<std::uint32_t, std::string> properties;
    std::size_t at = 8;
    for (std::uint32_t left = Number(list, 4, 4); left > 0; --left) {
        EXPECT_EQ(PiPL_VENDOR, Number(list, at, 4));
        const std::uint32_t length = Number(list, at + 12, 4);
        properties[Number(list, at + 4, 4)] = list.substr(at + 16, length);
        at += 16 + (length + 3) / 4 * 4;
    }
    return properties;
}

std::string Pascal(const std::string& text) {
    return static_cast<char>(text.size()) + text;
}

TEST(PluginBundleTest, OnlyTheEntryPointIsExported) {
    const std::string command = "nm -D --defined-only '" + PluginLibrary().string() + "'";
    std::FILE* const pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): a path of the build
    ASSERT_NE(nullptr, pipe);
    std::array<char, 512> line{};
    std::string symbols;
    while (std::fgets(line.data(), line.size(), pipe) != nullptr)
        symbols += std::strrchr(line.data(), ' ') + 1;
    EXPECT_EQ(0, pclose(pipe));
    EXPECT_EQ("PluginMain\n", symbols);
}

TEST(PluginBundleTest, PropertyListDescribesTheEffect) {
    const auto properties = Properties();
    const std::pair<std::uint32_t, std::string> expected[] = {
        {PiPL_KIND, "eFKT"},
        {PiPL_NAME, Pascal("Kestrel")},
        {PiPL_CATEGORY, Pascal("Quillon")},
        {PiPL_MATCH_NAME, Pascal("Quillon Kestrel")},
        {PiPL_ENTRY_MAC_INTEL, Pascal("PluginMain")},
        {PiPL_ENTRY_MAC_ARM, Pascal("PluginMain")},
        {PiPL_ENTRY_WINDOWS, std::string("PluginMain\0", 11)},
        {PiPL_LIST_FORMAT, std::string("\0\2\0\0", 4)},
        {PiPL_INTERFACE_VERSION, std::string("\0\x0D\0\x1D", 4)},
        {PiPL_OUT_FLAGS, std::string("\x02\0\0\x10", 4)},
        {PiPL_OUT_FLAGS2, std::string("\0\0\0\0", 4)},
        {PiPL_INFO_FLAGS, std::string("\0\0", 2)},
    };
    for (const auto& [key, value] : expected) {
        ASSERT_TRUE(properties.contains(key)) << std::hex << key;
        EXPECT_EQ(value, properties.at(key)) << std::hex << key;
    }
}

TEST(PluginBundleTest, GlobalSetupAgreesWithThePropertyList) {
    const auto properties = Properties();
    PluginHost host;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP)) << host.message();
    EXPECT_EQ(Number(properties.at(PiPL_EFFECT_VERSION), 0, 4), host.out.my_version);
    EXPECT_EQ(Number(properties.at(PiPL_OUT_FLAGS), 0, 4), static_cast<std::uint32_t>(host.out.out_flags));
    EXPECT_EQ(Number(properties.at(PiPL_OUT_FLAGS2), 0, 4), static_cast<std::uint32_t>(host.out.out_flags2));
    EXPECT_EQ(std::vector<std::string>{"Quillon Kestrel"}, host.registeredNames);
}

TEST(PluginBundleTest, InformationFilesNameTheBundle) {
    EXPECT_EQ("eFKTFXTC", Contents(PluginContents() / "PkgInfo"));
    const std::string plist = Contents(PluginContents() / "Info.plist");
    for (const char* entry : {"<key>CFBundleExecutable</key>\n    <string>Kestrel</string>",
                              "<key>CFBundleName</key>\n    <string>Kestrel</string>",
                              "<key>CFBundlePackageType</key>\n    <string>eFKT</string>",
                              "<key>CFBundleSignature</key>\n    <string>FXTC</string>"})
        EXPECT_NE(std::string::npos, plist.find(entry)) << entry;
}

TEST(PluginBundleTest, InformationFilesAndPropertyListGiveOneVersion) {
    const std::uint32_t packed = Number(Properties().at(PiPL_EFFECT_VERSION), 0, 4);
    const std::string version = std::to_string((packed >> 26 & 15) * 8 + (packed >> 19 & 7)) + "." +
                                std::to_string(packed >> 15 & 15) + "." + std::to_string(packed >> 11 & 15);
    const std::string plist = Contents(PluginContents() / "Info.plist");
    for (const char* key : {"CFBundleVersion", "CFBundleShortVersionString"}) {
        std::string entry = "<key>";
        entry.append(key).append("</key>\n    <string>").append(version).append("</string>");
        EXPECT_NE(std::string::npos, plist.find(entry)) << entry;
    }
}

// A record as it must reach the host, before its type's fields are filled.
PF_ParamDef Record(int id, const char* name, PF_ParamType type) {
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    def.uu.id = id;
    std::strcpy(def.name, name);
    def.param_type = type;
    def.flags = PF_ParamFlag_START_COLLAPSED;
    return def;
}

PF_ParamDef Popup(int id, const char* name, A_short choices, A_short dephault) {
    PF_ParamDef def = Record(id, name, PF_Param_POPUP);
    def.u.pd.num_choices = choices;
    def.u.pd.dephault = dephault;
    return def;
}

PF_ParamDef Slider(int id, const char* name, float validMin, float validMax, float sliderMin, float sliderMax,
                   float dephault, PF_ValueDisplayFlags display) {
    PF_ParamDef def = Record(id, name, PF_Param_FLOAT_SLIDER);
    def.u.fs_d.value = dephault;
    def.u.fs_d.valid_min = validMin;
    def.u.fs_d.valid_max = validMax;
    def.u.fs_d.slider_min = sliderMin;
    def.u.fs_d.slider_max = sliderMax;
    def.u.fs_d.dephault = dephault;
    def.u.fs_d.precision = 1;
    def.u.fs_d.display_flags = display;
    return def;
}

PF_ParamDef Percent(int id, const char* name) {
    return Slider(id, name, 0, 100, 0, 100, 0, PF_ValueDisplayFlag_PERCENT);
}

PF_ParamDef Checkbox(int id, const char* name, PF_Boolean dephault) {
    PF_ParamDef def = Record(id, name, PF_Param_CHECKBOX);
    def.u.bd.dephault = dephault;
    return def;
}

// The record's string, and null in its place, so that the rest can be compared as bytes.
const char* TakeText(PF_ParamDef& def) {
    const char* text = nullptr;
    if (def.param_type == PF_Param_POPUP) std::swap(text, def.u.pd.u.namesptr);
    if (def.param_type == PF_Param_CHECKBOX) std::swap(text, def.u.bd.u.nameptr);
    return text;
}

TEST(PluginParametersTest, EveryRecordReachesTheHostWhole) {
    struct Expected {
        PF_ParamDef def;
        const char* text;
    };
    const Expected expected[] = {
        {Popup(10, "View Mode", 2, 1), "Normal|Focus"},
        {Popup(1, "Blur Type", 2, 1), "Coarse|Fine"},
        {Record(2, "Control Layer", PF_Param_LAYER), nullptr},
        {Popup(3, "Control Channel", 7, 5), "Alpha|Red|Green|Blue|Luma|Lightness|Brightness"},
        {Percent(4, "Focal Point"), nullptr},
        {Percent(11, "In-focus Range"), nullptr},
        {Slider(5, "Maximum Blur", 0, 200, 0, 100, 10, 0), nullptr},
        {Slider(9, "Aspect Ratio", -1, 1, -1, 1, 0, 0), nullptr},
        {Checkbox(6, "Invert Control", 0), "Invert"},
        {Checkbox(7, "Conform Control Size", 1), "Conform"},
        {Percent(8, "Blend With Original"), nullptr},
    };
    PluginHost host;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP)) << host.message();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_PARAMS_SETUP)) << host.message();
    EXPECT_EQ(12, host.out.num_params);
    ASSERT_EQ(std::size(expected), host.declared.size());
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        PF_ParamDef declared;
        std::memcpy(&declared, &host.declared[i], sizeof declared);
        EXPECT_STREQ(expected[i].text, TakeText(declared)) << expected[i].def.name;
        EXPECT_EQ(0, std::memcmp(&expected[i].def, &declared, sizeof declared)) << expected[i].def.name;
    }
}

TEST(PluginParametersTest, EveryFailingDeclarationIsReported) {
    PluginHost host;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP)) << host.message();
    for (int failing = 1; failing <= 11; ++failing) {
        host.failures.at(Callback::kAddParam, failing, 100 + failing);
        EXPECT_EQ(100 + failing, host.call(PF_Cmd_PARAMS_SETUP));
        EXPECT_EQ("Error " + std::to_string(100 + failing) + " in Kestrel", host.message());
        EXPECT_EQ(0, host.out.num_params) << failing;
        EXPECT_EQ(failing, host.failures.calls(Callback::kAddParam));
    }
    host.failures.clear();
    host.declared.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_PARAMS_SETUP));
    EXPECT_EQ(11U, host.declared.size());
}

TEST(PluginBundleTest, SequenceDataAreEmptyAndComeBack) {
    PluginHost host;
    ASSERT_EQ(PF_Err_NONE, host.setUp()) << host.message();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN)) << host.message();
    const PF_Handle flat = host.in.sequence_data;
    EXPECT_EQ(0U, host.utils.host_get_handle_size(flat));
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP)) << host.message();
    host.utils.host_dispose_handle(flat);
    host.tearDown();
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ(0, host.liveSuites());
    EXPECT_EQ("", host.faults());
}

TEST(PluginBundleTest, EveryOtherCommandIsAnswered) {
    PluginHost host;
    ASSERT_EQ(PF_Err_NONE, host.setUp()) << host.message();
    for (const PF_Cmd command : {0, 2, 9, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 28, 31, 999}) {
        EXPECT_EQ(PF_Err_NONE, host.call(command)) << command;
        EXPECT_EQ(command == PF_Cmd_ABOUT ? "A Quillon Effect" : "", host.message()) << command;
    }
}

}  // namespace
