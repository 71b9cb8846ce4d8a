#include "Checkouts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "PF_Values.h"

namespace perch {

void Checkouts::checkOut(PF_ParamIndex index, const PF_ParamDef& value, const World* picture,
                         PF_ParamDef& param) {
    Entry entry;
    entry.index = index;
    entry.param = &param;
    if (picture != nullptr) {
        if (ledger.isStrict()) {
            entry.copy = std::make_unique<World>(*picture);
            entry.checksum = entry.copy->checksum();
        }
        entry.handedOut = value;
        entry.handedOut.u.ld = entry.copy != nullptr ? entry.copy->record() : picture->record();
    } else if (value.param_type != PF_Param_LAYER) {
        entry.handedOut = value;
    }
    param = entry.handedOut;
    const std::lock_guard lock(mutex);
    entries.push_back(std::move(entry));
}

void Checkouts::checkOutFailed(PF_ParamIndex index, PF_ParamDef* param) {
    const std::lock_guard lock(mutex);
    Entry entry;
    entry.index = index;
    entry.param = param;
    entry.handedOut = *param;
    entry.hasFailed = true;
    entries.push_back(std::move(entry));
}

PF_Err Checkouts::checkIn(PF_ParamDef* param) {
    const std::lock_guard lock(mutex);
    // By place, or by content where the effect has moved the record.
    auto entry = std::find_if(entries.rbegin(), entries.rend(),
                              [param](const Entry& open) { return open.param == param; });
    if (entry == entries.rend() && param != nullptr)
        entry = std::find_if(entries.rbegin(), entries.rend(), [param](const Entry& open) {
            return std::memcmp(&open.handedOut, param, sizeof *param) == 0;
        });
    if (entry == entries.rend()) {
        ledger.fault("checkin_param", "the parameter is not checked out");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    checkPixels(*entry, "checkin_param");
    if (entry->handedOut.param_type == PF_Param_LAYER && !entry->hasFailed) param->u.ld.data = nullptr;
    entries.erase(std::next(entry).base());
    return PF_Err_NONE;
}

void Checkouts::reportOpen() {
    const std::lock_guard lock(mutex);
    for (const Entry& entry : entries) {
        checkPixels(entry, "checkout_param");
        ledger.fault("checkout_param",
                     fmt::format("parameter {} was checked out{} and never checked in", entry.index,
                                 entry.hasFailed ? " (the checkout failed)" : ""));
    }
    entries.clear();
}

void Checkouts::checkPixels(const Entry& entry, const char* callback) {
    if (entry.copy == nullptr) return;
    if (entry.copy->checksum() != entry.checksum)
        ledger.fault(callback,
                     fmt::format("the pixels of parameter {} were written; they are read-only", entry.index));
    if (const std::string damage = entry.copy->damage(); !damage.empty())
        ledger.fault(callback, fmt::format("the picture of parameter {}: {}", entry.index, damage));
}

}  // namespace perch
