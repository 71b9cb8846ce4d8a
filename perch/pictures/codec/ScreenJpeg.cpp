#include "ScreenJpeg.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>

#include <jpeglib.h>

#include "PictureError.h"

namespace pictures {
namespace {

// At 90 of 100 with colours at half the size the eye finds no difference in a picture that moves.
constexpr int kQuality = 90;

struct Failure {
    jpeg_error_mgr manager;  // first, so that the library's pointer to it is one to the whole
    std::jmp_buf place;
    std::array<char, JMSG_LENGTH_MAX> sentence;
};

// The library must not be returned to, nor may an exception pass through it.
[[noreturn]] void fail(j_common_ptr job) {
    auto* const failure = reinterpret_cast<Failure*>(job->err);
    job->err->format_message(job, failure->sentence.data());
    std::longjmp(failure->place, 1);
}

void ignore(j_common_ptr) {}

struct Output {
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
};

// False where the library has failed. Nothing here has a destructor, which the jump would pass over.
bool compress(const unsigned char* samples, unsigned width, unsigned height, Failure& failure,
              Output& output) {
    jpeg_compress_struct job{};
    job.err = jpeg_std_error(&failure.manager);
    failure.manager.error_exit = fail;
    failure.manager.output_message = ignore;
    if (setjmp(failure.place) != 0) {
        jpeg_destroy_compress(&job);
        return false;
    }
    jpeg_create_compress(&job);
    jpeg_mem_dest(&job, &output.bytes, &output.size);
    job.image_width = width;
    job.image_height = height;
    job.input_components = 4;
    job.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&job);
    jpeg_set_quality(&job, kQuality, TRUE);
    jpeg_start_compress(&job, TRUE);
    while (job.next_scanline < height) {
        JSAMPROW row = const_cast<JSAMPROW>(samples + std::size_t{4} * width * job.next_scanline);
        jpeg_write_scanlines(&job, &row, 1);
    }
    jpeg_finish_compress(&job);
    jpeg_destroy_compress(&job);
    return true;
}

}  // namespace

std::vector<unsigned char> screenJpeg(const Picture& picture) {
    const auto& samples = std::get<0>(picture.samples);
    Failure failure{};
    Output output;
    const bool isDone = compress(samples.data(), static_cast<unsigned>(picture.width),
                                 static_cast<unsigned>(picture.height), failure, output);
    std::vector<unsigned char> bytes;
    if (isDone) bytes.assign(output.bytes, output.bytes + output.size);
    std::free(output.bytes);
    if (!isDone) throw PictureError("its encoder failed: " + std::string(failure.sentence.data()));
    return bytes;
}

}  // namespace pictures
