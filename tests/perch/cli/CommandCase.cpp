#include "CommandCase.h"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace perch::test {
namespace {

constexpr char kCommand[] = "$ ";
constexpr char kExit[] = "exit ";
constexpr char kOut[] = "--- stdout";
constexpr char kErr[] = "--- stderr";

}  // namespace

std::vector<CommandCase> readCases(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::vector<CommandCase> cases;
    std::string* section = nullptr;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(kCommand)) {
            cases.push_back({line.substr(2), 0, "", ""});
            section = nullptr;
        } else if (cases.empty()) {
            throw std::runtime_error(file.string() + " does not begin with a command");
        } else if (line.starts_with(kExit) && section == nullptr) {
            cases.back().status = std::stoi(line.substr(5));
        } else if (line == kOut) {
            section = &cases.back().out;
        } else if (line == kErr) {
            section = &cases.back().err;
        } else if (section != nullptr) {
            *section += line + '\n';
        }
    }
    return cases;
}

void writeCases(const std::filesystem::path& file, const std::vector<CommandCase>& cases) {
    std::ofstream stream(file);
    for (const auto& [command, status, out, err] : cases) {
        stream << kCommand << command << '\n' << kExit << status << '\n';
        stream << kOut << '\n' << out << kErr << '\n' << err;
    }
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + file.string());
}

std::vector<std::string> wordsOf(const std::string& command) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isWord = false;
    for (const char c : command) {
        if (c == '"') {
            isQuoted = !isQuoted;
            if (!isWord) words.emplace_back();
            isWord = true;
        } else if (c == ' ' && !isQuoted) {
            isWord = false;
        } else {
            if (!isWord) words.emplace_back();
            isWord = true;
            words.back() += c;
        }
    }
    return words;
}

std::string withoutTimes(const std::string& text) {
    static const std::regex times(R"( in [0-9.]+ s(, [0-9.e+]+ per second)?: )");
    static const std::regex progress(R"(perch: frame [0-9]+ of [0-9]+: [^\n]*\n)");
    return std::regex_replace(std::regex_replace(text, progress, ""), times, " in {time}: ");
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace perch::test
