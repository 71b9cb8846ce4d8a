// A render command whose words mean much to shells, and a program in its place that tells what it is given.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "Program.h"
#include "RenderTasks.h"
#include "TemporaryFolder.h"

namespace perch::test {

constexpr int kTasks = 2;

inline const std::vector<std::string> kDifficultWords{"in.####.exr",
                                                      "with space.png",
                                                      " ",
                                                      "",
                                                      "it's",
                                                      "''",
                                                      "\"quoted\"",
                                                      "$HOME",
                                                      "${HOME}",
                                                      "$(touch made)",
                                                      "`touch made`",
                                                      "a\\b",
                                                      "\\",
                                                      "tab\there",
                                                      "line\nbreak",
                                                      "\n",
                                                      "-leading",
                                                      "--",
                                                      "#comment",
                                                      "mid#dle",
                                                      "~",
                                                      "~root",
                                                      "=cat",
                                                      "a=b",
                                                      "*",
                                                      "?",
                                                      "[a-z]*",
                                                      "{a,b}",
                                                      "{}",
                                                      "{.}",
                                                      "{/}",
                                                      "{#}",
                                                      "{%}",
                                                      "{1}",
                                                      "{= $_++ =}",
                                                      "a{}b",
                                                      "it's {}",
                                                      "{{}}",
                                                      "{{Param.Folder}}",
                                                      "}}{{",
                                                      "!!",
                                                      "!",
                                                      "a;b",
                                                      "a&b",
                                                      "a|b",
                                                      "<in",
                                                      ">made",
                                                      "(a)",
                                                      "%d",
                                                      "$F4",
                                                      "ümläut",
                                                      "日本語",
                                                      "🎞",
                                                      "\x01",
                                                      "a,b",
                                                      "50%",
                                                      "@file",
                                                      "^",
                                                      "\r"};

class JobTexts {
public:
    JobTexts() {
        std::filesystem::create_directory(folder);
        const std::filesystem::path program = folder / "my perch";
        // Its folder and its arguments, each behind a separator of units, and one of groups at the end.
        std::ofstream(program)
            << "#!/bin/sh\npwd\nfor word; do printf '\\037%s' \"$word\"; done; printf '\\035'\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    RenderTasks tasks(std::vector<std::string> options, std::optional<int> threads = 4) const {
        options.insert(options.begin(), {"./my perch", "render"});
        return {.command = options,
                .count = kTasks,
                .threads = threads,
                .saysProgress = true,
                .folder = folder.string()};
    }

    // What the program tells of each task in whatever order they ran, sorted.
    static std::vector<std::string> told(std::string out) {
        constexpr char kEnd = '\x1D';
        std::vector<std::string> parts;
        for (std::size_t at = 0; (at = out.find(kEnd)) != std::string::npos; out.erase(0, at + 1))
            parts.push_back(out.substr(0, at));
        if (!out.empty()) parts.push_back("and then: " + out);
        std::ranges::sort(parts);
        return parts;
    }

    // What it ought to tell of a task.
    std::string expected(const std::vector<std::string>& options, int shard) const {
        std::string text = folder.string() + "\n\x1Frender";
        for (const std::string& option : options)
            text += '\x1F' + option;
        return text + "\x1F--shard\x1F" + std::to_string(shard) + "/" + std::to_string(kTasks);
    }

private:
    const TemporaryFolder parent;

public:
    const std::filesystem::path folder = parent / "it's a \"$HOME\" {} folder";
};

}  // namespace perch::test
