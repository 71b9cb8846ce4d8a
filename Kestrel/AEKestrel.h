// The effect as the host framework sees it: its parameters, and one frame's render.
#pragma once

#include "FocusPipeline.h"
#include "FrameManager.h"
#include "GlobalManager.h"
#include "SequenceManager.h"

// The effect's identifiers of its parameters. They are stored in projects: never renumber. The panel's order
// is that of the declarations in EffectGlobal::paramsSetup.
enum ParamID : int {
    kBlurType = 1,
    kControlLayer = 2,
    kControlChannel = 3,
    kFocalPoint = 4,
    kMaximumBlur = 5,
    kInvertControl = 6,
    kConformControlSize = 7,
    kBlendWithOriginal = 8,
    kAspectRatio = 9,
    kViewMode = 10,
    kInFocusRange = 11,
};

class EffectGlobal final : public AELib::GlobalManager {
public:
    void paramsSetup(AELib::AEContext& context) override;
    AELib::SequenceManager* newSequenceInstance(AELib::AEContext& context) override;
};

// Keeps no data of its own: nothing is written when a project is saved.
class EffectSequence final : public AELib::SequenceManager {
public:
    void sequenceSetup(AELib::AEContext& context) override;
    void userChangedParam(AELib::AEContext& /*context*/) override {}
    AELib::FrameManager* newFrameInstance(AELib::AEContext& context) override;
};

class EffectFrame final : public AELib::FrameManager {
public:
    explicit EffectFrame(AELib::AEContext& context);

    void frameSetup(AELib::AEContext& /*context*/) override {}
    void render(AELib::AEContext& context) override;

    // The map's steps by themselves; PaintFocus paints this frame's output.
    void ProcessChannel(const PILib::ChannelBuffer& channel, float focalPoint, float inFocusRange,
                        bool invert);
    void PaintFocus(const PILib::ChannelBuffer& map);

    EffectSequence* sequence;  // null when the context has none of this class
};
