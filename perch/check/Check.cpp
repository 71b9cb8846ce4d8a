#include "Check.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

#include "Declined.h"
#include "Frame.h"
#include "PF_Values.h"
#include "ParameterSetting.h"
#include "PixelAccess.h"
#include "Sequence.h"
#include "Suites.h"
#include "Trial.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// The ends of what the user can set; nothing for types without numbers.
std::vector<double> extremesOf(const Parameter& parameter) {
    if (parameter.definition.param_type == PF_Param_CHECKBOX) return {0, 1};
    if (!parameter.items.empty()) {
        std::vector<double> items;
        for (std::size_t i = 0; i < parameter.items.size(); ++i)
            if (!isSeparator(parameter.items[i])) items.push_back(static_cast<double>(i) + 1);
        return items;
    }
    // An angle turns without end; these are as far as its numbers go.
    if (parameter.definition.param_type == PF_Param_ANGLE && !parameter.validRange) return {-32767, 32767};
    if (!parameter.validRange) return {};
    return {parameter.validRange->minimum, parameter.validRange->maximum};
}

// The rules. Each throws when it does not hold.

void checkLife(const fs::path& plugin) {
    for (int life = 0; life < 2; ++life) {
        Trial trial(plugin, {});
        trial.effect.about();
        {
            const Sequence first(trial.effect);
            const Sequence second(trial.effect);
        }
        trial.end();
    }
}

void checkSizes(const fs::path& plugin) {
    Trial trial(plugin, {});
    for (const bool deep : trial.depths()) {
        for (const Size size : {kUsual, Size{1, 1}, Size{1, 7}, Size{7, 1}, Size{33, 5}}) {
            const World picture = trial.render(trial.frame(size, deep));
            require(picture.width() > 0 && picture.height() > 0, "a frame came back without pixels");
        }
    }
    trial.end();
}

void checkNoLayers(const fs::path& plugin) {
    Trial trial(plugin, {});
    for (const bool deep : trial.depths())
        trial.render(trial.frame(kUsual, deep, false));
    trial.end();
}

void checkPadding(const fs::path& plugin) {
    Trial trial(plugin, {});
    for (const bool deep : trial.depths()) {
        FrameRequest request = trial.frame(kUsual, deep);
        const std::uint64_t expected = trial.render(request).checksum();
        request.outputRowPadding = 40;
        trial.requireSame(trial.render(request).checksum(), expected, "padded rows changed the picture");
    }
    trial.end();
}

void checkThreads(const fs::path& plugin) {
    std::map<bool, std::uint64_t> expected;
    for (const int threads : {1, 2, 5}) {
        HostOptions options;
        options.threads = threads;
        Trial trial(plugin, options);
        for (const bool deep : trial.depths()) {
            const std::uint64_t checksum = trial.render(trial.frame(kUsual, deep)).checksum();
            const auto [first, isFirst] = expected.emplace(deep, checksum);
            trial.requireSame(first->second, checksum,
                              fmt::format("{} threads gave another picture than one", threads));
        }
        trial.end();
    }
}

void checkExtremes(const fs::path& plugin) {
    Trial trial(plugin, {});
    for (const bool deep : trial.depths()) {
        for (const Parameter& parameter : trial.effect.description().parameters) {
            for (const double number : extremesOf(parameter)) {
                FrameRequest request = trial.frame(kUsual, deep);
                applySetting({.index = parameter.index, .numbers = {number}}, request.values);
                trial.render(request);
            }
        }
    }
    trial.end();
}

void checkNestedFrames(const fs::path& plugin) {
    Trial trial(plugin, {});
    try {
        Sequence sequence(trial.effect);
        const FrameRequest request = trial.frame(kUsual, false);
        const std::uint64_t expected = sequence.render(request).picture.checksum();
        Frame outer(sequence, request);
        {
            Frame inner(sequence, request);
            inner.render();
            inner.finish();
            trial.requireSame(inner.picture().checksum(), expected,
                              "a frame within a frame gave another picture");
        }
        outer.render();
        outer.finish();
        trial.requireSame(outer.picture().checksum(), expected,
                          "a frame around a frame gave another picture");
    } catch (const Declined&) {
        // Such frames do not nest: each is rendered between two commands.
    }
    trial.end();
}

