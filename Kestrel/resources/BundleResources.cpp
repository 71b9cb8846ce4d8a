#include <cstdint>

#include "BigEndian.h"
#include "EffectIdentity.h"
#include "PropertyList.h"
#include "ResourceFiles.h"

namespace {

// A resource file of one resource without a name.
std::string MakeResourceFile(std::uint32_t type, std::uint32_t id, const std::string& resource) {
    constexpr std::uint32_t kDataOffset = 256;
    const std::string data = BigEndian(static_cast<std::uint32_t>(resource.size()), 4) + resource;

    const std::string types =
        BigEndian(0, 2) +                                          // one type
        BigEndian(type, 4) + BigEndian(0, 2) + BigEndian(10, 2) +  // one reference, behind this entry
        BigEndian(id, 2) +                                         //
        BigEndian(0xFFFF, 2) + BigEndian(0, 4) + BigEndian(0, 4);  // no name; data at 0; reserved
    constexpr std::uint32_t kMapHeader = 28;
    const auto mapLength = static_cast<std::uint32_t>(kMapHeader + types.size());
    const std::string header =
        BigEndian(kDataOffset, 4) + BigEndian(kDataOffset + static_cast<std::uint32_t>(data.size()), 4) +
        BigEndian(static_cast<std::uint32_t>(data.size()), 4) + BigEndian(mapLength, 4);
    const std::string map = header + BigEndian(0, 4) + BigEndian(0, 2) + BigEndian(0, 2) +
                            BigEndian(kMapHeader, 2) + BigEndian(mapLength, 2) + types;

    std::string file = header;
    file.resize(kDataOffset, '\0');
    return file + data + map;
}

std::string MakeInfoPlist(const std::string& name) {
    const auto entry = [](const std::string& key, const std::string& value) {
        return "    <key>" + key + "</key>\n    <string>" + value + "</string>\n";
    };
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           entry("CFBundleDevelopmentRegion", "en") + entry("CFBundleExecutable", name) +
           entry("CFBundleGetInfoString", std::string(kEffectName) + " " + KESTREL_VERSION_TEXT) +
           entry("CFBundleIdentifier", kEffectBundleIdentifier) +
           entry("CFBundleInfoDictionaryVersion", "6.0") + entry("CFBundleName", kEffectName) +
           entry("CFBundlePackageType", "eFKT") + entry("CFBundleShortVersionString", KESTREL_VERSION_TEXT) +
           entry("CFBundleSignature", "FXTC") +
           "    <key>CFBundleSupportedPlatforms</key>\n    <array>\n        <string>MacOSX</string>\n"
           "    </array>\n" +
           entry("CFBundleVersion", KESTREL_VERSION_TEXT) +
           entry("LSMinimumSystemVersion", KESTREL_MACOS_MINIMUM) + "</dict>\n</plist>\n";
}

}  // namespace

void WriteBundleResources(const std::filesystem::path& contents, const std::string& name) {
    WriteFile(contents / "Info.plist", MakeInfoPlist(name));
    WriteFile(contents / "PkgInfo", "eFKTFXTC");
    WriteFile(contents / "Resources" / (name + ".rsrc"),
              MakeResourceFile(PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID, MakePropertyList(ListForm::kMac)));
}
