// Pictures from the bytes of files and back: the one place that knows an image library, whose loading takes
// longer than most of the program's commands. A program either links the codec or the loader, which finds it
// in a module beside the program when it is first asked for; both define codec().
#pragma once

#include <span>
#include <string>
#include <vector>

#include "EncodingOptions.h"
#include "FileFormat.h"
#include "Picture.h"
#include "ReadOptions.h"

namespace pictures {

struct Encoding {
    FileFormat format = FileFormat::Png;
    EncodingOptions options;
};

struct EncodedPicture {
    std::vector<unsigned char> bytes;
    // What the picture's own file says of it and the format does not hold, by name.
    std::vector<std::string> unheld;
};

// Any thread. Failures are PictureError, with the reason and how to mend it alone: whose bytes they are, the
// caller knows.
class Codec {
public:
    Codec() = default;
    virtual ~Codec() = default;
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;

    // `selected` names a channel, "Z" or "depth.Z", which is then the picture, in grey; or a layer, "beauty",
    // of which the picture is red, green, blue and alpha. Whichever part has it.
    virtual Picture decode(std::span<const unsigned char> bytes, FileFormat format,
                           const std::string& selected, const ReadOptions& options) const = 0;
    virtual EncodedPicture encode(const Picture& picture, const Encoding& encoding) const = 0;
    // As JPEG that is shown and not kept, made in a fraction of the time. Of 8 bits, red, green, blue and
    // alpha, which is left out.
    virtual std::vector<unsigned char> encodeForScreen(const Picture& picture) const = 0;
};

const Codec& codec();

}  // namespace pictures