void checkSettings(const fs::path& plugin) {
    Trial trial(plugin, {});
    {
        const FrameRequest request = trial.frame(kUsual, false);
        Sequence sequence(trial.effect);
        const std::uint64_t expected = sequence.render(request).picture.checksum();
        const std::vector<std::byte> saved = sequence.flatten();
        trial.requireSame(sequence.render(request).picture.checksum(), expected,
                          "saving changed the picture");
        Sequence loaded(trial.effect, saved);
        trial.requireSame(loaded.render(request).picture.checksum(), expected, "loading changed the picture");
    }
    trial.end();
}

void checkUserCommands(const fs::path& plugin) {
    Trial trial(plugin, {});
    {
        Sequence sequence(trial.effect);
        ParameterValues values = trial.effect.defaultValues(kUsual.width, kUsual.height);
        const auto tolerateMessages = [](const auto& send) {
            try {
                send();
            } catch (const EffectError& error) {
                // A button may answer with a message for the user, which is no failure.
                if (error.code != PF_Err_NONE) throw;
            }
        };
        for (const Parameter& parameter : trial.effect.description().parameters) {
            if ((parameter.definition.flags & PF_ParamFlag_SUPERVISE) != 0)
                tolerateMessages([&] { sequence.userChangedParam(parameter.index, values); });
        }
        tolerateMessages([&] { sequence.updateParamsUi(values); });
    }
    trial.end();
}

void checkUnknownCommands(const fs::path& plugin) {
    Trial trial(plugin, {});
    {
        Sequence sequence(trial.effect);
        for (const PF_Cmd command : {PF_Cmd{PF_Cmd_UNUSED_0}, 25, 26, 27, 30, 40}) {
            sequence.send(command);  // an error is an answer as well
        }
    }
    trial.render(trial.frame(kUsual, false));
    trial.end();
}

void checkCancel(const fs::path& plugin) {
    Trial trial(plugin, {});
    for (const bool deep : trial.depths()) {
        FrameRequest request = trial.frame({64, 160}, deep);
        const std::uint64_t expected = trial.render(request).checksum();
        // Cancelled at the first report, at a middle one, and before any.
        for (const int reports : {0, 1, 4}) {
            std::atomic<bool> cancelled = reports == 0;
            int seen = 0;
            request.cancelled = &cancelled;
            request.progress = [&](double) { cancelled = cancelled || ++seen >= reports; };
            try {
                trial.render(request);
            } catch (const Cancelled&) {
                // What an effect that looks answers; one that does not look finishes its frame.
            }
            request.cancelled = nullptr;
            request.progress = nullptr;
            trial.requireSame(trial.render(request).checksum(), expected,
                              "the frame after a cancelled one is not right");
        }
    }
    trial.end();
}

// Calls that give something back: when they fail there is nothing that an effect could do about it.
bool givesBack(const std::string& callback) {
    return callback == "checkin_param" || callback == "dispose_world" || callback == "PF_DisposeWorld" ||
           callback == "host_unlock_handle" || callback == "host_dispose_handle" ||
           callback == "ReleaseSuite" || callback.ends_with("AEGP_DisposeEffect") ||
           callback.ends_with("AEGP_DisposeStream");
}

void checkFrameAfterFailure(Trial& trial, std::uint64_t expected) {
    const FrameRequest request = trial.frame(kUsual, false);
    try {
        trial.render(request);
    } catch (const EffectBroke&) {
        throw;
    } catch (const Error&) {
        // The answer that is expected.
    }
    trial.requireSame(trial.render(request).checksum(), expected, "the next frame is not right");
}

