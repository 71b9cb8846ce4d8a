#include "Pictures.h"

bool IsWide(const Picture& picture) {
    return picture.pixels->elementKey() == PILib::kElementKey<PILib::Pixel<PILib::Channel15>>;
}

Picture NewPictureLike(const Picture& picture) {
    const PILib::PixelBuffer& pixels = *picture.pixels;
    return {std::unique_ptr<PILib::PixelBuffer>(pixels.newPixelBuffer(pixels.width, pixels.height)),
            picture.hasAlpha};
}
