#include "FrameManager.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "AEPixelBuffer.h"
#include "Errors.h"
#include "HostSites.h"
#include "InstanceHandle.h"
#include "PF_Values.h"

namespace AELib {

namespace {

void Require(bool condition, int line) {
    PILib::_Assert(condition, line, site::kFrameManagerFile);
}

int Magnitude(A_long step) {
    const std::int64_t magnitude = step < 0 ? -std::int64_t{step} : step;
    return static_cast<int>(std::min<std::int64_t>(magnitude, INT32_MAX));
}

}  // namespace

FrameManager::FrameManager() {
    ListInstance(this, typeid(FrameManager));
}

FrameManager::~FrameManager() {
    UnlistInstance(this);
}

void FrameManager::handleCommand(AEContext& call) {
    switch (call.cmd) {
        case PF_Cmd_FRAME_SETUP:
            cacheRenderParams(call);
            frameSetup(call);
            return;
        case PF_Cmd_RENDER:
            cacheRenderParams(call);
            render(call);
            return;
        case PF_Cmd_FRAME_SETDOWN:
            frameSetdown(call);
            return;
        default:
            return;
    }
}

void FrameManager::cacheRenderParams(AEContext& call) {
    Require(call.params != nullptr && call.params[0] != nullptr, site::kSourceLayer);
    Require(call.cmd != PF_Cmd_RENDER || call.output != nullptr, site::kOutputWorld);
    output.reset();
    input.reset();
    context = call;
    inData = call.inData;
    PF_LayerDef& source = call.params[0]->u.ld;
    inputWidth = source.width;
    inputHeight = source.height;
    downsampleX = RatioOf(inData->downsample_x);
    downsampleY = RatioOf(inData->downsample_y);
    pixelAspectRatio = RatioOf(inData->pixel_aspect_ratio);
    if (call.cmd != PF_Cmd_RENDER) return;

    output.reset(MakeAEPixelBuffer(context, *call.output));
    outputWidth = output->width;
    outputHeight = output->height;
    input.reset(MakeAEPixelBuffer(context, source));
    if (outputWidth == inputWidth && outputHeight == inputHeight) return;
    std::unique_ptr<PILib::PixelBuffer> placed(input->newPixelBuffer(outputWidth, outputHeight));
    placed->load(*input, PILib::TPoint<int>{inData->output_origin_x, inData->output_origin_y});
    input = std::move(placed);
}

int FrameManager::getAbsTimeStep() const {
    return Magnitude(inData->time_step);
}

int FrameManager::getAbsLocalTimeStep() const {
    return Magnitude(inData->local_time_step);
}

float FrameManager::getFPS() const {
    return static_cast<float>(getTimeScale()) / static_cast<float>(getAbsLocalTimeStep());
}

float FrameManager::cvtTimeToSecs(int t) const {
    return static_cast<float>(t) / static_cast<float>(getTimeScale());
}

int FrameManager::cvtSecsToTime(float s) const {
    return PILib::TruncToInt32(std::round(static_cast<float>(getTimeScale()) * s));
}

int FrameManager::cvtTimeToFrameNumber(int t) const {
    const int step = getAbsLocalTimeStep();
    return step == 0 ? 0 : t / step;
}

int FrameManager::cvtFrameNumberToTime(int n) const {
    return static_cast<int>(std::int64_t{getAbsLocalTimeStep()} * n);
}

}  // namespace AELib
