// A stream written by a program for a big-endian machine, which an emulator runs, is read here.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "Archiver.h"
#include "BigEndianValues.h"
#include "ThreadPoolContext.h"

namespace {

std::string OutputOf(const char* command) {
    std::FILE* const pipe = popen(command, "r");  // NOLINT(cert-env33-c): the command is the build's own
    if (pipe == nullptr) return {};
    std::string output;
    std::array<char, 4096> part{};
    for (std::size_t read = 0; (read = std::fread(part.data(), 1, part.size(), pipe)) > 0;)
        output.append(part.data(), read);
    EXPECT_EQ(0, pclose(pipe)) << command;
    return output;
}

template <class T>
void ExpectNext(PILib::Archiver& archive, T expected) {
    T value{};
    archive >> value;
    EXPECT_EQ(expected, value) << "at byte " << archive.position;
}

TEST(BigEndianArchiveTest, StreamOfABigEndianMachineReadsBackHere) {
    using namespace bigendian;
    const std::string stream = OutputOf(BIG_ENDIAN_WRITER);
    ASSERT_EQ(47U, stream.size());

    PILib::ThreadPoolContext context(1);
    char** const handle = context.newHandle(stream.size());
    std::memcpy(*handle, stream.data(), stream.size());
    PILib::Archiver archive(context, handle);
    ExpectNext(archive, kBool);
    ExpectNext(archive, kSignedChar);
    ExpectNext(archive, kUnsignedChar);
    ExpectNext(archive, kShort);
    ExpectNext(archive, kUnsignedShort);
    ExpectNext(archive, kInt);
    ExpectNext(archive, kUnsignedInt);
    ExpectNext(archive, kLongLong);
    ExpectNext(archive, kUnsignedLongLong);
    ExpectNext(archive, kFloat);
    ExpectNext(archive, kDouble);
    for (const unsigned char component : kPixel)
        ExpectNext(archive, component);
    EXPECT_EQ(archive.size, archive.position);
    context.disposeHandle(handle);
}

}  // namespace
