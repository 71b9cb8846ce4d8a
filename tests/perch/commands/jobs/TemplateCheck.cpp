#include "TemplateCheck.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string_view>

namespace perch::test {
namespace {

using Json = nlohmann::json;

class Check {
public:
    std::vector<std::string> breaches;

    void require(bool holds, const std::string& sentence) {
        if (!holds) breaches.push_back(sentence);
    }

    // An object with all of these keys and none but these and the optional ones.
    bool isObject(const Json& json, const std::string& what, const std::set<std::string>& keys,
                  const std::set<std::string>& optional = {}) {
        require(json.is_object(), what + " is no object");
        if (!json.is_object()) return false;
        bool isWhole = true;
        for (const std::string& key : keys) {
            require(json.contains(key), what + " lacks " + key);
            isWhole = isWhole && json.contains(key);
        }
        for (const auto& [key, value] : json.items())
            require(keys.contains(key) || optional.contains(key), what + " has an unknown " + key);
        return isWhole;
    }

    bool isList(const Json& json, const std::string& what, std::size_t most) {
        require(json.is_array() && !json.empty() && json.size() <= most,
                what + " is no list of 1 to " + std::to_string(most));
        return json.is_array();
    }

    // Characters are counted as code points; "Cc" are the control characters.
    void isString(const Json& json, const std::string& what, std::size_t least, std::size_t most,
                  bool takesControls = false) {
        require(json.is_string(), what + " is no string");
        if (!json.is_string()) return;
        const std::string text = json.get<std::string>();
        std::size_t length = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            length += (byte & 0xC0U) != 0x80U ? 1 : 0;
            const bool isC1 =
                byte == 0xC2U && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0U;
            require(takesControls || (byte >= 0x20U && byte != 0x7FU && !isC1),
                    what + " has a control character");
        }
        require(length >= least && length <= most, what + " is of " + std::to_string(length) + " characters");
    }

    void isIdentifier(const Json& json, const std::string& what) {
        isString(json, what, 1, 64);
        if (!json.is_string() || json.get<std::string>().empty()) return;
        const std::string text = json.get<std::string>();
        require(std::isdigit(static_cast<unsigned char>(text.front())) == 0, what + " begins with a digit");
        require(
            std::ranges::all_of(
                text, [](char c) { return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0; }),
            what + " is no identifier");
    }

