#include "Archiver.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "Errors.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Archiver;
using PILib::Channel8;
using PILib::Pixel;
using Bytes = std::vector<unsigned char>;

class ArchiverTest : public testing::Test {
protected:
    ~ArchiverTest() override {
        for (char** handle : handles)
            context.disposeHandle(handle);
    }

    Bytes written(Archiver& archive) {
        handles.push_back(archive.getHandle());
        Bytes bytes(context.getHandleSize(handles.back()));
        if (!bytes.empty()) std::memcpy(bytes.data(), *handles.back(), bytes.size());
        return bytes;
    }

    char** handleWith(const Bytes& bytes) {
        handles.push_back(context.newHandle(bytes.size()));
        if (!bytes.empty()) std::memcpy(*handles.back(), bytes.data(), bytes.size());
        return handles.back();
    }

    PILib::ThreadPoolContext context{1};

private:
    std::vector<char**> handles;
};

TEST_F(ArchiverTest, ScalarsAreBigEndianWithoutPadding) {
    Archiver archive(context);
    archive << true << short{-2} << int{1} << 1.0F;
    EXPECT_EQ((Bytes{0x01, 0xFF, 0xFE, 0x00, 0x00, 0x00, 0x01, 0x3F, 0x80, 0x00, 0x00}), written(archive));
}

TEST_F(ArchiverTest, EveryTypeHasItsEncoding) {
    struct Case {
        const char* type;
        void (*write)(Archiver&);
        Bytes bytes;
    };
    const Case cases[] = {
        {"bool", [](Archiver& a) { a << false; }, {0}},
        {"signed char", [](Archiver& a) { a << static_cast<signed char>(-1); }, {0xFF}},
        {"unsigned char", [](Archiver& a) { a << static_cast<unsigned char>(200); }, {200}},
        {"short", [](Archiver& a) { a << short{0x1234}; }, {0x12, 0x34}},
        {"unsigned short", [](Archiver& a) { a << static_cast<unsigned short>(0xFEDC); }, {0xFE, 0xDC}},
        {"int", [](Archiver& a) { a << int{-2}; }, {0xFF, 0xFF, 0xFF, 0xFE}},
        {"unsigned int", [](Archiver& a) { a << 0x89ABCDEFU; }, {0x89, 0xAB, 0xCD, 0xEF}},
        {"long long",
         [](Archiver& a) { a << 0x0123456789ABCDEFLL; },
         {1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}},
        {"unsigned long long",
         [](Archiver& a) { a << 0xFEDCBA9876543210ULL; },
         {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}},
        {"float", [](Archiver& a) { a << -2.5F; }, {0xC0, 0x20, 0, 0}},
        {"double", [](Archiver& a) { a << 1.0; }, {0x3F, 0xF0, 0, 0, 0, 0, 0, 0}},
        {"pixel",
         [](Archiver& a) {
             a << Pixel<Channel8>{255, 1, 2, 3};
         },
         {0xFF, 1, 2, 3}},
    };
    for (const Case& c : cases) {
        Archiver archive(context);
        c.write(archive);
        EXPECT_EQ(c.bytes, written(archive)) << c.type;
    }
}

template <class T>
void ExpectBack(Archiver& archive, T expected) {
    T value{};
    archive >> value;
    EXPECT_EQ(expected, value) << sizeof(T) << " bytes";
}

TEST_F(ArchiverTest, EveryTypeReadsBack) {
    Archiver archive(context);
    archive << true << static_cast<signed char>(-128) << static_cast<unsigned char>(129)
            << std::numeric_limits<short>::min() << static_cast<unsigned short>(65535)
            << std::numeric_limits<int>::min() << 4000000000U << std::numeric_limits<long long>::min()
            << std::numeric_limits<unsigned long long>::max() << 1e-42F << -1e300
            << Pixel<Channel8>{4, 3, 2, 1};
    Archiver back(context, handleWith(written(archive)));
    ExpectBack(back, true);
    ExpectBack(back, static_cast<signed char>(-128));
    ExpectBack(back, static_cast<unsigned char>(129));
    ExpectBack(back, std::numeric_limits<short>::min());
    ExpectBack(back, static_cast<unsigned short>(65535));
    ExpectBack(back, std::numeric_limits<int>::min());
    ExpectBack(back, 4000000000U);
    ExpectBack(back, std::numeric_limits<long long>::min());
    ExpectBack(back, std::numeric_limits<unsigned long long>::max());
    ExpectBack(back, 1e-42F);
    ExpectBack(back, -1e300);
    Pixel<Channel8> pixel{};
    back >> pixel;
    EXPECT_EQ(4, pixel.alpha);
    EXPECT_EQ(3, pixel.red);
    EXPECT_EQ(2, pixel.green);
    EXPECT_EQ(1, pixel.blue);
    EXPECT_EQ(back.size, back.position);
}

TEST_F(ArchiverTest, AnyNonZeroByteReadsAsTrue) {
    Archiver archive(context, handleWith({0x02, 0x80, 0x00}));
    ExpectBack(archive, true);
    ExpectBack(archive, true);
    ExpectBack(archive, false);
}

