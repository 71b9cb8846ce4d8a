#include "CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "Error.h"
#include "NearestName.h"

namespace perch {
namespace {

// A flag is there or not; what follows its name after "=" would be taken for one of the library's words for
// yes and no.
void requireFlagsWithoutValue(const CLI::App& app, const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        const std::size_t end = argument.find('=');
        if (!argument.starts_with("--") || end == std::string::npos) continue;
        const std::string name = argument.substr(0, end);
        const CLI::Option* const option = app.get_option_no_throw(name);
        if (option != nullptr && option->get_expected_max() == 0)
            throw UsageError(fmt::format("{} takes no value, not \"{}\"", name, argument.substr(end + 1)));
    }
}

std::string firstLine(std::string_view text) {
    return std::string(text.substr(0, text.find('\n')));
}

}  // namespace

void addHelpFlag(CLI::App& app, bool& wantsHelp) {
    constexpr std::size_t kColumn = 42;  // beyond the longest name with its words
    app.get_formatter()->column_width(kColumn);
    app.set_help_flag();
    app.add_flag("-h,--help", wantsHelp, "list the options");
}

void addInProcessFlag(CLI::App& app) {
    app.add_flag(kInProcessOption)->description("run the effect in this process, as debuggers like it");
}

void addPlugin(CLI::App& app, std::string& plugin) {
    app.add_option("PLUGIN", plugin, "the effect; without it, the only one beside the program")
        ->type_name("");
    app.add_option("--plugin", plugin, "the same, as the other commands take it")->type_name("BUNDLE");
}

void requireOnePlugin(const CLI::App& app) {
    if (app.count("PLUGIN") > 0 && app.count("--plugin") > 0)
        throw UsageError("the effect is named twice, with --plugin and without; leave one");
}

void addTimeout(CLI::App& app, std::string& seconds) {
    app.add_option("--timeout", seconds,
                   "that the effect may take for one command; 0 for any time (default 0)")
        ->type_name("SECONDS");
}

std::chrono::nanoseconds parseSeconds(std::string_view option, const std::string& text) {
    constexpr double kMostSeconds = 1e6;
    double seconds = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, seconds);
    if (parsed.ec == std::errc() && parsed.ptr == end && seconds >= 0 && seconds <= kMostSeconds)
        return std::chrono::nanoseconds(std::llround(seconds * 1e9));
    throw UsageError(fmt::format("{} takes seconds from 0 to {}, not \"{}\"", option, kMostSeconds, text));
}

std::vector<std::string> parseArguments(CLI::App& app, const std::vector<std::string>& arguments) {
    for (CLI::Option* const option : app.get_options()) {
        if (option->get_multi_option_policy() != CLI::MultiOptionPolicy::TakeAll)
            option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
    app.allow_extras();
    requireFlagsWithoutValue(app, arguments);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ArgumentMismatch&) {
        // A value is whatever argument follows, so that only the last one can lack it.
        const CLI::Option* const option = app.get_option_no_throw(arguments.back());
        throw UsageError(
            fmt::format("{} lacks its value", option != nullptr ? option->get_name() : arguments.back()));
    } catch (const CLI::ParseError& error) {
        throw UsageError(firstLine(error.what()));
    }
    return app.remaining();
}

void refuseExtras(const std::vector<std::string>& extras, const std::vector<std::string>& optionNames) {
    if (extras.empty()) return;
    const std::string& extra = extras.front();
    if (!extra.starts_with('-')) throw UsageError(fmt::format("unexpected argument \"{}\"", extra));
    std::vector<std::string> options = optionNames;
    for (std::string& option : options)
        option.insert(0, "--");
    const std::string option = extra.substr(0, extra.find('='));
    throw UsageError(fmt::format("unknown option \"{}\"{}", option, suggestion(option, options)));
}

void parseAllArguments(CLI::App& app, const std::vector<std::string>& arguments) {
    refuseExtras(parseArguments(app, arguments), longOptionNames(app));
}

std::vector<std::string> longOptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    return names;
}

int parseNumber(std::string_view option, const std::string& text, int least, int most) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end && number >= least && number <= most) return number;
    throw UsageError(
        fmt::format("{} takes a whole number from {} to {}, not \"{}\"", option, least, most, text));
}

std::vector<std::string> repeatedOptions(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        if (option->count() > 1) names.push_back("--" + option->get_lnames().front());
    }
    return names;
}

}  // namespace perch
