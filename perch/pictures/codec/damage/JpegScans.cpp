#include "JpegScans.h"

#include <csetjmp>
#include <cstddef>
#include <cstdio>  // for the next header

// clang-format off
#include <jpeglib.h>
// clang-format on

namespace pictures {
namespace {

struct Listener {
    jpeg_error_mgr handlers;  // the first, so that its address is the listener's
    std::jmp_buf afterError;
};

[[noreturn]] void leave(j_common_ptr decoder) {
    std::longjmp(reinterpret_cast<Listener*>(decoder->err)->afterError, 1);  // NOLINT(cert-err52-cpp)
}

void ignore(j_common_ptr /*decoder*/) {}

// The pixels of the smallest picture that the decoder makes are thrown away.
void decodeAll(jpeg_decompress_struct& decoder, std::span<const unsigned char> jpeg) {
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&decoder, TRUE);
    decoder.scale_denom = 8;
    jpeg_start_decompress(&decoder);
    const JDIMENSION rowSize = decoder.output_width * static_cast<JDIMENSION>(decoder.output_components);
    const JSAMPARRAY row =
        decoder.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&decoder), JPOOL_IMAGE, rowSize, 1);
    while (decoder.output_scanline < decoder.output_height)
        jpeg_read_scanlines(&decoder, row, 1);
    jpeg_finish_decompress(&decoder);
}

}  // namespace

bool hasDamagedScan(std::span<const unsigned char> jpeg) {
    Listener listener{};
    jpeg_decompress_struct decoder{};
    decoder.err = jpeg_std_error(&listener.handlers);  // which counts warnings
    listener.handlers.error_exit = leave;
    listener.handlers.output_message = ignore;
    // Nothing between here and the error has a destructor.
    const bool isGivenUp = setjmp(listener.afterError) != 0;  // NOLINT(cert-err52-cpp)
    if (!isGivenUp) decodeAll(decoder, jpeg);
    jpeg_destroy_decompress(&decoder);
    return isGivenUp || listener.handlers.num_warnings > 0;
}

}  // namespace pictures