TEST_F(ArchiverTest, GrowthDoublesAndTheHandleIsTrimmed) {
    Archiver archive(context);
    EXPECT_EQ(10000, archive.size);
    EXPECT_EQ(10000U, context.getHandleSize(archive.handle));
    for (int i = 0; i < 10000; ++i)
        archive << static_cast<unsigned char>(i);
    EXPECT_EQ(10000, archive.size);
    archive << static_cast<unsigned char>(7);
    EXPECT_EQ(20000, archive.size);
    EXPECT_EQ(20000U, context.getHandleSize(archive.handle));
    const Bytes bytes = written(archive);
    ASSERT_EQ(10001U, bytes.size());
    for (std::size_t i = 0; i < 10000; ++i)
        ASSERT_EQ(static_cast<unsigned char>(i), bytes[i]) << i;
    EXPECT_EQ(7, bytes[10000]);
}

// The trimmed handle has no room left, so that the next value needs it to grow again.
TEST_F(ArchiverTest, WritingGoesOnAfterTheHandleWasTaken) {
    Archiver archive(context);
    archive << short{0x0102};
    archive.getHandle();
    EXPECT_EQ(2, archive.size);
    archive << short{0x0304};
    EXPECT_EQ(static_cast<std::size_t>(archive.size), context.getHandleSize(archive.handle));
    EXPECT_EQ((Bytes{1, 2, 3, 4}), written(archive));
}

TEST_F(ArchiverTest, SizesGrowByTheRule) {
    struct Case {
        int size;
        int position;
        int count;
        int expected;
    };
    const Case cases[] = {
        {10000, 0, 10000, 10000},                                         // fits
        {10000, 10000, 1, 20000},                                         // doubles
        {10000, 10000, 10000, 20000},                                     // the double is just enough
        {10000, 10000, 10001, 122401},                                    // the double is not enough
        {10000, 9000, 11001, 122401},      {524288, 524288, 1, 1048576},  // doubles to the limit
        {600000, 600000, 448576, 1048576},                                // capped, just enough
        {600000, 600000, 500000, 1202400},                                // capped, too few
        {1048576, 1048576, 1, 1150977},                                   // at the limit
        {2000000, 2000000, 1, 2102401},                                   // beyond the limit
    };
    for (const Case& c : cases) {
        Archiver archive(context);
        context.resizeHandle(static_cast<std::size_t>(c.size), &archive.handle);
        archive.size = c.size;
        archive.position = c.position;
        archive.ensureSpace(c.count);
        EXPECT_EQ(c.expected, archive.size) << c.size << ", " << c.position << ", " << c.count;
        EXPECT_EQ(static_cast<std::size_t>(c.expected), context.getHandleSize(archive.handle));
        context.disposeHandle(archive.handle);
    }
}

TEST_F(ArchiverTest, StreamBeyondTwoGigabytesIsOutOfMemory) {
    Archiver archive(context);
    archive << 1;
    EXPECT_THROW(archive.ensureSpace(std::numeric_limits<int>::max()), int);
    EXPECT_EQ(10000, archive.size);
    EXPECT_EQ(4U, written(archive).size());
}

TEST_F(ArchiverTest, APixelIsFourReads) {
    Archiver archive(context, handleWith({9, 8}));
    PILib::Pixel<PILib::Channel8> pixel(1, 2, 3, 4);
    EXPECT_THROW(archive >> pixel, PILib::LibraryError);
    EXPECT_EQ((PILib::Pixel<PILib::Channel8>(9, 8, 3, 4)), pixel);
    EXPECT_EQ(2, archive.position);
}

TEST_F(ArchiverTest, ReadPastTheEndMovesNothing) {
    Archiver archive(context, handleWith({9, 8, 7}));
    int value = -5;
    try {
        archive >> value;
        ADD_FAILURE() << "an int was read from three bytes";
    } catch (PILib::LibraryError error) {
        EXPECT_EQ(PILib::kEndOfArchive, error);
        EXPECT_EQ(512, error);
    }
    EXPECT_EQ(-5, value);
    EXPECT_EQ(0, archive.position);
    ExpectBack(archive, static_cast<unsigned char>(9));
}

TEST_F(ArchiverTest, EmptyStreamHasNothingToRead) {
    Archiver archive(context, handleWith({}));
    bool value = true;
    EXPECT_THROW(archive >> value, PILib::LibraryError);
    EXPECT_TRUE(value);
}

TEST_F(ArchiverTest, BuffersAreRawBytes) {
    Archiver archive(context);
    const std::string blob = "a\0b", none;
    archive.writeBuffer(blob.data(), static_cast<int>(blob.size()));
    archive.writeBuffer(none.data(), 0);
    archive.writeBuffer(none.data(), -7);
    archive << short{1};
    const Bytes bytes = written(archive);
    EXPECT_EQ((Bytes{'a', 0, 1}), bytes);

    Archiver back(context, handleWith(bytes));
    std::array<char, 1> read{};
    back.readBuffer(read.data(), 1);
    EXPECT_EQ('a', read[0]);
    back.readBuffer(read.data(), -1);
    EXPECT_EQ('a', read[0]);
    ExpectBack(back, short{1});
}

TEST_F(ArchiverTest, ReadingNeitherResizesNorTakesTheHandle) {
    char** const handle = handleWith({1, 2});
    {
        Archiver archive(context, handle);
        ExpectBack(archive, static_cast<unsigned char>(1));
        EXPECT_EQ(handle, archive.handle);
    }
    EXPECT_EQ(2U, context.getHandleSize(handle));
}

TEST_F(ArchiverTest, ArchiveOfNothingIsAnEmptyHandle) {
    Archiver archive(context);
    EXPECT_TRUE(written(archive).empty());
}

}  // namespace
