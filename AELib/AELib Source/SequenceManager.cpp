#include "SequenceManager.h"

#include <memory>
#include <utility>

#include "Errors.h"
#include "FrameManager.h"
#include "HostSites.h"
#include "InstanceHandle.h"
#include "PF_Values.h"

namespace AELib {

SequenceManager::SequenceManager() {
    ListInstance(this, typeid(SequenceManager));
}

SequenceManager::~SequenceManager() {
    for (char** const handle : frameHandles)
        ForgetInstanceHandle(handle);
    UnlistInstance(this);
}

void SequenceManager::handleCommand(AEContext& context) {
    switch (context.cmd) {
        case PF_Cmd_SEQUENCE_SETUP:
            return sequenceSetup(context);
        case PF_Cmd_SEQUENCE_SETDOWN:
            return sequenceSetdown(context);
        case PF_Cmd_DO_DIALOG:
            return doDialog(context);
        case PF_Cmd_FRAME_SETUP:
            return frameSetup(context);
        case PF_Cmd_RENDER:
            return render(context);
        case PF_Cmd_FRAME_SETDOWN:
            return frameSetdown(context);
        case PF_Cmd_USER_CHANGED_PARAM:
            return userChangedParam(context);
        case PF_Cmd_UPDATE_PARAMS_UI:
            return updateParamsUI(context);
        case PF_Cmd_EVENT:
            return handleEvent(context);
        case PF_Cmd_GET_EXTERNAL_DEPENDENCIES:
            return getExternalDependencies(context);
        case PF_Cmd_COMPLETELY_GENERAL:
            return completelyGeneral(context);
        case PF_Cmd_QUERY_DYNAMIC_FLAGS:
            return queryDynamicFlags(context);
        case PF_Cmd_AUDIO_RENDER:
            return audioRender(context);
        case PF_Cmd_AUDIO_SETUP:
            return audioSetup(context);
        case PF_Cmd_AUDIO_SETDOWN:
            return audioSetdown(context);
        case PF_Cmd_ARBITRARY_CALLBACK:
            return arbitraryCallback(context);
        default:
            return;
    }
}

// Deliberate: switches on the command, not on the event's record, so that no hook is reached (the command is
// 15 here). Pinned by SequenceManagerTest.EventsReachNoHook.
void SequenceManager::handleEvent(AEContext& context) {
    switch (context.cmd) {
        case 0:
            return handleNewContext(context);
        case 1:
            return handleActivate(context);
        case 2:
            return handleClick(context);
        case 3:
            return handleDrag(context);
        case 4:
            return handleDraw(context);
        case 5:
            return handleDeactivate(context);
        case 6:
            return handleCloseContext(context);
        case 7:
            return handleIdle(context);
        case 9:
            return handleAdjustCursor(context);
        case 10:
            return handleKeydown(context);
        default:
            return;  // 8 is obsolete
    }
}

void SequenceManager::frameSetup(AEContext& context) {
    std::unique_ptr<FrameManager> owned(newFrameInstance(context));
    if (!context.supportsFrameData()) frameHandles.reserve(frameHandles.size() + 1);
    char** const handle = NewInstanceHandle(context, owned.get());
    FrameManager* const frame = owned.release();
    if (context.supportsFrameData()) {
        context.outData->frame_data = handle;
    } else {
        frameHandles.push_back(handle);
    }
    frame->handleCommand(context);
}

void SequenceManager::render(AEContext& context) {
    getFrameInstance(context)->handleCommand(context);
}

void SequenceManager::frameSetdown(AEContext& context) {
    FrameManager* const frame = getFrameInstance(context);
    frame->handleCommand(context);
    delete frame;
    DisposeInstanceHandle(context, context.inData->frame_data);
    if (context.supportsFrameData()) {
        context.inData->frame_data = nullptr;
        context.outData->frame_data = nullptr;
    } else {
        // Deliberate: the handle itself is not disposed. Pinned by
        // SequenceManagerTest.PoppedFrameHandlesAreLeft.
        ForgetInstanceHandle(frameHandles.back());
        frameHandles.pop_back();
    }
}

FrameManager* SequenceManager::getFrameInstance(AEContext& context) {
    char** handle = nullptr;
    if (context.supportsFrameData()) {
        handle = context.inData->frame_data;
    } else if (!frameHandles.empty()) {
        handle = frameHandles.back();
    }
    PILib::_Assert(handle != nullptr, site::kFrameData, site::kSequenceManagerFile);
    const auto frame = InstanceIn<FrameManager>(context, handle);
    PILib::_Assert(frame.value_or(nullptr) != nullptr, site::kFrameData, site::kSequenceManagerFile);
    return *frame;
}

}  // namespace AELib
