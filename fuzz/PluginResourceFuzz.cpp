// The plug-in's reader of its own resource file: whatever the bytes, what it finds lies within them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "PiPL.h"
#include "ResourceFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const char> file(reinterpret_cast<const char*>(data), size);
    const auto found = AELib::FindResource(file, PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID);
    if (!found || found->empty()) return 0;
    if (found->data() < file.data() || found->data() + found->size() > file.data() + file.size())
        std::abort();
    return 0;
}
