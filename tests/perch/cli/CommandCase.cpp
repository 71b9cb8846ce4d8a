#include "CommandCase.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace perch::test {
namespace {

constexpr char kCommand[] = "$ ";
constexpr char kIn[] = "--- stdin";
constexpr char kExit[] = "exit ";
constexpr char kOut[] = "--- stdout";
constexpr char kErr[] = "--- stderr";

// The parts below read from the beginning of a text and take off what they know; false where it is not there.
// Regular expressions would do, but the compiler warns of the library's own code under sanitizers.
bool take(std::string_view& text, std::string_view part) {
    if (!text.starts_with(part)) return false;
    text.remove_prefix(part.size());
    return true;
}

bool takeNumber(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789.e+-"), text.size());
    text.remove_prefix(end);
    return end > 0;
}

bool isProgress(std::string_view line) {
    return take(line, "perch: frame ") && takeNumber(line) && take(line, " of ") && takeNumber(line) &&
           take(line, ": ");
}

// "renderSeconds":0.25 becomes "renderSeconds":{time}.
std::string withoutJsonTimes(const std::string& line) {
    std::string kept;
    std::string_view rest = line;
    for (std::size_t at = 0; (at = rest.find("econds\":")) != std::string::npos;) {
        at += std::string_view("econds\":").size();
        kept += rest.substr(0, at);
        rest.remove_prefix(at);
        if (takeNumber(rest)) kept += "{time}";
    }
    return kept + std::string(rest);
}

// " in 0.5 s, 12 per second: " becomes " in {time}: ".
std::string withoutTime(const std::string& line) {
    for (std::size_t at = line.find(" in "); at != std::string::npos; at = line.find(" in ", at + 1)) {
        std::string_view rest = std::string_view(line).substr(at);
        if (!take(rest, " in ") || !takeNumber(rest) || !take(rest, " s")) continue;
        if (take(rest, ", ") && !(takeNumber(rest) && take(rest, " per second"))) continue;
        if (take(rest, ": ")) return line.substr(0, at) + " in {time}: " + std::string(rest);
    }
    return line;
}

}  // namespace

std::vector<CommandCase> readCases(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::vector<CommandCase> cases;
    std::string* section = nullptr;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(kCommand)) {
            cases.push_back({.command = line.substr(2)});
            section = nullptr;
        } else if (cases.empty()) {
            throw std::runtime_error(file.string() + " does not begin with a command");
        } else if (line == kIn) {
            section = &cases.back().in;
        } else if (line.starts_with(kExit) && (section == nullptr || section == &cases.back().in)) {
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
    for (const auto& [command, in, status, out, err] : cases) {
        stream << kCommand << command << '\n';
        if (!in.empty()) stream << kIn << '\n' << in;
        stream << kExit << status << '\n';
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
    std::string kept;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        kept += withoutJsonTimes(withoutTime(line));
        if (!lines.eof()) kept += '\n';
    }
    return kept;
}

std::string withoutProgress(const std::string& text) {
    std::string kept;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (isProgress(line)) continue;
        kept += line;
        if (!lines.eof()) kept += '\n';
    }
    return kept;
}

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace perch::test
