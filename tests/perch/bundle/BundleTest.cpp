#include "Bundle.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <fstream>
#include <iterator>

#include "ResourceBytes.h"
#include "TemporaryFolder.h"

namespace perch {
namespace {

using namespace test;
namespace fs = std::filesystem;

const std::string kReport = PERCH_TEST_PLUGINS "/Report.so";
const std::string kShallow = PERCH_TEST_PLUGINS "/Shallow.so";

void write(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string resources(const std::string& entryPoint) {
    const std::string list = propertyList({{PiPL_KIND, bigEndian(PiPL_KIND_EFFECT)},
                                           {PiPL_NAME, pascal("Made")},
                                           {PiPL_ENTRY_MAC_INTEL, pascal(entryPoint)},
                                           {PiPL_ENTRY_MAC_ARM, pascal(entryPoint)}});
    return resourceFile({{PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID, list}});
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class BundleTest : public testing::Test {
protected:
    // A bundle of this name around the library.
    fs::path makeBundle(const std::string& name, const fs::path& library) {
        const fs::path bundle = folder / name;
        const fs::path code = bundle / "Contents" / "Linux-" PERCH_ARCHITECTURE;
        fs::create_directories(code);
        fs::copy_file(library, code / bundle.stem().concat(".so"));
        return bundle;
    }

    // What opening and loading throws, the test's folder cut out.
    std::string failure(const fs::path& path) const {
        try {
            loadLibrary(openBundle(path));
        } catch (const Error& error) {
            std::string text = error.what();
            const std::string own = folder.path.string() + "/";
            for (std::size_t at = text.find(own); at != std::string::npos; at = text.find(own))
                text.erase(at, own.size());
            return text;
        }
        return "nothing was thrown";
    }

    TemporaryFolder folder;
};

TEST_F(BundleTest, BareLibraryHasNoPropertyListAndTheUsualEntryPoints) {
    const Bundle bundle = openBundle(kReport);
    EXPECT_FALSE(bundle.propertyList);
    EXPECT_EQ(loadLibrary(bundle).symbol, "EffectMain");
    EXPECT_EQ(loadLibrary(openBundle(kShallow)).symbol, "PluginMain");
}

TEST_F(BundleTest, EntryPointOfABundleIsThatOfItsPropertyList) {
    const fs::path path = makeBundle("Made.plugin", kReport);
    write(path / "Contents/Resources/Made.rsrc", resources("EffectMain"));
    const Bundle bundle = openBundle(path / "");
    ASSERT_TRUE(bundle.propertyList);
    EXPECT_EQ(bundle.propertyList->name, "Made");
    const LoadedLibrary loaded = loadLibrary(bundle);
    EXPECT_EQ(loaded.symbol, "EffectMain");
    EXPECT_NE(loaded.entryPoint, nullptr);
}

TEST_F(BundleTest, LibraryNamedAsTheBundleIsTakenAmongSeveral) {
    const fs::path path = makeBundle("Made.plugin", kReport);
    const fs::path code = path / "Contents" / "Linux-" PERCH_ARCHITECTURE;
    fs::copy_file(kShallow, code / "Helper.so");
    EXPECT_EQ(loadLibrary(openBundle(path)).symbol, "EffectMain");
}

TEST_F(BundleTest, BundleWithoutResourcesIsLoadedLikeABareLibrary) {
    EXPECT_EQ(failure(makeBundle("Made.plugin", kReport)), "nothing was thrown");
}

TEST_F(BundleTest, EffectsThatCannotBeLoadedAreRefusedAndTheSentenceSaysHowToMendIt) {
    const fs::path bundle = makeBundle("Wrong.plugin", kReport);
    write(bundle / "Contents/Resources/Wrong.rsrc", resources("OtherMain"));
    const fs::path damaged = makeBundle("Damaged.plugin", kReport);
    write(damaged / "Contents/Resources/Damaged.rsrc", resources("EffectMain").substr(0, 300));
    const fs::path empty = makeBundle("Empty.plugin", kReport);
    write(empty / "Contents/Resources/Empty.rsrc", "");
    const fs::path foreign = folder / "Foreign.plugin";
    fs::create_directories(foreign / "Contents/MacOS");
    const fs::path crowded = folder / "Crowded.plugin";
    const std::string code = "Contents/Linux-" PERCH_ARCHITECTURE;
    write(crowded / code / "a.so", "");
    write(crowded / code / "b.so", "");
    write(folder / "text.so", "no library");
    const std::string library = bytesOf(kReport);
    write(folder / "cut.so", library.substr(0, library.size() / 2));
    write(folder / "header.so", library.substr(0, 40));
    std::string elsewhere = library;
    elsewhere[offsetof(Elf64_Ehdr, e_machine)] = static_cast<char>(EM_RISCV);
    elsewhere[offsetof(Elf64_Ehdr, e_machine) + 1] = 0;
    write(folder / "elsewhere.so", elsewhere);
    std::string swapped = library;
    swapped[EI_DATA] = ELFDATA2MSB;
    swapped[offsetof(Elf64_Ehdr, e_machine)] = 0;
    swapped[offsetof(Elf64_Ehdr, e_machine) + 1] = static_cast<char>(EM_PPC64);
    write(folder / "swapped.so", swapped);
    write(folder / "empty.so", "");
    // Opening either would wait for somebody to write to it.
    const fs::path pipe = folder / "Pipe.plugin";
    fs::create_directories(pipe / code);
    ASSERT_EQ(mkfifo((pipe / code / "Pipe.so").c_str(), 0600), 0);
    const fs::path piped = makeBundle("Piped.plugin", kReport);
    fs::create_directories(piped / "Contents/Resources");
    ASSERT_EQ(mkfifo((piped / "Contents/Resources/Piped.rsrc").c_str(), 0600), 0);

    const std::pair<fs::path, std::string> cases[] = {
        {folder / "none.plugin", "there is no plug-in \"none.plugin\"; name a .plugin folder or a .so file"},
        {bundle, "\"Wrong.plugin/" + code + "/Wrong.so\" is not an effect: it does not export OtherMain"},
        {damaged,
         "\"Damaged.plugin/Contents/Resources/Damaged.rsrc\" is damaged: its header names bytes beyond the "
         "end of the file; install the plug-in again"},
        {empty,
         "\"Empty.plugin/Contents/Resources/Empty.rsrc\" is damaged: its header is cut short; install the "
         "plug-in again"},
        {foreign,
         "\"Foreign.plugin\" has no library for this machine; expected a .so file in \"Foreign.plugin/" +
             code + "\""},
        {crowded,
         "\"Crowded.plugin/" + code + "\" has several files and none named after the bundle: a.so, b.so"},
        {folder / "text.so", "\"text.so\" is not a shared object"},
        {folder / "cut.so", "\"cut.so\" is cut short; install the plug-in again"},
        {folder / "header.so", "\"header.so\" is cut short; install the plug-in again"},
        {folder / "empty.so", "\"empty.so\" is cut short; install the plug-in again"},
        {folder / "elsewhere.so",
         "\"elsewhere.so\" is made for risc-v; this program runs on " PERCH_ARCHITECTURE},
        {folder / "swapped.so",
         "\"swapped.so\" is made for powerpc64; this program runs on " PERCH_ARCHITECTURE},
        {pipe, "\"Pipe.plugin/" + code + "/Pipe.so\" is not a file"},
        {piped, "\"Piped.plugin/Contents/Resources/Piped.rsrc\" is not a file"},
    };
    for (const auto& [path, sentence] : cases)
        EXPECT_EQ(failure(path), sentence);
}

// It is linked with the library that has one.
TEST_F(BundleTest, EntryPointOfALinkedLibraryIsNotTheEffects) {
    const std::string path = PERCH_TEST_PLUGINS "/Borrowed.so";
    EXPECT_EQ(failure(path),
              "\"" + path + "\" is not an effect: it does not export PluginMain or EffectMain");
}

TEST_F(BundleTest, BundleBesideTheProgramIsFoundInItsFolderThenAboveThenInLib) {
    const fs::path program = folder / "bin";
    fs::create_directories(program);
    // From the last to the first looked at.
    const fs::path places[] = {folder / "lib64", folder / "lib", folder.path, program};
    EXPECT_THROW(findBundleBeside(program), Error);
    for (const fs::path& place : places) {
        fs::create_directories(place / "One.plugin");
        EXPECT_EQ(findBundleBeside(program), place / "One.plugin");
    }
    fs::create_directories(program / "Two.plugin");
    try {
        findBundleBeside(program);
        FAIL() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(
            error.what(),
            "\"" + program.string() +
                "\" has several plug-ins: One.plugin, Two.plugin; name one of them on the command line");
    }
}

}  // namespace
}  // namespace perch
