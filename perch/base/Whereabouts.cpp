#include "Whereabouts.h"

#include <chrono>

namespace perch {
namespace {

Whereabouts gOwn;
Whereabouts* gWhereabouts = &gOwn;
std::atomic<const char*> gLastCallback{nullptr};

static_assert(std::atomic<std::int64_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "two processes read and write it");

}  // namespace

Whereabouts& whereabouts() {
    return *gWhereabouts;
}

void useWhereabouts(Whereabouts& shared) {
    gWhereabouts = &shared;
}

std::int64_t monotonicNanoseconds() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

InEffect::InEffect(std::string_view command, std::int64_t frame) {
    Whereabouts& at = whereabouts();
    at.command.set(command);
    at.callback.set("");
    gLastCallback.store(nullptr, std::memory_order_relaxed);
    at.frame = frame;
    at.busySince = monotonicNanoseconds();
}

InEffect::~InEffect() {
    whereabouts().busySince = 0;
}

void noteCallback(const char* callback) {
    // Many threads call one callback for every pixel: the shared memory is written when it changes.
    if (gLastCallback.load(std::memory_order_relaxed) == callback) return;
    gLastCallback.store(callback, std::memory_order_relaxed);
    whereabouts().callback.set(callback);
}

void noteFinding(std::string_view line) {
    whereabouts().findings.append(line);
}

void noteTemporary(const std::string& path) {
    for (Whereabouts::Temporary& place : whereabouts().temporaries) {
        if (place.isTaken.exchange(true)) continue;
        place.path.set(path);
        place.isWhole = true;
        return;
    }
}

void forgetTemporary(const std::string& path) {
    for (Whereabouts::Temporary& place : whereabouts().temporaries) {
        if (!place.isWhole || place.path.get() != path) continue;
        place.isWhole = false;
        place.isTaken = false;
        return;
    }
}

}  // namespace perch
