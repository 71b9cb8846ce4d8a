// The account of strict mode: collects what breaks a rule, named with the command under way.
// Without strict mode it stays empty. Any thread may report; findings() is read between commands.
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Finding.h"

namespace perch {

class Ledger {
public:
    explicit Ledger(bool strict) : strict(strict) {}

    bool isStrict() const { return strict; }
    void enterCommand(std::string_view name);

    void fault(std::string_view callback, std::string sentence);
    void note(std::string_view callback, std::string sentence);

    const std::vector<Finding>& findings() const { return entries; }

private:
    void add(Finding::Severity severity, std::string_view callback, std::string sentence);

    const bool strict;
    std::mutex mutex;
    std::string command;
    std::vector<Finding> entries;
};

}  // namespace perch
