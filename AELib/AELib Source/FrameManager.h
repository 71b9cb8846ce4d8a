// One instance per frame, from its set-up to its set-down. Caches what a render needs of the call: pictures,
// sizes and ratios. The effect derives from it and renders.
#pragma once

#include <cstdint>
#include <memory>

#include "AEContext.h"
#include "FrameBuffer.h"

namespace AELib {

class FrameManager {
public:
    FrameManager();
    FrameManager(const FrameManager&) = delete;
    FrameManager& operator=(const FrameManager&) = delete;

    // Slot order is given; append only.
    virtual ~FrameManager();
    virtual void handleCommand(AEContext& context);
    // Run before frameSetup and before render: parameters and pictures are those of the current call. A call
    // without a source layer, or a render without an output, fails an assertion.
    virtual void cacheRenderParams(AEContext& context);
    virtual void frameSetup(AEContext& /*context*/) {}
    virtual void render(AEContext& context) = 0;
    virtual void frameSetdown(AEContext& /*context*/) {}

    // Times are in the host's units, time_scale to the second; they may run backwards, steps and rates are
    // then those of forward play. Divisions by a step of 0 give 0 as integers.
    int getCurrentTime() const { return inData->current_time; }
    int getTimeStep() const { return inData->time_step; }
    int getLocalTimeStep() const { return inData->local_time_step; }
    int getAbsTimeStep() const;
    int getAbsLocalTimeStep() const;
    int getTotalTime() const { return inData->total_time; }
    std::uint32_t getTimeScale() const { return inData->time_scale; }
    float getCurrentTimeInSecs() const { return cvtTimeToSecs(getCurrentTime()); }
    float getAbsTimeStepInSecs() const { return cvtTimeToSecs(getAbsTimeStep()); }
    float getAbsLocalTimeStepInSecs() const { return cvtTimeToSecs(getAbsLocalTimeStep()); }
    float getFrameDurationInSecs() const { return getAbsLocalTimeStepInSecs(); }
    float getTotalTimeInSecs() const { return cvtTimeToSecs(getTotalTime()); }
    float getFPS() const;
    int getCurrentFrameNumber() const { return cvtTimeToFrameNumber(getCurrentTime()); }
    int getTotalFrames() const { return cvtTimeToFrameNumber(getTotalTime()); }
    float cvtTimeToSecs(int t) const;
    int cvtSecsToTime(float s) const;  // nearest, halves away from zero
    int cvtTimeToFrameNumber(int t) const;
    int cvtFrameNumberToTime(int n) const;
    float cvtFrameNumberToSecs(int n) const { return cvtTimeToSecs(cvtFrameNumberToTime(n)); }

    // Field order is given; it is also what makes output go before input, and both before the context.
    AEContext context;
    PF_InData* inData = nullptr;                 // of the last cached call, not for use after it
    std::unique_ptr<PILib::PixelBuffer> input;   // the source, of the output's size
    std::unique_ptr<PILib::PixelBuffer> output;  // both of the last render, not for use after it
    std::int32_t inputWidth = 0;                 // of the source layer
    std::int32_t inputHeight = 0;
    std::int32_t outputWidth = 0;
    std::int32_t outputHeight = 0;
    float downsampleX = 1.0F;
    float downsampleY = 1.0F;
    float pixelAspectRatio = 1.0F;
};

}  // namespace AELib
