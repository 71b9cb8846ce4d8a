#include "TestFiles.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() : path((fs::temp_directory_path() / "pull-focus-XXXXXX").string()) {
    if (mkdtemp(path.data()) == nullptr) ADD_FAILURE() << "cannot create " << path;
}

ScratchFolder::~ScratchFolder() {
    fs::remove_all(path);
}

std::set<std::string> ScratchFolder::names() const {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(path))
        found.insert(entry.path().filename().string());
    return found;
}

template <class T>
void WriteRaw(const std::string& path, const Raw<T>& raw, Alpha alpha) {
    constexpr OIIO::TypeDesc kDepth(OIIO::BaseTypeFromC<T>::value);
    OIIO::ImageSpec layout(raw.width, raw.height, raw.channels, kDepth);
    if (raw.channels == 2) {
        layout.channelnames = {"Y", "A"};
        layout.alpha_channel = 1;
    }
    if (alpha == Alpha::kStraight) layout["oiio:UnassociatedAlpha"] = 1;
    const auto file = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(file && file->open(path, layout)) << path;
    ASSERT_TRUE(file->write_image(kDepth, raw.samples.data()) && file->close()) << path;
}

template <class T>
Raw<T> ReadRaw(const std::string& path) {
    constexpr OIIO::TypeDesc kDepth(OIIO::BaseTypeFromC<T>::value);
    OIIO::attribute("threads", 1);  // no pool, whose locks the thread sanitizer cannot see
    OIIO::ImageSpec config;
    config["oiio:UnassociatedAlpha"] = 1;
    const auto file = OIIO::ImageInput::open(path, &config);
    if (!file) {
        ADD_FAILURE() << "cannot open " << path << ": " << OIIO::geterror();
        return {};
    }
    const OIIO::ImageSpec& layout = file->spec();
    EXPECT_EQ(layout.format, kDepth) << path;
    const bool isStraight = layout.get_int_attribute("oiio:UnassociatedAlpha") != 0;
    EXPECT_TRUE(isStraight || layout.alpha_channel < 0) << path;
    Raw<T> raw{layout.width, layout.height, layout.nchannels, {}};
    raw.samples.resize(layout.image_pixels() * static_cast<std::size_t>(layout.nchannels));
    EXPECT_TRUE(file->read_image(0, 0, 0, layout.nchannels, kDepth, raw.samples.data())) << path;
    return raw;
}

template <class T>
Raw<T> Noise(int width, int height, int channels, unsigned seed) {
    Raw<T> raw{width, height, channels, {}};
    std::mt19937 random(seed);
    for (int i = 0; i < width * height * channels; ++i) {
        raw.samples.push_back(static_cast<T>(random() & std::numeric_limits<T>::max()));
    }
    return raw;
}

std::string BytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    ASSERT_TRUE(file.flush()) << path;
}

template void WriteRaw(const std::string&, const Raw<std::uint8_t>&, Alpha);
template void WriteRaw(const std::string&, const Raw<std::uint16_t>&, Alpha);
template void WriteRaw(const std::string&, const Raw<std::uint32_t>&, Alpha);
template void WriteRaw(const std::string&, const Raw<float>&, Alpha);
template Raw<std::uint8_t> ReadRaw(const std::string&);
template Raw<std::uint16_t> ReadRaw(const std::string&);
template Raw<std::uint8_t> Noise(int, int, int, unsigned);
template Raw<std::uint16_t> Noise(int, int, int, unsigned);
