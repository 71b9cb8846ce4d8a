// The archiver over bytes from outside. A run reads values by the operations that the input's first half
// names; what was read is then written again and must give the bytes that were read.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Archiver.h"
#include "Errors.h"
#include "ThreadPoolContext.h"

namespace {

// Reads a T and writes it; false where the stream has ended.
template <class T>
bool Pass(PILib::Archiver& from, PILib::Archiver& to) {
    T value{};
    try {
        from >> value;
    } catch (PILib::LibraryError) {
        return false;
    }
    to << value;
    return true;
}

bool PassOne(unsigned operation, PILib::Archiver& from, PILib::Archiver& to) {
    switch (operation % 8) {
        case 0:
            return Pass<unsigned char>(from, to);
        case 1:
            return Pass<short>(from, to);
        case 2:
            return Pass<int>(from, to);
        case 3:
            return Pass<long long>(from, to);
        case 4:
            return Pass<PILib::Pixel<PILib::Channel8>>(from, to);
        case 5:
            return Pass<unsigned short>(from, to);
        case 6:
            return Pass<unsigned long long>(from, to);
        default:
            return Pass<signed char>(from, to);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static PILib::ThreadPoolContext context(1);
    const std::size_t operations = size / 2;
    const std::size_t bytes = size - operations;
    char** const stream = context.newLockedHandle(bytes);
    if (bytes > 0) std::memcpy(*stream, data + operations, bytes);

    PILib::Archiver from(context, stream);
    PILib::Archiver to(context);
    for (std::size_t i = 0; i < operations && PassOne(data[i], from, to); ++i) {
    }
    char** const written = to.getHandle();
    // A pixel is four reads, of which the stream's end may cut the last ones.
    const std::size_t count = context.getHandleSize(written);
    const auto read = static_cast<std::size_t>(from.position);
    if (count > read || read - count > 3 || std::memcmp(*written, *stream, count) != 0) std::abort();
    context.disposeHandle(written);
    context.disposeHandle(stream);
    return 0;
}
