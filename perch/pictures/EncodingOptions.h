#pragma once

#include <functional>
#include <string>

namespace pictures {

// Of PNG and TIFF files, which lose nothing at any level: from 0, none, to the most. The fast one takes much
// less time than the encoders' own choice, 6, for files somewhat larger; docs/perch.md has the figures.
constexpr int kFastCompression = 2;
constexpr int kMostCompression = 9;

// How a picture is written, whatever its format.
struct EncodingOptions {
    int compression = kFastCompression;  // of PNG and TIFF
    std::string openExrCompression = "zip";
    int jpegQuality = 0;  // 1 to 100; 0: the encoder's own
    // Without it DPX files of 16 bits keep the 10 or 12 of a DPX file that the picture is from.
    bool hasChosenDepth = false;
    std::string software{};  // what the file says that it was made by; empty: nothing
    // Called again and again while the file is made, every few rows; what it throws ends that, and nothing is
    // left of the file.
    std::function<void()> checkpoint{};
    // Called once, when the bytes of the file are known and only the disk is left.
    std::function<void()> isEncoded{};

    void reachCheckpoint() const {
        if (checkpoint) checkpoint();
    }
};

}  // namespace pictures
