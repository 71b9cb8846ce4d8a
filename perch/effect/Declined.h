// An effect that renders another way than it was asked to.
#pragma once

#include "Error.h"

namespace perch {

// RENDER was answered without an error, and the frame left as it was.
class Declined : public EffectFault {
public:
    using EffectFault::EffectFault;
};

}  // namespace perch
