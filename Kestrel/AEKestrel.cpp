#include "AEKestrel.h"

#include <memory>

#include "AEPixelBuffer.h"

namespace {

using AELib::AEContext;

RenderInputs ReadInputs(const AEContext& context) {
    RenderInputs inputs;
    inputs.viewMode = context.getParamInt(kViewMode);
    inputs.blurType = context.getParamInt(kBlurType);
    inputs.channel = context.getParamInt(kControlChannel);
    inputs.focalPoint = context.getParamPercent(kFocalPoint);
    inputs.inFocusRange = context.getParamPercent(kInFocusRange);
    inputs.maxBlur = context.getParamFloat(kMaximumBlur);
    inputs.aspect = context.getParamFloat(kAspectRatio);
    inputs.invert = context.getParamBool(kInvertControl);
    inputs.conform = context.getParamBool(kConformControlSize);
    inputs.blend = context.getParamPercent(kBlendWithOriginal);
    return inputs;
}

}  // namespace

void EffectGlobal::paramsSetup(AEContext& context) {
    AELib::AEParamCreator create(context);
    create.popup(kViewMode, "View Mode", 0, "Normal|Focus");
    create.popup(kBlurType, "Blur Type", 0, "Coarse|Fine");
    create.layer(kControlLayer, "Control Layer", 0);
    create.popup(kControlChannel, "Control Channel", 4, "Alpha|Red|Green|Blue|Luma|Lightness|Brightness");
    create.percent(kFocalPoint, "Focal Point", 0, 1);
    create.percent(kInFocusRange, "In-focus Range", 0, 1);
    create.slider(kMaximumBlur, "Maximum Blur", 0, 0, 100, 200, 10, 1);
    create.slider(kAspectRatio, "Aspect Ratio", -1, -1, 1, 1, 0, 1);
    create.checkbox(kInvertControl, "Invert Control", "Invert", false);
    create.checkbox(kConformControlSize, "Conform Control Size", "Conform", true);
    create.percent(kBlendWithOriginal, "Blend With Original", 0, 1);
}

AELib::SequenceManager* EffectGlobal::newSequenceInstance(AEContext& /*context*/) {
    return new EffectSequence;
}

void EffectSequence::sequenceSetup(AEContext& context) {
    SequenceManager::sequenceSetup(context);
}

AELib::FrameManager* EffectSequence::newFrameInstance(AEContext& context) {
    return new EffectFrame(context);
}

EffectFrame::EffectFrame(AEContext& context)
    : sequence(dynamic_cast<EffectSequence*>(context.sequenceManager)) {}

void EffectFrame::render(AEContext& context) {
    const RenderInputs inputs = ReadInputs(context);
    const Downsample downsample{downsampleX, downsampleY};
    if (ShowsOriginal(inputs)) {
        RenderFrame(context, inputs, downsample, *output, *input, nullptr);
        return;
    }
    AELib::LayerCheckout layer(context, kControlLayer);
    std::unique_ptr<PILib::PixelBuffer> control;
    if (layer.hasPixels()) {
        control.reset(AELib::MakeAEPixelBuffer(context, layer.param.u.ld, outputWidth, outputHeight,
                                               PILib::kAlignCenter));
    }
    RenderFrame(context, inputs, downsample, *output, *input, control.get());
}

void EffectFrame::ProcessChannel(const PILib::ChannelBuffer& channel, float focalPoint, float inFocusRange,
                                 bool invert) {
    ::ProcessChannel(channel, focalPoint, inFocusRange, invert);
}

void EffectFrame::PaintFocus(const PILib::ChannelBuffer& map) {
    ::PaintFocus(*output, *input, map);
}

AELib::GlobalManager* AELib::NewGlobalManagerInstance() {
    return new EffectGlobal;
}
