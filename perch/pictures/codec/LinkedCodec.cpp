// The codec itself, for programs that link it.
#include <OpenImageIO/imageio.h>

#include "Codec.h"
#include "Decode.h"
#include "Encode.h"
#include "QuietLibrary.h"
#include "ScreenJpeg.h"

namespace pictures {
namespace {

class LinkedCodec final : public Codec {
public:
    LinkedCodec() {
        silenceLibrary();
        OIIO::attribute("threads", 1);  // frames are decoded beside one another; a pool would only be started
    }

    Picture decode(std::span<const unsigned char> bytes, FileFormat format, const std::string& selected,
                   const ReadOptions& options) const override {
        return pictures::decode(bytes, format, selected, options);
    }

    EncodedPicture encode(const Picture& picture, const Encoding& encoding) const override {
        return pictures::encode(picture, encoding);
    }

    std::vector<unsigned char> encodeForScreen(const Picture& picture) const override {
        return screenJpeg(picture);
    }
};

}  // namespace

const Codec& codec() {
    static const LinkedCodec linked;
    return linked;
}

}  // namespace pictures
