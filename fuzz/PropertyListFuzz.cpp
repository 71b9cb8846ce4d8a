// Any bytes as a resource file, and as a property list: reading ends with a result or an Error.
#include <cstdlib>

#include "PiPL.h"
#include "PropertyList.h"
#include "ResourceFile.h"

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

void readList(perch::ByteSpan bytes) {
    try {
        const perch::PropertyList list = perch::readPropertyList(bytes);
        constexpr std::size_t kLongestPascalString = 255;
        require(list.name.size() <= kLongestPascalString && list.matchName.size() <= kLongestPascalString);
        require(list.name.size() + list.category.size() + list.matchName.size() <= bytes.size());
    } catch (const perch::Error&) {
    }
}

void readFile(perch::ByteSpan file) {
    try {
        const auto resource = perch::findResource(file, PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID);
        if (!resource) return;
        require(resource->data() >= file.data() &&
                resource->data() + resource->size() <= file.data() + file.size());
        readList(*resource);
    } catch (const perch::Error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const perch::ByteSpan bytes(reinterpret_cast<const std::byte*>(data), size);
    readFile(bytes);
    readList(bytes);
    return 0;
}
