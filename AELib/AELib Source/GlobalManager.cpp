#include "GlobalManager.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

#include "Archiver.h"
#include "Errors.h"
#include "HandleMemory.h"
#include "HostCallback.h"
#include "HostSites.h"
#include "InstanceHandle.h"
#include "PF_Values.h"
#include "PiPL.h"
#include "PluginResource.h"
#include "SequenceManager.h"
#include "SuiteHandler.h"

namespace AELib {

char gPluginName[256] = "Unknown";

namespace {

void Require(bool condition, int line) {
    PILib::_Assert(condition, line, site::kGlobalManagerFile);
}

// Reads a property list front to back; a read past its end fails the assertion for malformed lists.
class PiPLReader {
public:
    explicit PiPLReader(std::span<const char> bytes) : rest(bytes) {}

    std::uint32_t number() {
        std::uint32_t value = 0;
        for (const char byte : take(4))
            value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }

    std::span<const char> take(std::uint32_t count) {
        Require(count <= rest.size(), site::kPiPLWellFormed);
        const auto taken = rest.first(count);
        rest = rest.subspan(count);
        return taken;
    }

    // Skips the zeros after a property's data; the last property may lack them.
    void skipPadding(std::uint32_t length) {
        take(std::min<std::uint32_t>(-length & 3U, std::uint32_t(rest.size())));
    }

private:
    std::span<const char> rest;
};

// A string property as stored, followed by a zero.
void CopyString(std::array<char, 256>& field, std::span<const char> data) {
    Require(data.size() < field.size(), site::kPiPLWellFormed);
    std::copy(data.begin(), data.end(), field.begin());
    field[data.size()] = '\0';
}

}  // namespace

GlobalManager::GlobalManager() {
    ListInstance(this, typeid(GlobalManager));
}

GlobalManager::~GlobalManager() {
    UnlistInstance(this);
}

int GlobalManager::init(AEContext& context) {
    readPiPL(context);
    context.outData->my_version = version;
    context.outData->out_flags = static_cast<PF_OutFlags>(outFlags);
    context.outData->out_flags2 = static_cast<PF_OutFlags2>(outFlags2);
    if (gSuites == nullptr) return PF_Err_NONE;
    return HostCallback(gSuites->utility(), &AEGP_UtilitySuite3::AEGP_RegisterWithAEGP)(
        nullptr, matchName.data() + 1, &pluginID);
}

void GlobalManager::handleCommand(AEContext& context) {
    switch (context.cmd) {
        case PF_Cmd_ABOUT:
            return about(context);
        case PF_Cmd_PARAMS_SETUP:
            return paramsSetup(context);
        case PF_Cmd_SEQUENCE_SETUP:
            return sequenceSetup(context);
        case PF_Cmd_SEQUENCE_RESETUP:
            return sequenceResetup(context);
        case PF_Cmd_SEQUENCE_FLATTEN:
            return sequenceFlatten(context);
        case PF_Cmd_SEQUENCE_SETDOWN:
            return sequenceSetdown(context);
        default:
            break;
    }
    if (context.cmd >= PF_Cmd_DO_DIALOG && context.cmd <= PF_Cmd_ARBITRARY_CALLBACK) {
        context.sequenceManager = getSequenceInstance(context);
        context.sequenceManager->handleCommand(context);
    }
}

void GlobalManager::about(AEContext& context) {
    std::strcpy(context.outData->return_msg, "A Quillon Effect");
}

void GlobalManager::sequenceSetup(AEContext& context) {
    makeSequenceOnOutData(context)->handleCommand(context);
}

void GlobalManager::sequenceResetup(AEContext& context) {
    Require(context.inData->sequence_data != nullptr, site::kSequenceData);
    ForgetInstanceHandle(context.inData->sequence_data);
    PILib::Archiver archiver(context, context.inData->sequence_data);
    Require(archiver.size == 0 || *archiver.handle != nullptr, site::kSequenceData);
    makeSequenceOnOutData(context)->dearchive(context, archiver);
}

void GlobalManager::sequenceFlatten(AEContext& context) {
    PILib::Archiver archiver(context);
    try {
        SequenceManager* const sequence = getSequenceInstance(context);
        sequence->archive(context, archiver);
        deleteSequenceInstance(context, sequence);
        context.outData->sequence_data = archiver.getHandle();
    } catch (...) {
        context.disposeHandle(archiver.handle);
        throw;
    }
}

void GlobalManager::sequenceSetdown(AEContext& context) {
    SequenceManager* const sequence = getSequenceInstance(context);
    sequence->handleCommand(context);
    deleteSequenceInstance(context, sequence);
}

SequenceManager* GlobalManager::getSequenceInstance(AEContext& context) {
    Require(context.inData->sequence_data != nullptr, site::kSequenceData);
    const auto sequence = InstanceIn<SequenceManager>(context, context.inData->sequence_data);
    Require(sequence.value_or(nullptr) != nullptr, site::kSequenceData);
    return *sequence;
}

SequenceManager* GlobalManager::makeSequenceOnOutData(AEContext& context) {
    std::unique_ptr<SequenceManager> sequence(newSequenceInstance(context));
    context.outData->sequence_data = NewInstanceHandle(context, sequence.get());
    return sequence.release();
}

void GlobalManager::deleteSequenceInstance(AEContext& context, SequenceManager* sequence) {
    delete sequence;
    DisposeInstanceHandle(context, std::exchange(context.inData->sequence_data, nullptr));
    context.outData->sequence_data = nullptr;
}

void GlobalManager::setParamNumber(int id, int index) {
    paramNumbers[id] = index;
    paramCount = std::max(paramCount, index + 1);
}

int GlobalManager::getParamNumber(int id) {
    return paramNumbers[id];
}

void GlobalManager::readPiPL(AEContext& context) {
    char** const resource = Get1Resource(PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID);
    Require(resource != nullptr, site::kPiPLFound);
    const char* const bytes = context.lockHandle(resource);
    Require(bytes != nullptr && MemError() == 0, site::kPiPLLocked);

    PiPLReader list({bytes, context.getHandleSize(resource)});
    Require(list.number() == PiPL_LIST_VERSION, site::kPiPLWellFormed);
    for (std::uint32_t left = list.number(); left > 0; --left) {
        const std::uint32_t vendor = list.number();
        const std::uint32_t key = list.number();
        list.number();  // property id
        const std::uint32_t length = list.number();
        const auto data = list.take(length);
        list.skipPadding(length);
        if (vendor != PiPL_VENDOR) continue;
        switch (key) {
            case PiPL_OUT_FLAGS:
                outFlags = PiPLReader(data).number();
                break;
            case PiPL_OUT_FLAGS2:
                outFlags2 = PiPLReader(data).number();
                break;
            case PiPL_EFFECT_VERSION:
                version = PiPLReader(data).number();
                break;
            case PiPL_NAME:
                CopyString(pluginName, data);
                std::strcpy(gPluginName, pluginName.data() + 1);
                break;
            case PiPL_MATCH_NAME:
                CopyString(matchName, data);
                break;
            case PiPL_CATEGORY:
                CopyString(category, data);
                break;
            default:
                break;
        }
    }
}

}  // namespace AELib
