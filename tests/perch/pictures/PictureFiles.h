// Writes picture files with the channels, depth and alpha that a test asks for.
#pragma once

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace perch::test {

struct FileShape {
    int width = 1;
    int height = 1;
    int channels = 4;
    bool isPremultiplied = false;
};

// `samples` are interleaved; their type is the file's.
template <typename T>
void writeFile(const std::filesystem::path& path, const FileShape& shape, const std::vector<T>& samples) {
    const OIIO::TypeDesc type(OIIO::BaseTypeFromC<T>::value);
    OIIO::ImageSpec layout(shape.width, shape.height, shape.channels, type);
    if (!shape.isPremultiplied) layout["oiio:UnassociatedAlpha"] = 1;
    const auto file = OIIO::ImageOutput::create(path.string());
    if (!file || !file->open(path.string(), layout) || !file->write_image(type, samples.data()) ||
        !file->close()) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

inline std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace perch::test
