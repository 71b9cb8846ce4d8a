#include "Suites.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "CallGuard.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

constexpr SPErr kNoSuchSuite = PF_Err_INVALID_CALLBACK;

std::array<std::span<const SuiteEntry>, 5> families() {
    return {pixelSuites(), parameterSuites(), valueSuites(), appSuites(), projectSuites()};
}

// Null when the host has none of that name and version.
const void* findSuite(const char* name, A_long version) {
    for (const std::span<const SuiteEntry> family : families())
        for (const SuiteEntry& entry : family)
            if (entry.version == version && std::strcmp(entry.name, name) == 0) return entry.table.data();
    return nullptr;
}

bool isWithheld(const HostOptions& options, const char* name, A_long version) {
    return std::any_of(options.withheldSuites.begin(), options.withheldSuites.end(),
                       [&](const SuiteName& suite) {
                           return suite.name == name && (suite.version == 0 || suite.version == version);
                       });
}

SPErr acquireSuite(const char* name, A_long version, const void** suite) {
    return answer("AcquireSuite", Caller::MainThread, [&](Host& host) -> PF_Err {
        if (name == nullptr || suite == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *suite = isWithheld(host.options, name, version) ? nullptr : findSuite(name, version);
        if (*suite == nullptr) return kNoSuchSuite;
        host.suites.acquire(name, version);
        return PF_Err_NONE;
    });
}

SPErr releaseSuite(const char* name, A_long version) {
    return answer("ReleaseSuite", Caller::MainThread, [&](Host& host) -> PF_Err {
        if (name == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        return host.suites.release(name, version) ? PF_Err_NONE : kNoSuchSuite;
    });
}

SPBoolean isEqual(const char* a, const char* b) {
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0 ? 1 : 0;
}

SPErr allocateBlock(size_t size, void** block) {
    return answer("AllocateBlock", Caller::MainThread, [&](Host& host) -> PF_Err {
        if (block == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *block = host.memory.allocate(size);
        return *block != nullptr ? PF_Err_NONE : PF_Err_OUT_OF_MEMORY;
    });
}

SPErr freeBlock(void* block) {
    return answer("FreeBlock", Caller::MainThread, [&](Host& host) -> PF_Err {
        return block == nullptr ? PF_Err_NONE : host.memory.free(block);
    });
}

SPErr reallocateBlock(void* block, size_t size, void** moved) {
    return answer("ReallocateBlock", Caller::MainThread, [&](Host& host) -> PF_Err {
        return moved == nullptr ? PF_Err_BAD_CALLBACK_PARAM : host.memory.reallocate(block, size, moved);
    });
}

SPErr undefined() {
    return refuse("Undefined");
}

}  // namespace

PF_Err refuseSuiteCall() {
    return refuse("a suite function that is not offered");
}

SPBasicSuite* basicSuite() {
    static SPBasicSuite suite{acquireSuite, releaseSuite,    isEqual,  allocateBlock,
                              freeBlock,    reallocateBlock, undefined};
    return &suite;
}

std::span<const std::span<std::byte>> suiteTables() {
    static const std::vector<std::span<std::byte>> tables = [] {
        std::vector<std::span<std::byte>> all;
        for (const std::span<const SuiteEntry> family : families())
            for (const SuiteEntry& entry : family)
                all.push_back(entry.table);
        return all;
    }();
    return tables;
}

std::set<std::string> suiteNames() {
    std::set<std::string> names;
    for (const std::span<const SuiteEntry> family : families())
        for (const SuiteEntry& entry : family)
            names.insert(entry.name);
    return names;
}

}  // namespace perch
