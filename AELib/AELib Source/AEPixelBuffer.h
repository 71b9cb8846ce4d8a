// The host's pictures as library pixel buffers, without copying; and owners of what the host lends for a
// render.
#pragma once

#include "AEContext.h"
#include "FrameBuffer.h"
#include "PF_Entry.h"

namespace AELib {

// Views a world of the host in place, or owns one that the host allocated for it. A viewed world must outlive
// its use. The host callbacks are those of the context's call, so a buffer that owns a world must be
// destroyed before that call returns.
template <class P>
class AEPixelBuffer : public PILib::PixelBuf<P> {
public:
    // Views `world`.
    AEPixelBuffer(AEContext& context, PF_LayerDef& world);
    // Views `world` where it has that size; else owns a new world filled from it, resampled by the host to
    // the whole size. The alignment has no effect.
    AEPixelBuffer(AEContext& context, PF_LayerDef& world, int width, int height, PILib::Alignment alignment);
    ~AEPixelBuffer() override;

    // Mixed by the host, weighted by alpha, if `other` is a host picture too.
    void blend(PILib::PIContext& context, const PILib::PixelBuffer& other, float fraction) const override;
    void allocate() override;
    // Disposes an owned world; a viewed one is only forgotten.
    void deallocate() override;

    // Takes size, rows and the base address, which is asked of the host, from `world`. A world of an
    // impossible size, or whose rows do not hold its pixels, fails an assertion.
    void initializeWithPFEW(PF_LayerDef& world);

    // Field order is given.
    PF_LayerDef* layer = nullptr;
    PF_EffectWorld world{};
    bool ownsWorld = false;
    PF_InData* inData;

private:
    explicit AEPixelBuffer(AEContext& context);
    void release();
    void fillFrom(const PF_LayerDef& source);
};

extern template class AEPixelBuffer<PILib::Pixel<PILib::Channel8>>;
extern template class AEPixelBuffer<PILib::Pixel<PILib::Channel15>>;

// A buffer of the world's depth, owned by the caller.
PILib::PixelBuffer* MakeAEPixelBuffer(AEContext& context, PF_LayerDef& world);
PILib::PixelBuffer* MakeAEPixelBuffer(AEContext& context, PF_LayerDef& world, int width, int height,
                                      PILib::Alignment alignment);

// A layer parameter checked out of the host, and checked in again on destruction, even if the checkout
// failed.
class LayerCheckout {
public:
    LayerCheckout() = default;
    // Delegates, so that the destructor checks in what a failed checkout leaves.
    LayerCheckout(AEContext& context, int id, int time) : LayerCheckout() { initialize(context, id, time); }
    LayerCheckout(AEContext& context, int id) : LayerCheckout(context, id, context.getCurrentTime()) {}
    ~LayerCheckout();
    LayerCheckout(const LayerCheckout&) = delete;
    LayerCheckout& operator=(const LayerCheckout&) = delete;

    void initialize(AEContext& context, int id, int time);

    // False for a layer parameter set to none, and for a layer of no size.
    bool hasPixels() const {
        return param.u.ld.data != nullptr && param.u.ld.width > 0 && param.u.ld.height > 0;
    }

    // Field order is given.
    PF_ParamDef param{};
    PF_InData* inData = nullptr;
    bool checkedOut = false;
};

// Owns a world that the effect had the host allocate.
class PFEffectWorldHolder {
public:
    explicit PFEffectWorldHolder(AEContext& context) : context(&context) {}
    ~PFEffectWorldHolder();
    PFEffectWorldHolder(const PFEffectWorldHolder&) = delete;
    PFEffectWorldHolder& operator=(const PFEffectWorldHolder&) = delete;

    PF_EffectWorld world{};
    AEContext* context;
};

}  // namespace AELib
