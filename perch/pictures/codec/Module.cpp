// The entry of the module that programs load the codec from.
#include "Codec.h"

extern "C" __attribute__((visibility("default"))) const pictures::Codec* perchCodec() {
    return &pictures::codec();
}
