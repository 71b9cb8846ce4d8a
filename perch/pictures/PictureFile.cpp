#include "PictureFile.h"

#include <fmt/format.h>

#include <optional>
#include <system_error>

#include "FileBytes.h"
#include "FileIdentity.h"
#include "PictureError.h"
#include "ReplacedFile.h"
#include "StartFolder.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;

FileFormat requireFormat(const fs::path& path, std::span<const unsigned char> bytes) {
    if (const std::optional<FileFormat> format = formatOfBytes(bytes)) return *format;
    const std::string_view foreign = foreignFormatOf(bytes);
    if (foreign.empty()) {
        refuseToRead(
            path,
            "it is not a picture, or a damaged one; name a PNG, TIFF, OpenEXR, DPX, TGA, JPEG or WebP file");
    }
    refuseToRead(path, fmt::format("it is {} file; convert it to PNG, TIFF or OpenEXR", foreign));
}

FileFormat requireFormat(const fs::path& path) {
    const std::optional<FileFormat> format = formatOfName(path);
    if (format && isWritten(*format)) return *format;
    refuseToWrite(path, "its name must end in .png, .tif, .tiff, .exr, .dpx, .tga, .jpg or .jpeg");
}

}  // namespace

Picture readPicture(const fs::path& path, const std::string& selected, const ReadOptions& options) {
    const FileBytes bytes = readFile(path);
    const FileFormat format = requireFormat(path, bytes);
    try {
        return codec().decode(bytes, format, selected, options);
    } catch (const PictureError& error) {
        refuseToRead(path, error.what());
    }
}

// A file whose name has a colon is that file, and names that end as a picture's are of files.
SelectedPicture parseSelectedPicture(const std::string& text) {
    std::error_code ignored;
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || formatOfName(text) || fs::exists(text, ignored)) return {text, ""};
    const std::string path = text.substr(0, colon);
    if (!formatOfName(path)) return {text, ""};
    return {path, text.substr(colon + 1)};
}

void requireFormatFor(const fs::path& path, SampleType type, bool withAlpha) {
    const FileFormat format = requireFormat(path);
    if (!holds(format, type)) {
        refuseToWrite(path,
                      fmt::format("{} holds {} per channel and the picture has {}; use {}", nameOf(format),
                                  typesOf(format), nameOf(type), isFloat(type) ? ".exr" : ".png or .tif"));
    }
    if (withAlpha && !holdsAlpha(format)) {
        refuseToWrite(
            path, fmt::format("{} holds no alpha and the picture has one; use .png or .tif", nameOf(format)));
    }
}

void requireWritable(const fs::path& path, SampleType type, bool withAlpha) {
    requireFormatFor(path, type, withAlpha);
    std::error_code ignored;
    const fs::path folder = folderOf(path);
    if (!fs::is_directory(placeOf(folder), ignored)) {
        refuseToWrite(path, fmt::format("there is no folder \"{}\"; create it first", folder.string()));
    }
    if (fs::is_directory(placeOf(path), ignored))
        refuseToWrite(path, "a folder has this name; choose another");
}

void prepareOutputs(std::span<const fs::path> paths) {
    for (const fs::path& path : paths)
        requireFormat(path);
    prepareToReplace(paths);
}

void requirePlaces(std::span<const fs::path> paths) {
    for (const fs::path& path : paths)
        requireFormat(path);
    requireReplaceable(paths);
}

void requireNotRead(const fs::path& output, std::span<const fs::path> inputs) {
    const std::optional<FileIdentity> written = identityOf(output);
    if (!written) return;
    for (const fs::path& input : inputs) {
        if (identityOf(input) == written) {
            refuseToWrite(output, fmt::format("it is the file \"{}\", which is read; choose another name",
                                              input.string()));
        }
    }
}

std::vector<std::string> writePicture(const fs::path& path, const Picture& picture,
                                      const EncodingOptions& options) {
    requireWritable(path, picture.type(), picture.hasAlpha());
    EncodedPicture encoded;
    try {
        encoded = codec().encode(picture, {.format = requireFormat(path), .options = options});
    } catch (const PictureError& error) {
        refuseToWrite(path, error.what());
    }
    if (options.isEncoded) options.isEncoded();
    replaceFile(path, encoded.bytes, options.checkpoint);
    return encoded.unheld;
}

}  // namespace pictures