// Every callback of a life with one frame, failing at each of its calls.
void checkFailures(const fs::path& plugin) {
    std::map<std::string, int> calls;
    std::uint64_t expected = 0;
    {
        HostOptions options;
        options.threads = 1;
        options.onCallback = [&](std::string_view name) { ++calls[std::string(name)]; };
        Trial trial(plugin, options);
        expected = trial.render(trial.frame(kUsual, false)).checksum();
        trial.end();
    }
    constexpr int kMostCalls = 12;  // of one callback; later ones repeat what the first have shown
    for (const auto& [name, count] : calls) {
        if (givesBack(name)) continue;
        for (int call = 1; call <= std::min(count, kMostCalls); ++call) {
            HostOptions options;
            options.threads = 1;
            options.failures.push_back({name, call});
            const std::string when = fmt::format("with {} failing at call {}: ", name, call);
            try {
                Trial trial(plugin, options);
                // Not all effects look at what add_param answers; without a parameter there is no frame to
                // ask for.
                if (name != "add_param") checkFrameAfterFailure(trial, expected);
                trial.end();
            } catch (const Failure& failure) {
                throw Failure(when + failure.what());
            } catch (const EffectError&) {
                // Set-up failed, and said so.
            }
        }
    }
}

void checkHosts(const fs::path& plugin) {
    for (const A_short minor : {A_short{10}, A_short{11}}) {
        HostOptions options;
        options.interfaceVersion = {12, minor};
        options.keepsFrameData = minor > 10;
        try {
            Trial trial(plugin, options);
            for (const bool deep : trial.depths())
                trial.render(trial.frame(kUsual, deep));
            // Hosts without frame data sweep up the handles that effects kept for it.
            trial.end(minor <= 10);
        } catch (const EffectError&) {
            // The effect needs a newer host, and says so.
        }
    }
    HostOptions options;
    options.offersSuites = false;
    try {
        Trial trial(plugin, options);
        for (const bool deep : trial.depths())
            trial.render(trial.frame(kUsual, deep));
        trial.end(true);
    } catch (const EffectError&) {
        // The effect needs suites, and says so.
    }
}

// Each suite that this host offers, withheld: an error or a frame, and nothing left behind.
void checkSuites(const fs::path& plugin) {
    for (const std::string& name : suiteNames()) {
        HostOptions options;
        options.withheldSuites.push_back({name, 0});
        try {
            Trial trial(plugin, options);
            trial.render(trial.frame(kUsual, false));
            trial.end();
        } catch (const Failure& failure) {
            throw Failure(fmt::format("without {}: {}", name, failure.what()));
        } catch (const EffectError&) {
            // The effect needs it, and says so.
        }
    }
}

// An effect that renders both ways gives the same picture by both; floats are rendered where it takes them.
void checkSmartRender(const fs::path& plugin) {
    Trial trial(plugin, {});
    if (!trial.effect.supportsSmartRender()) return trial.end();
    for (const bool deep : trial.depths()) {
        FrameRequest request = trial.frame(kUsual, deep);
        request.smart = SmartUse::On;
        const std::uint64_t expected = trial.renderWithinFrame(request).checksum();
        request.smart = SmartUse::Off;
        try {
            trial.requireSame(
                trial.renderWithinFrame(request).checksum(), expected,
                fmt::format("at {} bits RENDER gives another picture than SMART_RENDER", deep ? 16 : 8));
        } catch (const Declined&) {
            // There is the smart way alone.
        }
    }
    if (trial.effect.supportsFloatColor()) trial.render(trial.floatFrame(kUsual));
    trial.end();
}

void checkLoading(const fs::path& plugin) {
    Effect(plugin, HostOptions{}).close();
}

constexpr CheckRule kRules[] = {
    {"an effect that can be loaded", checkLoading},
    {"set-up and tear-down, twice, with two instances", checkLife},
    {"frames of several sizes at each depth", checkSizes},
    {"frames without layers", checkNoLayers},
    {"rows with padding give the same picture", checkPadding},
    {"any number of threads gives the same picture", checkThreads},
    {"every parameter at the ends of its range", checkExtremes},
    {"frames within frames", checkNestedFrames},
    {"settings saved and loaded", checkSettings},
    {"parameters changed by the user", checkUserCommands},
    {"unknown commands do nothing", checkUnknownCommands},
    {"cancelled frames, and the frames after them", checkCancel},
    {"callbacks that fail, and the frames after them", checkFailures},
    {"older hosts, and hosts without suites", checkHosts},
    {"each suite withheld", checkSuites},
    {"smart rendering gives the same picture", checkSmartRender},
};

}  // namespace

std::span<const CheckRule> checkRules() {
    return kRules;
}

std::string tryRule(const CheckRule& rule, const fs::path& plugin) {
    try {
        rule.check(plugin);
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return {};
}

}  // namespace perch
