#include "Ledger.h"

#include <algorithm>

#include "Whereabouts.h"

namespace perch {

void Ledger::enterCommand(std::string_view name) {
    const std::lock_guard lock(mutex);
    command = name;
}

void Ledger::fault(std::string_view callback, std::string sentence) {
    add(Finding::Severity::Fault, callback, std::move(sentence));
}

void Ledger::note(std::string_view callback, std::string sentence) {
    add(Finding::Severity::Note, callback, std::move(sentence));
}

void Ledger::add(Finding::Severity severity, std::string_view callback, std::string sentence) {
    if (!strict) return;
    const std::lock_guard lock(mutex);
    // A fault in a row function comes once per row; once is enough.
    const bool isKnown = std::any_of(entries.begin(), entries.end(), [&](const Finding& known) {
        return known.severity == severity && known.command == command && known.callback == callback &&
               known.sentence == sentence;
    });
    if (isKnown) return;
    entries.push_back({severity, command, std::string(callback), std::move(sentence)});
    noteFinding(describe(entries.back()) + '\n');
}

}  // namespace perch