    // References are names between two pairs of braces, which stand nowhere else.
    void isFormatString(const Json& json, const std::string& what, const std::set<std::string>& names) {
        if (!json.is_string()) return;
        std::string text = json.get<std::string>();
        for (std::size_t begin = 0; (begin = text.find("{{")) != std::string::npos;) {
            const std::size_t end = text.find("}}", begin);
            if (end == std::string::npos) break;
            const std::string name = text.substr(begin + 2, end - begin - 2);
            require(names.contains(name), what + " refers to an unknown " + name);
            text.replace(begin, end + 2 - begin, "_");
        }
        require(text.find("{{") == std::string::npos && text.find("}}") == std::string::npos,
                what + " has half a reference");
    }
};

void checkParameter(Check& check, const Json& json, std::set<std::string>& names) {
    const std::string type = json.value("type", "");
    const std::set<std::string> common{"description", "userInterface"};
    if (type == "PATH") {
        if (!check.isObject(json, "a path parameter", {"name", "type", "default"},
                            {"description", "objectType", "dataFlow", "userInterface"}))
            return;
        check.require(json.value("objectType", "FILE") == "FILE" || json["objectType"] == "DIRECTORY",
                      "objectType");
        check.require(
            std::set<std::string>{"NONE", "IN", "OUT", "INOUT"}.contains(json.value("dataFlow", "NONE")),
            "dataFlow");
    } else {
        check.require(type == "STRING", "a parameter is of type " + type);
        if (!check.isObject(json, "a string parameter", {"name", "type", "default"}, common)) return;
        if (json.contains("userInterface"))
            check.require(json["userInterface"] == Json{{"control", "HIDDEN"}}, "userInterface");
    }
    if (json.contains("description")) check.isString(json["description"], "a description", 1, 2048);
    check.isIdentifier(json["name"], "a parameter's name");
    check.isString(json["default"], "a default", 0, 1024, true);
    const bool isNew = names.insert("Param." + json["name"].get<std::string>()).second;
    check.require(isNew, "two parameters have one name");
}

void checkAction(Check& check, const Json& json, const std::set<std::string>& names) {
    if (!check.isObject(json, "an action", {"command"}, {"args", "timeout", "cancelation"})) return;
    check.isString(json["command"], "a command", 1, std::string::npos);
    check.isFormatString(json["command"], "a command", names);
    for (const Json& argument : json.value("args", Json::array())) {
        check.isString(argument, "an argument", 0, std::string::npos);
        check.isFormatString(argument, "an argument", names);
    }
    if (!json.contains("cancelation")) return;
    check.isObject(json["cancelation"], "a cancelation", {"mode"}, {"notifyPeriodInSeconds"});
    check.require(json["cancelation"].value("mode", "") == "NOTIFY_THEN_TERMINATE", "a cancelation's mode");
}

void checkStep(Check& check, const Json& json, std::set<std::string> names) {
    if (!check.isObject(json, "a step", {"name", "script"},
                        {"description", "hostRequirements", "parameterSpace"}))
        return;
    check.isString(json["name"], "a step's name", 1, 64);
    if (json.contains("hostRequirements") &&
        check.isObject(json["hostRequirements"], "hostRequirements", {"amounts"}, {"attributes"}) &&
        check.isList(json["hostRequirements"]["amounts"], "amounts", 50)) {
        for (const Json& amount : json["hostRequirements"]["amounts"]) {
            check.isObject(amount, "an amount", {"name", "min"}, {"max"});
            check.require(amount.value("name", "") == "amount.worker.vcpu", "an amount's name");
            check.require(amount.value("min", -1.0) >= 1, "an amount's least");
        }
    }
    if (json.contains("parameterSpace") &&
        check.isObject(json["parameterSpace"], "parameterSpace", {"taskParameterDefinitions"},
                       {"combination"}) &&
        check.isList(json["parameterSpace"]["taskParameterDefinitions"], "taskParameterDefinitions", 16)) {
        for (const Json& parameter : json["parameterSpace"]["taskParameterDefinitions"]) {
            if (!check.isObject(parameter, "a task's parameter", {"name", "type", "range"})) continue;
            check.isIdentifier(parameter["name"], "a task's parameter");
            check.require(parameter["type"] == "INT", "a task's parameter is no INT");
            const std::string range = parameter["range"].get<std::string>();
            check.require(
                range.starts_with("1-") && range.find_first_not_of("0123456789", 2) == std::string::npos,
                "a range is " + range);
            names.insert("Task.Param." + parameter["name"].get<std::string>());
        }
    }
    if (check.isObject(json["script"], "a script", {"actions"}, {"embeddedFiles"}) &&
        check.isObject(json["script"]["actions"], "actions", {"onRun"}))
        checkAction(check, json["script"]["actions"]["onRun"], names);
}

}  // namespace

std::vector<std::string> breachesOf(const Json& jobTemplate) {
    Check check;
    if (!check.isObject(jobTemplate, "the template", {kFormatKey, "name", "steps"},
                        {"$schema", "description", "parameterDefinitions", "jobEnvironments", "extensions"}))
        return check.breaches;
    check.require(jobTemplate[kFormatKey] == "jobtemplate-2023-09", "the format's name");
    check.isString(jobTemplate["name"], "the name", 1, 128);
    std::set<std::string> names;
    if (jobTemplate.contains("parameterDefinitions") &&
        check.isList(jobTemplate["parameterDefinitions"], "parameterDefinitions", 50))
        for (const Json& parameter : jobTemplate["parameterDefinitions"])
            checkParameter(check, parameter, names);
    check.isFormatString(jobTemplate["name"], "the name", names);
    if (check.isList(jobTemplate["steps"], "steps", 100))
        for (const Json& step : jobTemplate["steps"])
            checkStep(check, step, names);
    return check.breaches;
}

std::string resolved(std::string text, const std::map<std::string, std::string>& values) {
    std::string result;
    for (std::size_t begin = 0; (begin = text.find("{{")) != std::string::npos;) {
        const std::size_t end = text.find("}}", begin);
        const auto value = values.find(text.substr(begin + 2, end - begin - 2));
        if (end == std::string::npos || value == values.end()) break;
        result += text.substr(0, begin) + value->second;
        text.erase(0, end + 2);
    }
    return result + text;
}

}  // namespace perch::test
