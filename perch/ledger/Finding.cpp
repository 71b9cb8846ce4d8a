#include "Finding.h"

namespace perch {

std::string describe(const Finding& finding) {
    std::string place = finding.command.empty() ? "between commands" : finding.command;
    if (!finding.callback.empty()) place += ", " + finding.callback;
    const char* prefix = finding.severity == Finding::Severity::Note ? "note: " : "";
    return prefix + place + ": " + finding.sentence;
}

}  // namespace perch
