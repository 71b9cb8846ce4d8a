// The frame pipeline: from parameter values, source and control layer to the output frame. Knows no host; the
// effect and programs without a host call it alike.
//
// All buffers have the pixel type and size of the output (8 or 15 bits per channel, straight alpha). Other
// depths, and other sizes, fail an assertion; a buffer of another class is std::bad_cast. On an exception the
// output holds whatever was rendered so far.
#pragma once

#include "FrameBuffer.h"
#include "PIContext.h"
#include "SimdLevel.h"

// The effect's controls for one frame. The defaults are those of a freshly applied effect. Values are not
// clamped; a channel that PILib::ChannelID does not have fails an assertion.
struct RenderInputs {
    int viewMode = 0;           // 0 Normal, else Focus (shows the defocus map)
    int blurType = 0;           // 1 Fine (tent), else Coarse (box)
    int channel = 4;            // a PILib::ChannelID; 4 is Luma
    float focalPoint = 0.0F;    // control value in focus, 0 to 1
    float inFocusRange = 0.0F;  // control values this far from the focal point stay sharp, 0 to 1
    float maxBlur = 10.0F;      // largest radius in full-resolution pixels, 0 to 200
    float aspect = 0.0F;        // -1 (narrow) to 1 (flat)
    bool invert = false;        // the control channel is read inverted
    bool conform = true;  // read, and deliberately without effect: the control layer is always conformed
    float blend = 0.0F;   // share of the original in the result, 0 to 1
};

// The resolution of the frame relative to full size, 1 or below.
struct Downsample {
    float x = 1.0F;
    float y = 1.0F;
};

// True when the blend leaves nothing of the effect to see: the output is the input, and no control layer is
// needed.
bool ShowsOriginal(const RenderInputs& inputs);

// Renders one frame. `control` is the control layer, conformed to the output's size; null when none is
// chosen, and then the output is the input, without the blend. `level` changes the speed alone for channels
// within full scale.
void RenderFrame(PILib::PIContext& context, const RenderInputs& inputs, Downsample downsample,
                 const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
                 const PILib::PixelBuffer* control, PILib::SimdLevel level = PILib::BestSimdLevel());

// Turns a control channel into the defocus map in place: 0 within `inFocusRange` of `focalPoint`, and growing
// with the distance beyond it, in channel units.
void ProcessChannel(const PILib::ChannelBuffer& channel, float focalPoint, float inFocusRange, bool invert);

// The Focus view: an opaque grey of the map where it is not 0, the input's pixel where it is.
void PaintFocus(const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
                const PILib::ChannelBuffer& map);
