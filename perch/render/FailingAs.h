// Failures of picture files as those of the host.
#pragma once

#include "PictureError.h"

namespace perch {

// Does `body`; its PictureError becomes a Failure, which is InputError, OutputError or the like.
template <typename Failure, typename F>
auto failingAs(const F& body) {
    try {
        return body();
    } catch (const pictures::PictureError& error) {
        throw Failure(error.what());
    }
}

}  // namespace perch
