#include "EffectIdentity.h"
#include "PropertyList.h"
#include "ResourceFiles.h"

namespace {

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

// The block that Explorer shows under Details. 0x40004: Windows NT, 32-bit interface, which includes 64-bit
// Windows; 2: a dynamic-link library; 0409 04B0: English, UTF-16.
std::string MakeVersionInfo(const std::string& file) {
    const std::string numbers =
        std::to_string(KESTREL_VERSION_MAJOR) + "," + std::to_string(KESTREL_VERSION_MINOR) + "," +
        std::to_string(KESTREL_VERSION_BUGFIX) + "," + std::to_string(KESTREL_VERSION_BUILD);
    const auto value = [](const std::string& key, const std::string& text) {
        return "      VALUE " + Quoted(key) + ", " + Quoted(text) + "\n";
    };
    return "1 VERSIONINFO\n"
           "FILEVERSION " +
           numbers + "\nPRODUCTVERSION " + numbers +
           "\n"
           "FILEFLAGSMASK 0x3F\nFILEFLAGS 0\nFILEOS 0x40004\nFILETYPE 2\nFILESUBTYPE 0\n"
           "BEGIN\n"
           "  BLOCK \"StringFileInfo\"\n  BEGIN\n    BLOCK \"040904B0\"\n    BEGIN\n" +
           value("CompanyName", kEffectCategory) + value("FileDescription", kEffectDescription) +
           value("FileVersion", KESTREL_VERSION_TEXT) + value("InternalName", kEffectName) +
           value("OriginalFilename", file) + value("ProductName", kEffectName) +
           value("ProductVersion", KESTREL_VERSION_TEXT) +
           "    END\n  END\n"
           "  BLOCK \"VarFileInfo\"\n  BEGIN\n    VALUE \"Translation\", 0x409, 0x4B0\n  END\n"
           "END\n";
}

}  // namespace

void WriteWindowsResources(const std::filesystem::path& folder, const std::string& name) {
    const std::string little = name + ".pipl";
    const std::string big = name + ".be-pipl";
    WriteFile(folder / little, MakePropertyList(ListForm::kWindows));
    WriteFile(folder / big, MakePropertyList(ListForm::kMac));
    const std::string id = std::to_string(PiPL_RESOURCE_ID);
    // The host reads the first; the plug-in the second, as on the other systems.
    WriteFile(folder / (name + ".rc"), id + " PiPL " + Quoted(little) + "\n" + id + " BE_PiPL " +
                                           Quoted(big) + "\n" + MakeVersionInfo(name + ".aex"));
}
