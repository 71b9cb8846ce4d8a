#include "Effect.h"

#include "ArbitraryData.h"
#include "Bundle.h"
#include "Call.h"
#include "Callbacks.h"
#include "Error.h"
#include "Host.h"
#include "PF_Values.h"
#include "Suites.h"
#include "Whereabouts.h"

namespace perch {
namespace {

EffectDescription describeBundle(const Bundle& bundle, const std::string& symbol) {
    EffectDescription description;
    description.path = bundle.path;
    description.entryPoint = symbol;
    if (!bundle.propertyList) return description;
    const PropertyList& list = *bundle.propertyList;
    description.name = list.name;
    description.category = list.category;
    description.matchName = list.matchName;
    description.hasPropertyList = true;
    description.propertyListVersion = list.version;
    description.propertyListFlags = list.flags;
    description.propertyListFlags2 = list.flags2;
    return description;
}

CallbackTables callbackTables() {
    return {.interaction = interactionCallbacks(),
            .utilities = utilityCallbacks(),
            .suites = basicSuite(),
            .suiteTables = suiteTables()};
}

std::unique_ptr<Host> loadHost(const std::filesystem::path& plugin, HostOptions options) {
    const Bundle bundle = openBundle(plugin);
    ProcessWatch watch;
    const LoadedLibrary loaded = loadLibrary(bundle);
    return std::make_unique<Host>(loaded.entryPoint, describeBundle(bundle, loaded.symbol),
                                  std::move(options), loaded.library, callbackTables(), std::move(watch));
}

}  // namespace

Effect::Effect(const std::filesystem::path& plugin, HostOptions options)
    : host(loadHost(plugin, std::move(options))) {
    host->setUp();
}

Effect::Effect(PF_EntryPoint entryPoint, EffectDescription description, HostOptions options)
    : host(std::make_unique<Host>(entryPoint, std::move(description), std::move(options), nullptr,
                                  callbackTables(), ProcessWatch())) {
    whereabouts().effect.set(host->description.path.filename().string());
    host->setUp();
}

Effect::~Effect() = default;

const EffectDescription& Effect::description() const {
    return host->description;
}

ParameterValues Effect::defaultValues(std::int32_t width, std::int32_t height) const {
    return defaultParameterValues(host->description.parameters, width, height);
}

bool Effect::supportsDeepColor() const {
    return (host->description.flags & PF_OutFlag_DEEP_COLOR_AWARE) != 0;
}

bool Effect::supportsSmartRender() const {
    return (host->description.flags2 & PF_OutFlag2_SUPPORTS_SMART_RENDER) != 0;
}

bool Effect::supportsFloatColor() const {
    return supportsSmartRender() && (host->description.flags2 & PF_OutFlag2_FLOAT_COLOR_AWARE) != 0;
}

// An effect need not know how to print.
void Effect::printDefaults() {
    for (Parameter& parameter : host->description.parameters) {
        const PF_ArbitraryH value = isArbitrary(parameter) ? parameter.definition.u.arb_d.dephault : nullptr;
        if (value == nullptr) continue;
        try {
            parameter.printedDefault = ArbitraryData(*host, parameter).print(value);
        } catch (const Error&) {
            parameter.printedDefault.clear();
        }
    }
}

std::string Effect::about() {
    Call call{.command = PF_Cmd_ABOUT};
    host->send(call);
    host->throwIfFailed(call);
    return resultOf(call).message;
}

CommandResult Effect::send(PF_Cmd command, void* extra) {
    Call call{.command = command, .extra = extra};
    host->send(call);
    return resultOf(call);
}

void Effect::close() {
    host->close();
}

const std::vector<Finding>& Effect::findings() const {
    return host->ledger.findings();
}

}  // namespace perch
