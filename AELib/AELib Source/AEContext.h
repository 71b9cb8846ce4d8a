// The one object through which framework and effect talk to the host during a call: it wraps the arguments of
// the entry point and implements the image library's processing context over the host's callbacks.
//
// Lives for one call; copies (each frame instance keeps one) are good until that call returns. Parameters are
// addressed by the effect's own identifiers. Host errors are thrown as int; only multiThread returns them. A
// missing suite is thrown as long, see SuiteHandler.h. Use it on the thread that entered the plug-in; only
// progress() may also be called by iteration thread 0 of multiThread.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "AEParam.h"
#include "Geometry.h"
#include "PF_Entry.h"
#include "PIContext.h"
#include "Pixel.h"

namespace AELib {

class GlobalManager;
class SequenceManager;

class AEContext final : public PILib::PIContext {
public:
    AEContext() = default;
    // All pointers are the host's. Ratios with a denominator of 0 count as 1.
    AEContext(int cmd, PF_InData* inData, PF_OutData* outData, PF_ParamDef** params, PF_LayerDef* output,
              void* extra);

    // Slot order is given; append only.
    bool isDraftMode() const override;
    void checkAbort() const override;
    // Reports every sixteenth step only.
    void progress(int i, int n, float base, float span) const override;
    void setProgress(float start, float end) override;
    float getPixelAspectRatio() const override { return pixelAspectRatio; }
    char** newHandle(std::size_t size) const override;
    char** newLockedHandle(std::size_t size) const override;
    char* lockHandle(char** handle) const override;
    void unlockHandle(char** handle) const override;
    void disposeHandle(char** handle) const override;  // null is nothing
    std::size_t getHandleSize(char** handle) const override;
    void resizeHandle(std::size_t size, char*** handle) const override;
    int getCurrentTime() const override { return inData->current_time; }
    int numProcessors() const override;
    int multiThread(int count, void* refcon,
                    int (*fn)(void* refcon, int thread, int i, int iterations)) const override;

    // The host index of an identifier; an unknown one is the source layer, 0.
    int getParamNumber(int id) const;
    void setParamNumber(int id, int index) const;
    // The host index of the parameter that the user changed; -1 when the host does not say.
    int getChangedParamNumber() const;

    PF_ParamDef* getParam(int id) const;
    // Popups read 0-based, checkboxes 0 or 1, angles in degrees; other types than numbers, and popups without
    // an item below theirs, fail an assertion.
    float getParamFloat(int id) const;
    int getParamInt(int id) const;        // rounded to the nearest
    float getParamPercent(int id) const;  // as a fraction
    bool getParamBool(int id) const { return getParamInt(id) > 0; }
    PILib::Pixel<PILib::Channel8> getParamColor8(int id) const;
    PILib::Pixel<PILib::Channel32f> getParamColor(int id) const;
    PILib::TPoint<float> getParamPoint(int id) const;   // pixels
    PILib::TPoint<int> getParamIntPoint(int id) const;  // whole pixels, rounded down

    void setParamColor(int id, const PILib::Pixel<PILib::Channel8>& color) const;
    void disableParam(int id, bool disable) const;
    // A private copy to edit and send with updateParamUI; kept by the context.
    AEParam& copyParam(int id);
    void updateParamUI(int id);
    // Needs a host later than 12.10 with suites; otherwise nothing happens. If a step fails, the references
    // taken before it are not given back.
    void hideParam(int id, bool hide) const;

    // True for hosts with suites and an interface version later than 12.10.
    bool isAE6Compatible() const;
    bool supportsFrameData() const { return isAE6Compatible(); }

    // Field order is given.
    std::unordered_map<int, AEParam> paramCopies;
    PF_Cmd cmd = 0;
    PF_InData* inData = nullptr;
    PF_OutData* outData = nullptr;
    PF_ParamDef** params = nullptr;
    PF_LayerDef* output = nullptr;
    void* extra = nullptr;
    GlobalManager* globalManager = nullptr;
    SequenceManager* sequenceManager = nullptr;
    float downsampleX = 1.0F;
    float downsampleY = 1.0F;
    float pixelAspectRatio = 1.0F;
    std::int32_t progressOffset = 0;     // ten-thousandths of the whole job
    std::int32_t progressScale = 10000;  // likewise

private:
    const PF_UtilCallbacks* utils() const { return inData->utils; }
};

// The utility callbacks of the current call. Read on the thread that entered the plug-in.
extern PF_UtilCallbacks* gPF_Utils;

// A host ratio as float; a denominator of 0 counts as 1.
float RatioOf(const PF_RationalScale& scale);

}  // namespace AELib
