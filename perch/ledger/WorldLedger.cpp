#include "WorldLedger.h"

#include <fmt/format.h>

#include "PF_Values.h"
#include "PixelMemory.h"

namespace perch {

std::int32_t rowPaddingFor(const Ledger& ledger, PixelDepth depth) {
    constexpr std::int32_t kPixels = 3;
    return ledger.isStrict() ? kPixels * pixelSize(depth) : 0;
}

PF_Err WorldLedger::allocate(std::int32_t width, std::int32_t height, PixelDepth depth, PF_EffectWorld& world,
                             const char* callback) {
    world = {};
    if (width <= 0 || height <= 0 || width > kLargestExtent || height > kLargestExtent) {
        ledger.fault(callback, fmt::format("a world of {} x {} pixels; each extent is 1 to {}", width, height,
                                           kLargestExtent));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    auto owned = std::make_unique<World>(width, height, depth, rowPaddingFor(ledger, depth));
    world = owned->record();
    const std::lock_guard lock(mutex);
    worlds.emplace(world.data, Entry{std::move(owned)});
    return PF_Err_NONE;
}

PF_Err WorldLedger::dispose(PF_EffectWorld* world, const char* callback) {
    if (world != nullptr && !isInMemory(world)) {
        ledger.fault(callback, "a world's record is not in memory");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const std::lock_guard lock(mutex);
    const void* data = world != nullptr ? world->data : nullptr;
    const auto entry = worlds.find(data);
    if (entry == worlds.end()) {
        ledger.fault(callback, disposed.count(data) > 0 ? "the world has been disposed before"
                               : data == nullptr        ? "the world has no pixels"
                                                        : "the world is not one that the effect asked for");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (const std::string damage = entry->second.world->damage(); !damage.empty())
        ledger.fault(callback, damage);
    worlds.erase(entry);
    disposed.insert(data);
    *world = {};
    return PF_Err_NONE;
}

void WorldLedger::reportOpen() {
    const std::lock_guard lock(mutex);
    for (auto& [data, entry] : worlds) {
        if (entry.isReported) continue;
        entry.isReported = true;
        if (const std::string damage = entry.world->damage(); !damage.empty())
            ledger.fault("new_world", damage);
        ledger.fault("new_world",
                     fmt::format("a world of {} x {} pixels was not disposed by the end of the command",
                                 entry.world->width(), entry.world->height()));
    }
}

}  // namespace perch
