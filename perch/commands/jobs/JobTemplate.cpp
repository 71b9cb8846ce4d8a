#include "JobTemplate.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Error.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kFormatKey[] = "specificationVersion";  // so named by Open Job Description
constexpr std::size_t kMostParameters = 50;
constexpr std::size_t kLongestDefault = 1024;  // code points

// In UTF-8.
std::size_t codePoints(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

bool hasControlCharacter(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20U || byte == 0x7FU) return true;
        // U+0080 to U+009F, the others of that kind, are C2 80 to C2 9F.
        if (byte == 0xC2U && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0U)
            return true;
    }
    return false;
}

// Two braces begin or end a reference, and there is no way to write them otherwise.
bool isArgument(const std::string& text) {
    return !hasControlCharacter(text) && text.find("{{") == std::string::npos &&
           text.find("}}") == std::string::npos;
}

class Parameters {
public:
    // What an argument is in the template: itself, or a reference to a parameter that has it as its default,
    // which may have any characters.
    std::string reference(const std::string& argument) {
        if (isArgument(argument)) return argument;
        const std::string name = fmt::format("Argument{}", definitions.size());
        if (codePoints(argument) > kLongestDefault || definitions.size() == kMostParameters)
            throw UsageError(
                "an Open Job Description template cannot hold so many, or so long, names with control "
                "characters or two braces; rename the files");
        definitions.push_back({{"name", name},
                               {"type", "STRING"},
                               {"default", argument},
                               {"userInterface", {{"control", "HIDDEN"}}}});
        return fmt::format("{{{{Param.{}}}}}", name);
    }

    // With the folder of the job, which is another where a path mapping says so.
    explicit Parameters(const std::string& folder) {
        definitions.push_back({{"name", "Folder"},
                               {"type", "PATH"},
                               {"description", "where the command's relative names begin"},
                               {"default", folder},
                               {"objectType", "DIRECTORY"},
                               {"dataFlow", "INOUT"}});
    }

    Json definitions = Json::array();
};

// Such a job starts in a folder of its own; the shell goes to the command's and makes way for it.
Json argumentsOf(const RenderTasks& tasks, Parameters& parameters) {
    Json arguments{"-c", R"(cd "$1" && shift && exec "$@")", "sh", "{{Param.Folder}}"};
    for (const std::string& word : tasks.command)
        arguments.push_back(parameters.reference(word));
    if (!tasks.saysProgress) arguments.insert(arguments.end(), {"--progress", "openjd"});
    arguments.push_back("--shard");
    arguments.push_back(fmt::format("{{{{Task.Param.Shard}}}}/{}", tasks.count));
    return arguments;
}

std::string printed(const Json& json) {
    try {
        return json.dump(2) + '\n';
    } catch (const Json::type_error&) {
        throw UsageError(
            "an Open Job Description template is UTF-8, and a name in the command is not; rename the file");
    }
}

}  // namespace

std::string jobTemplate(const RenderTasks& tasks) {
    Parameters parameters(tasks.folder);
    const Json arguments = argumentsOf(tasks, parameters);
    Json step{{"name", "render"}};
    if (tasks.threads.value_or(0) > 0)
        step["hostRequirements"]["amounts"] = {{{"name", "amount.worker.vcpu"}, {"min", *tasks.threads}}};
    step["parameterSpace"]["taskParameterDefinitions"] = {
        {{"name", "Shard"}, {"type", "INT"}, {"range", fmt::format("1-{}", tasks.count)}}};
    // SIGTERM first: perch then ends the frame under way, and removes what it has begun to write.
    step["script"]["actions"]["onRun"] = {
        {"command", "/bin/sh"}, {"args", arguments}, {"cancelation", {{"mode", "NOTIFY_THEN_TERMINATE"}}}};
    return printed({{kFormatKey, "jobtemplate-2023-09"},
                    {"name", "perch render"},
                    {"parameterDefinitions", parameters.definitions},
                    {"steps", Json::array({step})}});
}

}  // namespace perch
