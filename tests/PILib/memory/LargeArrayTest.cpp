#include "LargeArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <thread>
#include <vector>

#ifdef MAPS_LARGE_ARRAYS
#include "Mappings.h"
#endif

namespace PILib::detail {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20;
constexpr std::size_t kSizes[] = {
    0, 1, 4096, kMegabyte, kMegabyte + 1, 2 * kMegabyte, 2 * kMegabyte + 1, 5 * kMegabyte - 1};

bool holds(const LargeArray<std::uint8_t>& array, std::size_t size, std::uint8_t value) {
    return std::all_of(array.get(), array.get() + size, [value](std::uint8_t v) { return v == value; });
}

// As tables are made and given back: four at a time, frame after frame, of sizes that come and go.
TEST(LargeArrayTest, ArraysOfEverySizeKeepWhatIsWrittenApart) {
    for (int frame = 0; frame < 3; ++frame) {
        for (const std::size_t size : kSizes) {
            LargeArray<std::uint8_t> arrays[6];
            std::uint8_t value = 0;
            for (auto& array : arrays) {
                array = MakeLargeArray<std::uint8_t>(size);
                std::fill_n(array.get(), size, ++value);
            }
            value = 0;
            for (const auto& array : arrays)
                EXPECT_TRUE(holds(array, size, ++value)) << "size " << size << ", frame " << frame;
        }
    }
}

TEST(LargeArrayTest, ThreadsMakeArraysAtTheSameTime) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4);
    for (std::uint8_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread, &wrong] {
            for (unsigned i = 0; i < 20; ++i) {
                const std::size_t size = (i % 3 + 2) * kMegabyte;
                const auto array = MakeLargeArray<std::uint8_t>(size);
                std::fill_n(array.get(), size, thread);
                wrong[thread] += holds(array, size, thread) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4));
}

TEST(LargeArrayTest, SizesBeyondTheAddressSpaceAreBadAlloc) {
    EXPECT_THROW(MakeLargeArray<double>(std::numeric_limits<std::size_t>::max() / 4), std::bad_alloc);
}

#ifdef MAPS_LARGE_ARRAYS

// Bytes that no size holds, or not in whole pages, and more than any address space has free.
TEST(LargeArrayTest, SizesBeyondEveryMappingAreBadAlloc) {
    constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max() / sizeof(double);
    for (const std::size_t count : {kLargest + 1, kLargest, kLargest - kMegabyte / 8, kLargest / 8 * 7})
        EXPECT_THROW(MakeLargeArray<double>(count), std::bad_alloc) << count;
}

// A frame's tables and two more than are kept.
void MakeFrame(std::size_t size) {
    LargeArray<std::uint8_t> tables[6];
    for (auto& table : tables)
        table = MakeLargeArray<std::uint8_t>(size);
}

TEST(LargeArrayTest, WhatIsGivenBackIsKeptForOneFrameAtMost) {
    MakeFrame(5 * kMegabyte);
    const std::ptrdiff_t before = mappings::bytes;
    for (int frame = 0; frame < 500; ++frame)
        MakeFrame((5 - static_cast<std::size_t>(frame) % 4) * kMegabyte);
    MakeFrame(5 * kMegabyte);
    EXPECT_EQ(before, mappings::bytes);
    EXPECT_EQ(static_cast<std::ptrdiff_t>(4 * 6 * kMegabyte), before);  // four blocks of three large pages
}

TEST(LargeArrayTest, ASecondFrameOfASizeMapsNothingNew) {
    const auto makeFrame = [] {
        LargeArray<std::uint8_t> tables[4];
        for (auto& table : tables)
            table = MakeLargeArray<std::uint8_t>(5 * kMegabyte);
    };
    makeFrame();
    const int before = mappings::made;
    for (int frame = 0; frame < 3; ++frame)
        makeFrame();
    EXPECT_EQ(before, mappings::made);
}

#endif

}  // namespace
}  // namespace PILib::detail
