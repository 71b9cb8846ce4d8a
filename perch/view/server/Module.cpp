// The entry of the module that the program loads the server from.
#include "ViewOptions.h"

extern "C" __attribute__((visibility("default"))) int perchServeView(const perch::ViewOptions* options) {
    return perch::serveView(*options);
}
