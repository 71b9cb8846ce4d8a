// Failures of picture files, each one sentence for the user: which file, what is wrong with it, and how to
// mend it. Defined in headers alone, so that it can be thrown by a library that is loaded on first use.
#pragma once

#include <stdexcept>

namespace pictures {

class PictureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace pictures
