// Pictures of a shot as files have them and as the effect is given them, kept for as long as there is memory:
// those that were not asked for the longest go first. Any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include "Effect.h"
#include "FileWorlds.h"
#include "FramePlan.h"
#include "LayerReader.h"
#include "RenderJob.h"
#include "Shot.h"

namespace perch {

// Of one frame, at one size.
struct FrameWorlds {
    std::shared_ptr<const FileWorld> input;
    LayerWorlds layers{};
};

class PictureStore {
public:
    // Keeps references. Finds the ranges that are left to the first frame.
    explicit PictureStore(const Shot& shot);

    // Throw Error, which names the file. `scale` is of the file's own size.
    FrameWorlds worlds(const FrameFiles& files, const PF_RationalScale& scale);
    SharedPicture input(const FrameFiles& files);
    SharedPicture layer(const FrameFiles& files, PF_ParamIndex index);  // null where there is none

    const FrameFiles& filesOf(std::int32_t frame) const;
    // That frames before and after a frame are there when they are asked for, as far as there is memory for
    // them beside the frame's own.
    void readAround(std::int32_t frame);

    // The effect's picture in full size that was made last; null where it has gone.
    void keepResult(World result);
    std::shared_ptr<const FileWorld> result();

private:
    using Paths = std::set<std::filesystem::path>;
    // 0 is the input, -1 the result; the picture of a file, or a world of it.
    using Key = std::tuple<PF_ParamIndex, std::filesystem::path, A_long, A_u_long, Depth>;
    struct Kept {
        Key key;
        SharedPicture picture;
        std::shared_ptr<const FileWorld> world;

        // The picture that it holds, as a world holds the one that it was made of.
        const pictures::Picture* heldPicture() const;
    };

    SharedPicture picture(PF_ParamIndex index, const std::filesystem::path& path, const Paths& shown = {});
    std::shared_ptr<const FileWorld> world(PF_ParamIndex index, const std::filesystem::path& path,
                                           const PF_RationalScale& scale, Depth depth);
    std::map<PF_ParamIndex, std::filesystem::path> layersOf(const FrameFiles& files) const;
    // What is kept of files: the pictures, and together with their worlds.
    struct Share {
        std::int64_t pictures = 0;
        std::int64_t all = 0;
    };
    Share shareOf(const Paths& files);
    std::optional<Kept> find(const Key& key);
    void keep(Kept made, const Paths& shown = {});
    void dropOldest();
    Paths pathsOf(const FrameFiles& files) const;

    const Effect& effect;
    const RenderSettings& settings;
    const FramePlan& plan;
    const std::int64_t mostBytes;
    LayerReader reader;
    std::mutex mutex;
    std::list<Kept> kept;  // the one asked for last is the first
    std::map<Key, std::list<Kept>::iterator> byKey;
    std::map<const pictures::Picture*, int> holders;  // of the pictures: how many of those that are kept
    std::int64_t bytes = 0;                           // of the worlds and pictures, each once
};

}  // namespace perch
