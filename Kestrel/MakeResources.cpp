// Writes the bundle's resources from the effect's description:
//   make-resources CONTENTS-FOLDER NAME
// makes Info.plist, PkgInfo and Resources/NAME.rsrc, a resource file that holds the PiPL.

#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "EffectIdentity.h"

namespace {

namespace fs = std::filesystem;

void AppendNumber(std::string& bytes, std::uint32_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
}

std::string Number(std::uint32_t value, int size = 4) {
    std::string bytes;
    AppendNumber(bytes, value, size);
    return bytes;
}

std::string PascalString(std::string_view text) {
    return static_cast<char>(text.size()) + std::string(text);
}

// A property list, one property at a time.
class PropertyList {
public:
    void add(std::uint32_t key, std::string data) {
        AppendNumber(properties, PiPL_VENDOR, 4);
        AppendNumber(properties, key, 4);
        AppendNumber(properties, 0, 4);
        AppendNumber(properties, static_cast<std::uint32_t>(data.size()), 4);
        data.resize((data.size() + 3) / 4 * 4, '\0');
        properties += data;
        ++count;
    }
    std::string bytes() const { return Number(PiPL_LIST_VERSION) + Number(count) + properties; }

private:
    std::string properties;
    std::uint32_t count = 0;
};

std::string MakePiPL() {
    PropertyList list;
    list.add(PiPL_KIND, Number(PiPL_KIND_EFFECT));
    list.add(PiPL_NAME, PascalString(kEffectName));
    list.add(PiPL_CATEGORY, PascalString(kEffectCategory));
    list.add(PiPL_ENTRY_MAC_INTEL, PascalString(kEffectEntryPoint));
    list.add(PiPL_ENTRY_MAC_ARM, PascalString(kEffectEntryPoint));
    list.add(PiPL_ENTRY_WINDOWS, std::string(kEffectEntryPoint) + '\0');
    list.add(PiPL_LIST_FORMAT, Number(2, 2) + Number(0, 2));
    list.add(PiPL_INTERFACE_VERSION, Number(PF_INTERFACE_MAJOR, 2) + Number(PF_INTERFACE_MINOR, 2));
    list.add(PiPL_EFFECT_VERSION, Number(kEffectVersion));
    list.add(PiPL_INFO_FLAGS, Number(0, 2));
    list.add(PiPL_OUT_FLAGS, Number(kEffectOutFlags));
    list.add(PiPL_OUT_FLAGS2, Number(kEffectOutFlags2));
    list.add(PiPL_MATCH_NAME, PascalString(kEffectMatchName));
    list.add(PiPL_RESERVED, Number(0));
    return list.bytes();
}

// A resource file of one resource without a name.
std::string MakeResourceFile(std::uint32_t type, int id, const std::string& resource) {
    constexpr std::uint32_t kDataOffset = 256;
    const std::string data = Number(static_cast<std::uint32_t>(resource.size())) + resource;

    const std::string types = Number(0, 2) +  // one type
                              Number(type) + Number(0, 2) +
                              Number(10, 2) +                              // one reference, behind this entry
                              Number(static_cast<std::uint32_t>(id), 2) +  //
                              Number(0xFFFF, 2) + Number(0) + Number(0);   // no name; data at 0; reserved
    constexpr std::uint32_t kMapHeader = 28;
    const auto mapLength = static_cast<std::uint32_t>(kMapHeader + types.size());
    const std::string header = Number(kDataOffset) +
                               Number(kDataOffset + static_cast<std::uint32_t>(data.size())) +
                               Number(static_cast<std::uint32_t>(data.size())) + Number(mapLength);
    const std::string map = header + Number(0) + Number(0, 2) + Number(0, 2) + Number(kMapHeader, 2) +
                            Number(mapLength, 2) + types;

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
           entry("CFBundleExecutable", name) + entry("CFBundleIdentifier", "quillon.kestrel") +
           entry("CFBundleInfoDictionaryVersion", "6.0") + entry("CFBundleName", kEffectName) +
           entry("CFBundlePackageType", "eFKT") + entry("CFBundleShortVersionString", kEffectVersionText) +
           entry("CFBundleSignature", "FXTC") + entry("CFBundleVersion", kEffectVersionText) +
           "</dict>\n</plist>\n";
}

void Write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 3) throw std::invalid_argument("usage: make-resources CONTENTS-FOLDER NAME");
    const fs::path contents = argv[1];
    const std::string name = argv[2];
    Write(contents / "Info.plist", MakeInfoPlist(name));
    Write(contents / "PkgInfo", "eFKTFXTC");
    Write(contents / "Resources" / (name + ".rsrc"),
          MakeResourceFile(PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID, MakePiPL()));
    return 0;
} catch (const std::exception& error) {
    std::cerr << "make-resources: " << error.what() << '\n';
    return 1;
}
