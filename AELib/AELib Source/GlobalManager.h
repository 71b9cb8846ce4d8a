// The one instance per loaded plug-in: identity from the PiPL, the map from parameter identifiers to host
// indices, and the lives of the sequence instances. The effect derives from it and supplies the parameters
// and the sequences.
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

#include "AEContext.h"

namespace AELib {

class SequenceManager;

class GlobalManager {
public:
    GlobalManager();
    GlobalManager(const GlobalManager&) = delete;
    GlobalManager& operator=(const GlobalManager&) = delete;

    // Slot order is given; append only.
    virtual ~GlobalManager();
    // Reads the PiPL, hands version and flags to the host and registers with it. Returns what the
    // registration gave.
    virtual int init(AEContext& context);
    virtual void handleCommand(AEContext& context);
    virtual void about(AEContext& context);
    virtual void paramsSetup(AEContext& context) = 0;
    virtual void sequenceSetup(AEContext& context);
    // Builds an instance from the flat stream in sequence_data, which stays the host's. The handle is read as
    // a stream whatever it holds.
    virtual void sequenceResetup(AEContext& context);
    // Replaces the instance by its flat stream.
    virtual void sequenceFlatten(AEContext& context);
    virtual void sequenceSetdown(AEContext& context);
    // A new instance of the effect's class, owned by the caller.
    virtual SequenceManager* newSequenceInstance(AEContext& context) = 0;

    // The instance in sequence_data; data without a living one fail an assertion.
    SequenceManager* getSequenceInstance(AEContext& context);
    // Creates an instance and hands it to the host in a handle.
    SequenceManager* makeSequenceOnOutData(AEContext& context);
    // Destroys the instance, if any, and its handle.
    void deleteSequenceInstance(AEContext& context, SequenceManager* sequence);

    void setParamNumber(int id, int index);
    int getParamNumber(int id);  // 0 for an identifier that was never set

    // Takes identity, version and flags from the plug-in's own resource. The resource stays locked and
    // loaded. A missing or malformed list fails an assertion.
    void readPiPL(AEContext& context);

    // Field order is given. The strings are Pascal strings, followed by a terminating zero.
    std::array<char, 256> matchName{};
    std::array<char, 256> pluginName{};
    std::array<char, 256> category{};
    std::uint32_t version = 0;
    std::uint32_t outFlags = 0;
    std::uint32_t outFlags2 = 0;
    std::int32_t paramCount = 0;  // one more than the greatest host index
    AEGP_PluginID pluginID = 0;
    std::unordered_map<int, int> paramNumbers;
};

// The effect's display name for messages; "Unknown" until a PiPL has been read. Kept after global set-down.
extern char gPluginName[256];

// The effect's own instance, owned by the caller; the effect defines it.
GlobalManager* NewGlobalManagerInstance();

}  // namespace AELib
