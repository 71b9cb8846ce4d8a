#include "PictureStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "Error.h"
#include "TemporaryFolder.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

constexpr std::int32_t kWidth = 64;
constexpr std::int32_t kHeight = 32;
constexpr int kFrames = 9;
constexpr PF_RationalScale kEighth{1, 8};
constexpr std::int64_t kPicture = kWidth * kHeight * 4;  // bytes
constexpr std::int64_t kPreview = kPicture / 64;

// Frames of noise, for an effect that takes any.
class PictureStoreTest : public testing::Test {
protected:
    PictureStoreTest() {
        for (int frame = 1; frame <= kFrames; ++frame) {
            plan.frames.push_back({frame, folder / (std::to_string(frame) + ".png"), {}, {}});
            writeWorld(plan.frames.back().input,
                       noise<PF_Pixel>(kWidth, kHeight, static_cast<unsigned>(frame)), true);
        }
    }

    std::unique_ptr<PictureStore> newStore(std::int64_t memory) {
        return std::make_unique<PictureStore>(Shot{.effect = effect,
                                                   .settings = settings,
                                                   .plan = plan,
                                                   .looks = looks,
                                                   .notes = notes,
                                                   .memory = memory});
    }

    bool isKept(PictureStore& store, int frame) {
        const FrameFiles& files = store.filesOf(frame);
        const std::filesystem::path away = folder / "away.png";
        std::filesystem::rename(files.input, away);
        bool isThere = true;
        try {
            store.input(files);
        } catch (const Error&) {
            isThere = false;
        }
        std::filesystem::rename(away, files.input);
        return isThere;
    }

    const TemporaryFolder folder;
    FramePlan plan;
    RenderSettings settings;
    Notes notes;
    Effect effect{std::filesystem::path(PERCH_TEST_PLUGINS) / "Hostile.so", HostOptions{}};
    const LookReader looks{{}, {}, {1}, {}};
};

TEST_F(PictureStoreTest, PreviewsOfManyFramesStayWithinTheMemory) {
    constexpr std::int64_t kMemory = 3 * kPicture + 2 * kPreview;
    const auto store = newStore(kMemory);
    std::vector<std::weak_ptr<const pictures::Picture>> pictures;
    std::vector<std::weak_ptr<const FileWorld>> previews;
    for (const FrameFiles& files : plan.frames) {
        {
            const FrameWorlds worlds = store->worlds(files, kEighth);
            pictures.push_back(worlds.input->source);
            previews.push_back(worlds.input);
        }
        std::int64_t bytes = 0;
        for (const auto& picture : pictures)
            if (!picture.expired()) bytes += kPicture;
        for (const auto& preview : previews)
            if (!preview.expired()) bytes += kPreview;
        EXPECT_LE(bytes, kMemory) << files.frame;
        EXPECT_GE(bytes, kPicture + kPreview) << files.frame;
    }
}

TEST_F(PictureStoreTest, FramesAroundAreReadWhereThereIsMemoryForThem) {
    const auto store = newStore(3 * kPicture + kPreview);
    store->worlds(store->filesOf(5), kEighth);
    store->readAround(5);
    for (const int frame : {4, 5, 6})
        EXPECT_TRUE(isKept(*store, frame)) << frame;
    store->worlds(store->filesOf(6), kEighth);
    store->readAround(6);
    for (const int frame : {6, 7})
        EXPECT_TRUE(isKept(*store, frame)) << frame;
}

TEST_F(PictureStoreTest, WhatIsReadAheadNeverTakesThePlaceOfTheFrameThatIsShown) {
    for (const std::int64_t memory : {kPicture, 2 * kPicture, 2 * kPicture + kPreview}) {
        const auto store = newStore(memory);
        store->worlds(store->filesOf(5), kEighth);
        for (int i = 0; i < 3; ++i)
            store->readAround(5);
        EXPECT_EQ(isKept(*store, 5), memory > kPicture) << memory;
        EXPECT_FALSE(isKept(*store, 4)) << memory;
    }
}

TEST_F(PictureStoreTest, TheResultIsKeptWithinTheMemoryToo) {
    const auto store = newStore(kPicture + kPicture / 2);
    EXPECT_EQ(store->result(), nullptr);
    store->keepResult(World(kWidth, kHeight, false));
    store->keepResult(World(kWidth / 2, kHeight, false));
    ASSERT_NE(store->result(), nullptr);
    EXPECT_EQ(store->result()->pixels.width(), kWidth / 2);
    store->input(store->filesOf(1));
    EXPECT_NE(store->result(), nullptr);
    store->input(store->filesOf(2));
    store->input(store->filesOf(3));
    EXPECT_EQ(store->result(), nullptr);
}

}  // namespace
}  // namespace perch::test
