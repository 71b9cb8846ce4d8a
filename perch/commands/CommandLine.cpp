#include "CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "Error.h"
#include "NearestName.h"

namespace perch {
namespace {

[[noreturn]] void refuse(const CLI::App& app, const std::string& extra) {
    if (!extra.starts_with('-')) throw UsageError(fmt::format("unexpected argument \"{}\"", extra));
    std::vector<std::string> options = longOptionNames(app);
    for (std::string& option : options)
        option.insert(0, "--");
    const std::string option = extra.substr(0, extra.find('='));
    throw UsageError(fmt::format("unknown option \"{}\"{}", option, suggestion(option, options)));
}

std::string firstLine(std::string_view text) {
    return std::string(text.substr(0, text.find('\n')));
}

}  // namespace

void addHelpFlag(CLI::App& app, bool& wantsHelp) {
    app.set_help_flag();
    app.add_flag("-h,--help", wantsHelp, "list the options");
}

void parseArguments(CLI::App& app, const std::vector<std::string>& arguments, Extras extras) {
    for (CLI::Option* const option : app.get_options()) {
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
    app.allow_extras();
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string_view text = error.what();
        throw UsageError(fmt::format("{} lacks its value", text.substr(0, text.find(':'))));
    } catch (const CLI::ConversionError& error) {
        const std::string_view text = error.what();
        throw UsageError(fmt::format("a flag takes no such value: {}", text.substr(text.find("--"))));
    } catch (const CLI::ParseError& error) {
        throw UsageError(firstLine(error.what()));
    }
    const std::vector<std::string> unknown = app.remaining();
    if (extras == Extras::Refused && !unknown.empty()) refuse(app, unknown.front());
}

std::vector<std::string> longOptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    return names;
}

}  // namespace perch
