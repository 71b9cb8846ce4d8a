// The effect under a host that keeps no rule: the input chooses the commands, handles, records and sizes of a
// run of 60 commands, and random numbers go on where it ends. Each command must end with the plug-in's own
// error, and nothing may be read or written outside.
//
//   hostile-host-fuzz -runs=10000      inputs of the fuzzer's own making
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "EffectIdentity.h"
#include "HandleMemory.h"
#include "HostileHost.h"
#include "Main.h"
#include "PluginResource.h"
#include "ResourceWriter.h"

namespace AELib {

// In place of the platform's, as the fuzzer lies in no bundle.
char** Get1Resource(std::uint32_t /*type*/, int /*id*/) {
    using resource::BigEndian;
    using resource::Pascal;
    static const std::string list =
        resource::PropertyList({{PiPL_VENDOR, PiPL_NAME, Pascal(kEffectName)},
                                {PiPL_VENDOR, PiPL_MATCH_NAME, Pascal(kEffectMatchName)},
                                {PiPL_VENDOR, PiPL_EFFECT_VERSION, BigEndian(kEffectVersion)},
                                {PiPL_VENDOR, PiPL_OUT_FLAGS, BigEndian(kEffectOutFlags)}});
    static char** handle = nullptr;
    if (handle == nullptr) {
        handle = NewHandle(list.size());
        std::memcpy(*handle, list.data(), list.size());
    }
    return handle;
}

int MemError() {
    return 0;
}

}  // namespace AELib

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::uint32_t seed = 2166136261U;  // a hash of the input
    for (std::size_t i = 0; i < size; ++i)
        seed = (seed ^ data[i]) * 16777619U;
    Choices choices(seed, std::span(data, size));
    HostileHost host(PluginMain, choices);
    const std::string wrong = host.run(60);
    if (wrong.empty()) return 0;
    std::fputs(wrong.c_str(), stderr);
    std::abort();
}
