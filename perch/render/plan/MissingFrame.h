// What becomes of a frame of which a file is missing. What is not an error is told of.
#pragma once

namespace perch {

// Of the input.
enum class MissingFrame { Error, Skip };

// Of a layer. Hold: it keeps the picture of the last frame before that has a file; before the first such
// frame, of that. None: the frame is rendered without the layer.
enum class MissingLayerFrame { Error, Hold, None };

}  // namespace perch
