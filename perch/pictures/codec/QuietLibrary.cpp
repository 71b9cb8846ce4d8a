#include "QuietLibrary.h"

#include <OpenImageIO/imageio.h>
#include <dlfcn.h>

namespace pictures {

void silenceLibrary() {
    OIIO::attribute("debug", 0);  // builds of distributions have it on
}

}  // namespace pictures

// libpng prints an error unless the handler that it was given does not come back. That of the image library
// comes back, and so what it gives is replaced on the way: the dynamic linker finds this function before
// libpng's own of that name.
//
//     image library, libpng  -- handlers -->  this function  -- other handlers -->  libpng's own
extern "C" {

struct Png;
using PngHandler = void (*)(Png*, const char* message);

// As png.h declares it.
__attribute__((visibility("default"))) void png_set_error_fn(Png* png, void* user, PngHandler error,
                                                             PngHandler warning);
}

namespace {

template <typename Function>
Function* functionOfLibpng(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Goes on where the image library has said that it wants to after an error.
void leave(Png* png, const char* /*message*/) {
    static auto* const jump = functionOfLibpng<void(Png*, int)>("png_longjmp");
    jump(png, 1);
}

void ignore(Png* /*png*/, const char* /*message*/) {}

}  // namespace

void png_set_error_fn(Png* png, void* user, PngHandler /*error*/, PngHandler /*warning*/) {
    static auto* const setHandlers =
        functionOfLibpng<void(Png*, void*, PngHandler, PngHandler)>("png_set_error_fn");
    setHandlers(png, user, leave, ignore);
}
