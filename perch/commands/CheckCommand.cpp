#include <fmt/format.h>
#include <string.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>

#include "Bundle.h"
#include "Check.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Error.h"
#include "Supervisor.h"
#include "Worker.h"

namespace perch {
namespace {

struct CheckOptions {
    bool wantsHelp = false;
    bool wantsJson = false;
    std::string plugin;
    std::string limit = "60";
    std::string rule;  // number; empty: all
};

void addOptions(CLI::App& app, CheckOptions& options) {
    addHelpFlag(app, options.wantsHelp);
    addPlugin(app, options.plugin);
    app.add_flag("--json", options.wantsJson, "print JSON");
    app.add_option("--rule", options.rule, "try this one alone, by its number (default: all)")
        ->type_name("N");
    app.add_option("--timeout", options.limit, "that a rule may take; 0 for any time (default 60)")
        ->type_name("SECONDS");
    addInProcessFlag(app);
}

// From 0; all of them without a text.
std::optional<std::size_t> parseRule(const std::string& text) {
    if (text.empty()) return std::nullopt;
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end && number >= 1 && number <= checkRules().size())
        return number - 1;
    throw UsageError(
        fmt::format("--rule takes a number from 1 to {}, not \"{}\"", checkRules().size(), text));
}

// Prints a verdict for each rule as it falls.
class Verdicts {
public:
    explicit Verdicts(bool asJson) : asJson(asJson) {}

    // `findings` are those of strict mode before a crash.
    void add(const CheckRule& rule, const std::string& failure, const std::vector<std::string>& findings) {
        hasFailure = hasFailure || !failure.empty();
        if (!asJson) {
            std::string verdict = failure.empty() ? "ok" : "FAILED: " + printable(failure);
            for (const std::string& finding : findings)
                verdict += "; before that: " + printable(finding);
            printResult(fmt::format("{:<50} {}\n", rule.name, verdict));
            return;
        }
        nlohmann::ordered_json json{{"rule", rule.name}, {"ok", failure.empty()}};
        if (!failure.empty()) json["failure"] = failure;
        if (!findings.empty()) json["before"] = findings;
        const std::string line = json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
        printResult((isFirst ? "[\n" : ",\n") + line);
        isFirst = false;
    }
    int end() const {
        if (asJson) printResult(isFirst ? "[]\n" : "\n]\n");
        return hasFailure ? kEffectFailed : kDone;
    }

private:
    const bool asJson;
    bool isFirst = true;
    bool hasFailure = false;
};

// The rule in a child of its own, so that its crash or hang ends no other rule.
Outcome tryInChild(std::size_t number, const std::string& plugin, std::chrono::nanoseconds limit) {
    return superviseWorker({"check", "--in-process", "--rule", std::to_string(number + 1), plugin}, limit);
}

Outcome tryHere(const CheckRule& rule, const std::string& plugin) {
    const std::string failure = tryRule(rule, plugin);
    return {
        .status = failure.empty() ? kDone : kEffectFailed, .sentence = failure, .signal = 0, .findings = {}};
}

}  // namespace

int runCheckCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Runs an effect through every command, on generated frames of both depths.", "perch check");
    CheckOptions options;
    addOptions(app, options);
    parseAllArguments(app, arguments);
    if (options.wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    requireOnePlugin(app);
    const std::chrono::nanoseconds limit = parseSeconds("--timeout", options.limit);
    const std::optional<std::size_t> only = parseRule(options.rule);
    const std::string plugin = chooseBundle(options.plugin).string();
    // A file that is not an effect has no verdicts.
    openBundle(plugin);
    if (isWorker()) {
        const std::string failure = tryRule(checkRules()[only.value_or(0)], plugin);
        if (!failure.empty()) throw EffectFault(failure);
        return kDone;
    }
    const bool inProcess = app.count(kInProcessOption) > 0;
    Verdicts verdicts(options.wantsJson);
    const std::size_t end = only ? *only + 1 : checkRules().size();
    for (std::size_t number = only.value_or(0); number < end; ++number) {
        const CheckRule& rule = checkRules()[number];
        const Outcome outcome = inProcess ? tryHere(rule, plugin) : tryInChild(number, plugin, limit);
        if (outcome.signal != 0) {
            verdicts.end();
            say(fmt::format("ended by SIG{}; {} rules were tried", sigabbrev_np(outcome.signal),
                            number - only.value_or(0)));
            return kSignalled + outcome.signal;
        }
        verdicts.add(rule, outcome.sentence, outcome.findings);
        const bool isLoading = number == 0;
        if (isLoading && outcome.status != kDone) break;
    }
    return verdicts.end();
}

}  // namespace perch
