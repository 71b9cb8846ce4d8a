// Declaring parameters to the host, and editing copies of them.
#pragma once

#include <cstdint>
#include <type_traits>

#include "PF_Params.h"
#include "Pixel.h"

namespace AELib {

class AEContext;

// The editable copy of a host parameter: AEContext::copyParam makes it, AEContext::updateParamUI sends it. It
// is the host's record and nothing else.
class AEParam : public PF_ParamDef {
public:
    AEParam& operator=(const PF_ParamDef& def);

    void setColor(const PILib::Pixel<PILib::Channel8>& color);
    void enable(bool on);
    // Deliberate: the same as enable(). Pinned by AEParamTest.OpenTwirlyIsEnable.
    void openTwirly(bool open) { enable(open); }
    // Deliberate: a name of 32 characters or more fills the field without a terminator.
    // Pinned by AEParamTest.LongNamesFillTheFieldUnterminated.
    void setName(const char* newName);
    void setChanged();
};

static_assert(sizeof(AEParam) == sizeof(PF_ParamDef) && std::is_trivially_copyable_v<PF_ParamDef>);

// Declares the effect's parameters during PARAMS_SETUP, in display order:
//
//   AEParamCreator create(context);
//   create.popup(1, "Blur Type", 0, "Coarse|Fine");
//   create.slider(5, "Maximum Blur", 0, 0, 100, 200, 10, 1);
//   create.displayPixel();                     // modifies the declaration before it
//
// Each declaration hands the one before it to the host; the destructor hands over the last and publishes the
// count. Host indices are dense from 1 (0 is the source layer); the context learns which one each identifier
// got. Names are cut to 31 characters; label and choice strings are kept by pointer and must outlive the
// effect. A host error is thrown, also by the destructor unless an exception is on its way already; the count
// is then not published.
class AEParamCreator {
public:
    explicit AEParamCreator(AEContext& context);
    ~AEParamCreator() noexcept(false);
    AEParamCreator(const AEParamCreator&) = delete;
    AEParamCreator& operator=(const AEParamCreator&) = delete;

    void layer(int id, const char* name, int dflt);
    void slider(int id, const char* name, float sliderMin, float validMin, float sliderMax, float validMax,
                float dflt, short precision);
    void percent(int id, const char* name, float dflt, short precision);             // 0 to 100
    void angle(int id, const char* name, float dflt, short ignored);                 // degrees
    void point(int id, const char* name, float x, float y, bool ignored);            // per cent of the layer
    void color(int id, const char* name, const PILib::Pixel<PILib::Channel32f>& c);  // made opaque
    void checkbox(int id, const char* name, const char* label, bool dflt);
    void popup(int id, const char* name, int dflt, const char* choices);  // 0-based; items split by '|'
    // Groups start closed whatever `collapsed` says, unless openTwirly() follows.
    // Pinned by AEParamCreatorTest.GroupsStartClosedUnlessTwirledOpen.
    void groupStart(int id, const char* name, bool collapsed);
    void groupEnd(int id);

    void displayPercent();
    void displayPixel();
    void wantPhase();
    void disable();
    void supervise();
    void openTwirly();

    // Hands the pending declaration, if any, to the host.
    void addParam();

    // Field order is given.
    PF_ParamDef def;
    bool pending;
    std::int32_t nextIndex;  // of the next parameter handed over
    AEContext* context;

private:
    void reset();
    void begin(int id, const char* name, PF_ParamType type);

    int exceptionsAtStart;
    bool hostRefused = false;  // the last declaration
};

}  // namespace AELib
