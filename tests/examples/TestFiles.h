// Folders and picture files for tests. Files are written and read through OpenImageIO alone, not through the
// code under test.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

// An empty folder of its own, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const std::string& name) const { return path + "/" + name; }
    std::set<std::string> names() const;

    std::string path;
};

enum class Alpha { kStraight, kPremultiplied };

// The samples of a picture file, interleaved, in its own depth.
template <class T>
struct Raw {
    int width;
    int height;
    int channels;
    std::vector<T> samples;

    friend bool operator==(const Raw&, const Raw&) = default;
};

// The samples are written as they are; `alpha` is what the file says of them. Fails the test on error.
template <class T>
void WriteRaw(const std::string& path, const Raw<T>& raw, Alpha alpha = Alpha::kStraight);

// Fails the test unless the file has T's depth and, where it has alpha, says that it is straight.
template <class T>
Raw<T> ReadRaw(const std::string& path);

// RGBA noise at full range, the same in every run.
template <class T>
Raw<T> Noise(int width, int height, int channels, unsigned seed);

std::string BytesOf(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);
