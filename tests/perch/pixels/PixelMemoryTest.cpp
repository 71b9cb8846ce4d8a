#include "PixelMemory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>

#include "World.h"

namespace perch::test {
namespace {

std::string flawText(const PF_EffectWorld* world) {
    const char* const flaw = flawOf(world);
    return flaw != nullptr ? flaw : "";
}

PF_PixelPtr addressOf(std::uintptr_t number) {
    return reinterpret_cast<PF_PixelPtr>(number);
}

constexpr char kBeyond[] = "a world's record extends past the memory of its pixels";
constexpr char kNotThere[] = "a world's pixels are not in memory";

struct Forgery {
    const char* name;
    std::function<void(PF_EffectWorld&)> change;  // of a record of 8 x 6 deep pixels
    std::string flaw;
};

const Forgery kForgeries[] = {
    {"none", [](PF_EffectWorld&) {}, ""},
    {"a part of it",
     [](PF_EffectWorld& world) {
         world.data = addressOf(reinterpret_cast<std::uintptr_t>(world.data) + 3 * sizeof(PF_Pixel16) +
                                static_cast<std::uintptr_t>(world.rowbytes));
         world.width = world.height = 5;
     },
     ""},
    {"upside down",
     [](PF_EffectWorld& world) {
         world.data = addressOf(reinterpret_cast<std::uintptr_t>(world.data) +
                                5 * static_cast<std::uintptr_t>(world.rowbytes));
         world.rowbytes = -world.rowbytes;
     },
     ""},
    {"without pixels", [](PF_EffectWorld& world) { world.data = nullptr; },
     "a world has a size and no pixels"},
    {"without a size",
     [](PF_EffectWorld& world) {
         world.data = addressOf(0x1230);
         world.width = 0;
     },
     ""},
    {"taller", [](PF_EffectWorld& world) { world.height = 100000; }, kBeyond},
    {"wider", [](PF_EffectWorld& world) { world.width = 100000; }, kBeyond},
    {"upwards", [](PF_EffectWorld& world) { world.rowbytes = -world.rowbytes; }, kBeyond},
    {"of the largest numbers",
     [](PF_EffectWorld& world) { world.width = world.height = world.rowbytes = 0x7FFFFFF0; }, kBeyond},
    {"nowhere", [](PF_EffectWorld& world) { world.data = addressOf(0x1230); }, kNotThere},
    {"at the end of all addresses", [](PF_EffectWorld& world) { world.data = addressOf(UINTPTR_MAX - 7); },
     kNotThere},
    {"at an odd address",
     [](PF_EffectWorld& world) { world.data = addressOf(reinterpret_cast<std::uintptr_t>(world.data) + 1); },
     "a world's rows are not aligned for its pixels"},
};

TEST(PixelMemoryTest, RecordsThatLeadElsewhereAreNamed) {
    const World world(8, 6, true, 16);
    for (const Forgery& forgery : kForgeries) {
        PF_EffectWorld record = world.record();
        forgery.change(record);
        EXPECT_EQ(flawText(&record), forgery.flaw) << forgery.name;
    }
}

TEST(PixelMemoryTest, WorldsAreKnownForAsLongAsTheyLast) {
    PF_EffectWorld record{};
    {
        World first(2048, 2048, true);
        const World copy = first;
        const World moved = std::move(first);
        EXPECT_EQ(flawText(&moved.record()), "");
        EXPECT_EQ(flawText(&copy.record()), "");
        record = moved.record();
        record.height = 100000;
        EXPECT_EQ(flawText(&record), kBeyond);
    }
    EXPECT_NE(flawText(&record), kBeyond);
}

TEST(PixelMemoryTest, MemoryOfTheEffectsOwnWillDo) {
    // Two pages, of which the second is given back.
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const pages = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    munmap(static_cast<char*>(pages) + page, page);
    PF_EffectWorld record{};
    record.data = static_cast<PF_PixelPtr>(pages);
    record.width = 4;
    record.height = static_cast<A_long>(page / 16);
    record.rowbytes = 16;
    EXPECT_EQ(flawText(&record), "");
    ++record.height;
    EXPECT_EQ(flawText(&record), kNotThere);
    munmap(pages, page);
}

TEST(PixelMemoryTest, RecordsThatAreNowhereAreNamed) {
    EXPECT_EQ(flawText(nullptr), "a world is null");
    EXPECT_EQ(flawText(reinterpret_cast<const PF_EffectWorld*>(std::uintptr_t{0x1230})),
              "a world's record is not in memory");
}

}  // namespace
}  // namespace perch::test
