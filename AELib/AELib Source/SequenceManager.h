// One instance per effect applied in a composition. The effect derives from it; hooks that it does not need
// do nothing.
#pragma once

#include <vector>

#include "AEContext.h"
#include "Archiver.h"

namespace AELib {

class FrameManager;

class SequenceManager {
public:
    SequenceManager();
    SequenceManager(const SequenceManager&) = delete;
    SequenceManager& operator=(const SequenceManager&) = delete;

    // Slot order is given; append only.
    virtual ~SequenceManager();
    // Reads the instance's data back, in the order that archive() wrote it.
    virtual void dearchive(AEContext& /*context*/, PILib::Archiver& /*archiver*/) {}
    virtual void handleCommand(AEContext& context);
    virtual void archive(AEContext& /*context*/, PILib::Archiver& /*archiver*/) {}
    virtual void sequenceSetup(AEContext& /*context*/) {}
    virtual void sequenceSetdown(AEContext& /*context*/) {}
    virtual void frameSetup(AEContext& context);    // creates the frame instance
    virtual void render(AEContext& context);        // forwards to it
    virtual void frameSetdown(AEContext& context);  // forwards, then destroys it
    virtual void doDialog(AEContext& /*context*/) {}
    virtual void userChangedParam(AEContext& /*context*/) {}
    virtual void updateParamsUI(AEContext& /*context*/) {}
    virtual void handleEvent(AEContext& context);
    virtual void getExternalDependencies(AEContext& /*context*/) {}
    virtual void audioRender(AEContext& /*context*/) {}
    virtual void audioSetup(AEContext& /*context*/) {}
    virtual void audioSetdown(AEContext& /*context*/) {}
    virtual void arbitraryCallback(AEContext& /*context*/) {}
    virtual void completelyGeneral(AEContext& /*context*/) {}
    virtual void queryDynamicFlags(AEContext& /*context*/) {}
    virtual void handleDraw(AEContext& /*context*/) {}
    virtual void handleClick(AEContext& /*context*/) {}
    virtual void handleDrag(AEContext& /*context*/) {}
    virtual void handleNewContext(AEContext& /*context*/) {}
    virtual void handleActivate(AEContext& /*context*/) {}
    virtual void handleDeactivate(AEContext& /*context*/) {}
    virtual void handleCloseContext(AEContext& /*context*/) {}
    virtual void handleIdle(AEContext& /*context*/) {}
    virtual void handleKeydown(AEContext& /*context*/) {}
    virtual void handleAdjustCursor(AEContext& /*context*/) {}
    // A new instance of the effect's class, owned by the caller.
    virtual FrameManager* newFrameInstance(AEContext& context) = 0;

    // The frame instance of the call: in frame_data, or on top of the stack. None fails an assertion.
    FrameManager* getFrameInstance(AEContext& context);

    // Frame handles, newest last, where the host offers no frame data.
    std::vector<char**> frameHandles;
};

}  // namespace AELib
