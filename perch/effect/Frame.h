// A frame step by step. See Effect.h for threads and errors.
#pragma once

#include <memory>

#include "FrameRequest.h"
#include "RenderedFrame.h"
#include "Sequence.h"

namespace perch {

// The steps of one frame, for callers that interleave frames; Sequence::render is the usual way.
class Frame {
public:
    Frame(Sequence& sequence, const FrameRequest& request);  // FRAME_SETUP
    ~Frame();                                                // FRAME_SETDOWN unless finished
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    // In this order, each once. The first two throw EffectError or Cancelled.
    void render();                 // RENDER
    void finish();                 // FRAME_SETDOWN
    const World& picture() const;  // after render()
    RenderedFrame take();          // after finish(); leaves no picture

private:
    void takeInput();
    void takeOutputSize(const PF_OutData& out);
    void checkPixels();
    void checkInput();
    void setDown() noexcept;

    Sequence& sequence;
    FrameRequest request;
    std::unique_ptr<World> inputCopy;  // the effect's own in strict mode, or when it may write to its input
    std::unique_ptr<World> output;     // once rendered
    PF_Handle data = nullptr;          // the effect's, carried from command to command
    bool isSetUp = false;
    bool isOutputDamaged = false;
};

}  // namespace perch
