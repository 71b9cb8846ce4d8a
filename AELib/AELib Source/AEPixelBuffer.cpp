#include "AEPixelBuffer.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "Errors.h"
#include "HostCallback.h"
#include "HostSites.h"
#include "PF_Values.h"
#include "Transform2D.h"

namespace AELib {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::ThrowIfErr;

namespace {

template <class P>
constexpr bool kIsDeep = std::is_same_v<P, Pixel<Channel15>>;

// Hosts give 30,000 at most. Beyond it even the rows of a world without columns take long to walk.
constexpr A_long kLargestExtent = 1 << 20;

void RequirePossibleSize(const PF_EffectWorld& world) {
    const auto isPossible = [](A_long extent) { return extent >= 0 && extent <= kLargestExtent; };
    PILib::_Assert(isPossible(world.width) && isPossible(world.height), site::kWorldSize,
                   site::kAEPixelBufferFile);
}

bool HasPixels(const PF_EffectWorld& world) {
    return world.width > 0 && world.height > 0;
}

template <class P>
std::int64_t RowSize(const PF_EffectWorld& world) {
    return std::int64_t{world.width} * static_cast<std::int64_t>(sizeof(P));
}

// Rows hold their pixels, begin where a pixel may, and leave a gap that the buffer can tell.
template <class P>
void RequireRowsThatFit(const PF_EffectWorld& world) {
    const std::int64_t rowBytes = world.rowbytes;
    const bool isWide = std::abs(rowBytes) >= RowSize<P>(world);
    const bool isAligned = rowBytes % static_cast<std::int64_t>(alignof(P)) == 0;
    const bool isTold = rowBytes - RowSize<P>(world) >= std::numeric_limits<std::int32_t>::min();
    PILib::_Assert(!HasPixels(world) || (isWide && isAligned && isTold), site::kWorldRowsFit,
                   site::kAEPixelBufferFile);
}

// The world's first pixel, as the host gives it for the depth of P.
template <class P>
unsigned char* BaseAddress(const PF_InData& inData, PF_LayerDef& world) {
    if constexpr (kIsDeep<P>) {
        PF_Pixel16* first = nullptr;
        ThrowIfErr(HostCallback(inData.utils, &PF_UtilCallbacks::get_pixel_data16)(&world, nullptr, &first));
        return reinterpret_cast<unsigned char*>(first);
    } else {
        PF_Pixel8* first = nullptr;
        ThrowIfErr(HostCallback(inData.utils, &PF_UtilCallbacks::get_pixel_data8)(&world, nullptr, &first));
        return reinterpret_cast<unsigned char*>(first);
    }
}

void DisposeWorld(const PF_InData& inData, PF_EffectWorld& world) {
    if (inData.utils != nullptr && inData.utils->dispose_world != nullptr)
        inData.utils->dispose_world(inData.effect_ref, &world);
}

}  // namespace

template <class P>
AEPixelBuffer<P>::AEPixelBuffer(AEContext& context) : inData(context.inData) {}

template <class P>
AEPixelBuffer<P>::AEPixelBuffer(AEContext& context, PF_LayerDef& world) : AEPixelBuffer(context) {
    initializeWithPFEW(world);
}

// Delegates, so that the destructor disposes the new world when the resampling fails.
template <class P>
AEPixelBuffer<P>::AEPixelBuffer(AEContext& context, PF_LayerDef& world, int width, int height,
                                PILib::Alignment /*alignment*/)
    : AEPixelBuffer(context) {
    RequirePossibleSize(world);
    if (world.width == width && world.height == height) {
        initializeWithPFEW(world);
        return;
    }
    RequireRowsThatFit<P>(world);
    this->width = width;
    this->height = height;
    AEPixelBuffer::allocate();
    fillFrom(world);
}

template <class P>
AEPixelBuffer<P>::~AEPixelBuffer() {
    release();
}

template <class P>
void AEPixelBuffer<P>::initializeWithPFEW(PF_LayerDef& source) {
    RequirePossibleSize(source);
    unsigned char* const base = BaseAddress<P>(*inData, source);
    PILib::_Assert(!HasPixels(source) || base != nullptr, site::kWorldHasPixels, site::kAEPixelBufferFile);
    PILib::_Assert(reinterpret_cast<std::uintptr_t>(base) % alignof(P) == 0, site::kWorldRowsFit,
                   site::kAEPixelBufferFile);
    RequireRowsThatFit<P>(source);
    this->width = source.width;
    this->height = source.height;
    this->rowBytes = source.rowbytes;
    this->rowPadding = static_cast<std::int32_t>(source.rowbytes - RowSize<P>(source));
    this->data = base;
    layer = &source;
}

template <class P>
void AEPixelBuffer<P>::allocate() {
    constexpr PF_NewWorldFlags kFlags = kIsDeep<P> ? PF_NewWorldFlag_DEEP_PIXELS : PF_NewWorldFlag_NONE;
    ThrowIfErr(HostCallback(inData->utils, &PF_UtilCallbacks::new_world)(inData->effect_ref, this->width,
                                                                         this->height, kFlags, &world));
    ownsWorld = true;
    initializeWithPFEW(world);
}

template <class P>
void AEPixelBuffer<P>::deallocate() {
    release();
}

template <class P>
void AEPixelBuffer<P>::release() {
    if (ownsWorld) {
        DisposeWorld(*inData, world);
        this->data = nullptr;
    }
    ownsWorld = false;
    layer = nullptr;
}

template <class P>
void AEPixelBuffer<P>::fillFrom(const PF_LayerDef& source) {
    const auto ratio = [](std::int32_t to, A_long from) {
        return static_cast<float>(to) / static_cast<float>(from);
    };
    PF_FloatMatrix matrix;
    PILib::Transform2Df()
        .scale(ratio(this->width, source.width), ratio(this->height, source.height))
        .copyTo(matrix.mat);
    const PF_CompositeMode copy = {PF_Xfer_COPY, 0, 255, 0, 32768};
    constexpr PF_Boolean kSourceToDestination = 1;
    ThrowIfErr(HostCallback(inData->utils, &PF_UtilCallbacks::transform_world)(
        inData->effect_ref, PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, &source, &copy, nullptr,
        &matrix, 1, kSourceToDestination, nullptr, &world));
}

template <class P>
void AEPixelBuffer<P>::blend(PILib::PIContext& context, const PILib::PixelBuffer& other,
                             float fraction) const {
    const auto* const hostPicture = dynamic_cast<const AEPixelBuffer<P>*>(&other);
    if (hostPicture == nullptr || fraction == 0.0F || fraction == 1.0F) {
        PILib::PixelBuf<P>::blend(context, other, fraction);
        return;
    }
    const PF_InData& call = *dynamic_cast<AEContext&>(context).inData;
    const PF_Fixed ratio = PILib::TruncToInt32(fraction * 65536.0F + 0.5F);
    ThrowIfErr(HostCallback(call.utils, &PF_UtilCallbacks::blend)(call.effect_ref, layer, hostPicture->layer,
                                                                  ratio, layer));
}

template class AEPixelBuffer<Pixel<Channel8>>;
template class AEPixelBuffer<Pixel<Channel15>>;

PILib::PixelBuffer* MakeAEPixelBuffer(AEContext& context, PF_LayerDef& world) {
    if ((world.world_flags & PF_WorldFlag_DEEP) != 0)
        return new AEPixelBuffer<Pixel<Channel15>>(context, world);
    return new AEPixelBuffer<Pixel<Channel8>>(context, world);
}

PILib::PixelBuffer* MakeAEPixelBuffer(AEContext& context, PF_LayerDef& world, int width, int height,
                                      PILib::Alignment alignment) {
    if ((world.world_flags & PF_WorldFlag_DEEP) != 0) {
        return new AEPixelBuffer<Pixel<Channel15>>(context, world, width, height, alignment);
    }
    return new AEPixelBuffer<Pixel<Channel8>>(context, world, width, height, alignment);
}

void LayerCheckout::initialize(AEContext& context, int id, int time) {
    inData = context.inData;
    const auto checkOut = HostCallback(&inData->inter, &PF_InteractCallbacks::checkout_param);
    checkedOut = true;  // before the call: a failed checkout is checked in too
    ThrowIfErr(checkOut(inData->effect_ref, context.getParamNumber(id), time, inData->time_step,
                        inData->time_scale, &param));
}

LayerCheckout::~LayerCheckout() {
    if (checkedOut && inData->inter.checkin_param != nullptr)
        inData->inter.checkin_param(inData->effect_ref, &param);
}

PFEffectWorldHolder::~PFEffectWorldHolder() {
    if (world.data != nullptr) DisposeWorld(*context->inData, world);
}

}  // namespace AELib
