#include "SharedObject.h"

#if defined(__linux__)
#include <elf.h>
#include <fmt/format.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <system_error>
#include <vector>

#include "Error.h"

namespace perch {
namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

struct Machine {
    int number;
    const char* name;
};

constexpr std::array kMachines{
    Machine{EM_X86_64, "x86-64"}, Machine{EM_AARCH64, "arm64"}, Machine{EM_386, "x86"},
    Machine{EM_ARM, "arm"},       Machine{EM_RISCV, "risc-v"},  Machine{EM_PPC64, "powerpc64"},
};

// What the program itself runs on, from its own header.
const Header& ownHeader() {
    static const Header header = [] {
        Header own{};
        std::ifstream("/proc/self/exe", std::ios::binary).read(reinterpret_cast<char*>(&own), sizeof own);
        return own;
    }();
    return header;
}

bool hasOwnByteOrder(const Header& header) {
    return header.e_ident[EI_DATA] == ownHeader().e_ident[EI_DATA];
}

std::string machineName(const Header& header) {
    const int given = header.e_machine;
    const int number = hasOwnByteOrder(header) ? given : (given & 0xFF) << 8 | given >> 8;
    const auto known = std::ranges::find(kMachines, number, &Machine::number);
    return known != kMachines.end() ? known->name : fmt::format("machine {}", number);
}

}  // namespace

void requireLoadable(const std::filesystem::path& path) {
    const std::string name = path.string();
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        throw LoadError(fmt::format("\"{}\" is not a file", name));
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (!file) throw LoadError(fmt::format("cannot read \"{}\"; check its permissions", name));
    Header header{};
    file.read(reinterpret_cast<char*>(&header), sizeof header);
    const auto read = static_cast<std::size_t>(file.gcount());
    const std::string cutShort = fmt::format("\"{}\" is cut short; install the plug-in again", name);
    if (std::memcmp(header.e_ident, ELFMAG, std::min<std::size_t>(read, SELFMAG)) != 0)
        throw LoadError(fmt::format("\"{}\" is not a shared object", name));
    if (read < sizeof header) throw LoadError(cutShort);
    const Header& own = ownHeader();
    const bool isOfThisMachine = header.e_machine == own.e_machine &&
                                 header.e_ident[EI_CLASS] == own.e_ident[EI_CLASS] && hasOwnByteOrder(header);
    if (!isOfThisMachine)
        throw LoadError(fmt::format("\"{}\" is made for {}; this program runs on {}", name,
                                    machineName(header), machineName(own)));
    if (header.e_type != ET_DYN || header.e_phentsize != sizeof(Segment))
        throw LoadError(fmt::format("\"{}\" is not a shared object", name));
    std::vector<Segment> segments(header.e_phnum);
    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    file.read(reinterpret_cast<char*>(segments.data()),
              static_cast<std::streamsize>(segments.size() * sizeof(Segment)));
    const bool isWhole = file.good() && std::ranges::all_of(segments, [&](const Segment& segment) {
                             return segment.p_type != PT_LOAD ||
                                    (segment.p_filesz <= size && segment.p_offset <= size - segment.p_filesz);
                         });
    if (!isWhole) throw LoadError(cutShort);
}

}  // namespace perch

#else

// The system tells by itself.
void perch::requireLoadable(const std::filesystem::path&) {}

#endif
