// An effect of the test process: each command is a lambda. One at a time.
#pragma once

#include <functional>
#include <map>

#include "Effect.h"
#include "Error.h"
#include "Frame.h"
#include "PF_Entry.h"
#include "PF_Values.h"
#include "PiPL.h"
#include "Sequence.h"

namespace perch::test {

struct EffectCall {
    PF_Cmd command;
    PF_InData* in;
    PF_OutData* out;
    PF_ParamDef** params;
    PF_LayerDef* output;
    void* extra;

    PF_UtilCallbacks& utilities() const { return *in->utils; }
    // The table of a suite, null when the host refuses it. Not released.
    template <typename Suite>
    const Suite* suite(const char* name, A_long version) const {
        const void* table = nullptr;
        if (in->pica_basicP->AcquireSuite(name, version, &table) != 0) return nullptr;
        return static_cast<const Suite*>(table);
    }
};

class ScriptedEffect {
public:
    using Handler = std::function<PF_Err(const EffectCall&)>;

    ScriptedEffect() {
        current = this;
        on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
            call.out->num_params = 1;
            return PF_Err_NONE;
        });
    }
    ~ScriptedEffect() { current = nullptr; }
    ScriptedEffect(const ScriptedEffect&) = delete;
    ScriptedEffect& operator=(const ScriptedEffect&) = delete;

    void on(PF_Cmd command, Handler handler) { handlers[command] = std::move(handler); }
    // Declares `flags` at GLOBAL_SETUP.
    void declareFlags(PF_OutFlags flags, PF_OutFlags2 flags2 = 0) {
        on(PF_Cmd_GLOBAL_SETUP, [flags, flags2](const EffectCall& call) {
            call.out->out_flags = flags;
            call.out->out_flags2 = flags2;
            return PF_Err_NONE;
        });
    }
    // Declares the parameters at PARAMS_SETUP, in order.
    void declareParameters(std::vector<PF_ParamDef> definitions);

    static PF_Err enter(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef** params,
                        PF_LayerDef* output, void* extra) {
        const auto handler = current->handlers.find(command);
        if (handler == current->handlers.end()) return PF_Err_NONE;
        return handler->second({command, in, out, params, output, extra});
    }

private:
    static inline ScriptedEffect* current = nullptr;
    std::map<PF_Cmd, Handler> handlers;
};

inline void ScriptedEffect::declareParameters(std::vector<PF_ParamDef> definitions) {
    on(PF_Cmd_PARAMS_SETUP, [definitions](const EffectCall& call) {
        for (PF_ParamDef definition : definitions)
            if (const PF_Err code = call.in->inter.add_param(call.in->effect_ref, -1, &definition))
                return code;
        call.out->num_params = static_cast<A_long>(definitions.size()) + 1;
        return PF_Err{PF_Err_NONE};
    });
}

inline HostOptions strictOptions() {
    HostOptions options;
    options.strict = true;
    options.threads = 3;
    return options;
}

inline PF_ParamDef parameterOfType(PF_ParamType type, const char* name) {
    PF_ParamDef definition{};
    definition.param_type = type;
    for (std::size_t i = 0; name[i] != '\0' && i < sizeof definition.name; ++i)
        definition.name[i] = name[i];
    return definition;
}

// The faults found, a line each: "RENDER, checkin_param: ...".
inline std::vector<std::string> faults(const Effect& effect) {
    std::vector<std::string> lines;
    for (const Finding& finding : effect.findings())
        if (finding.severity == Finding::Severity::Fault) lines.push_back(describe(finding));
    return lines;
}

}  // namespace perch::test
