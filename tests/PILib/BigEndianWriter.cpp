// Archives the agreed values on a big-endian machine and writes the stream to standard output.

#include <bit>
#include <cstdio>

#include "Archiver.h"
#include "BigEndianValues.h"
#include "ThreadPoolContext.h"

static_assert(std::endian::native == std::endian::big);

int main() {
    using namespace bigendian;
    PILib::ThreadPoolContext context(1);
    PILib::Archiver archive(context);
    archive << kBool << kSignedChar << kUnsignedChar << kShort << kUnsignedShort << kInt << kUnsignedInt
            << kLongLong << kUnsignedLongLong << kFloat << kDouble
            << PILib::Pixel<PILib::Channel8>{kPixel[0], kPixel[1], kPixel[2], kPixel[3]};
    char** const handle = archive.getHandle();
    const std::size_t size = context.getHandleSize(handle);
    const bool written = std::fwrite(*handle, 1, size, stdout) == size && std::fflush(stdout) == 0;
    context.disposeHandle(handle);
    return written ? 0 : 1;
}
