// What answers the page: the state that it shows, and pictures of it. The server passes requests on to it and
// holds nothing of the effect itself, so that a session that ends can be replaced by another.
//
//     server ==== Wire ===> reading thread: states, presets      answered at once
//                             |
//                             +-- RequestQueue --> thread of the effect: pictures, pixels, histograms
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Darkroom.h"
#include "Look.h"
#include "Pick.h"
#include "PictureStore.h"
#include "RequestQueue.h"
#include "Shot.h"
#include "Wire.h"

namespace perch {

class Session {
public:
    // Keeps the references of the shot.
    explicit Session(const Shot& shot);

    // Answers what comes over the wire until its other end closes it. Throws EffectBroke.
    void run(Wire& wire);

    // One request, on the thread of the effect; what the queue would do is left out. For tests too.
    ViewAnswer answer(ViewRequest request);

private:
    bool isAnsweredAtOnce(const ViewRequest& request) const;
    ViewAnswer answerAtOnce(const ViewRequest& request);
    ViewAnswer answerInTurn(const ViewRequest& request);
    ViewAnswer takeLook(const std::string& body);
    // A picture may be asked for together with the state that it shows, in one trip. What is left is the
    // question for the picture; an answer tells why the state is not taken.
    std::optional<ViewAnswer> takeLookWithin(ViewRequest& request);
    ViewAnswer takePreset(const std::string& body);
    ViewAnswer picture(const ViewRequest& request, const Look& wanted);
    ViewAnswer pixel(const ViewRequest& request, const Look& wanted);
    ViewAnswer histogram(const Look& wanted);
    ViewAnswer description();
    void read(Wire& wire);
    QueuedRequest queued(ViewRequest request) const;
    Look look() const;
    std::optional<Look> lookOf(std::int64_t serial) const;
    std::optional<Look> lookFor(const ViewRequest& request) const;
    // False where there is a newer one.
    bool keepLook(Look look);

    void tellWarnings(Wire& wire);

    const Shot shot;
    const LookReader& looks;
    const std::optional<Pick> pick;
    PictureStore store;
    Darkroom darkroom;
    RequestQueue queue;
    Wire* wireInUse = nullptr;
    std::set<std::string> toldWarnings;
    std::int64_t fullSerial = -1;  // of the result that the store keeps
    mutable std::mutex mutex;
    std::deque<Look> recent;  // the newest is the last
};

// The effect's words for the page.
ViewEvent messageEvent(std::string_view message);

}  // namespace perch
