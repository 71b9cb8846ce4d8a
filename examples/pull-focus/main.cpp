// pull-focus BEAUTY CONTROL OUT [options]: blurs a picture by a control picture, such as its depth pass.
//
// The frame pipeline in its shortest complete use: read two pictures into buffers, give them and the controls
// to RenderFrame, write the buffer that it filled. Exit code 0 done, 1 failed, 2 wrong usage.
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

#include "FocusPipeline.h"
#include "Options.h"
#include "Pictures.h"
#include "ThreadPoolContext.h"

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

void PullFocus(const Options& options) {
    PrepareOutput(options.output, {options.beauty, options.control.file.path});
    const Picture beauty = ReadPicture(options.beauty);
    const Picture control = ReadControl(options.control, beauty);
    RequireWritable(options.output, beauty);

    const Picture result = NewPictureLike(beauty);
    PILib::ThreadPoolContext context(options.threads);
    constexpr Downsample kFullResolution{};
    RenderFrame(context, options.inputs, kFullResolution, *result.pixels, *beauty.pixels,
                control.pixels.get());

    WritePicture(options.output, result);
}

int Fail(int exitCode, std::string_view sentence) {
    std::cerr << "pull-focus: " << sentence << '\n';
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = ParseOptions(argc, argv);
        if (!options.help.empty()) {
            std::cout << options.help;
            return kDone;
        }
        PullFocus(options);
        return kDone;
    } catch (const UsageError& error) {
        return Fail(kWrongUsage, error.what());
    } catch (const std::bad_alloc&) {
        return Fail(kFailed, "there is not enough memory for pictures of this size; give it smaller ones");
    } catch (const std::exception& error) {
        return Fail(kFailed, error.what());
    } catch (int code) {  // how the library reports its own failures
        return Fail(kFailed, "the render failed with code " + std::to_string(code));
    }
}
