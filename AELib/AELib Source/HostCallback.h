// A function out of one of the host's tables:
//
//   ThrowIfErr(HostCallback(inData->utils, &PF_UtilCallbacks::blend)(...));
#pragma once

#include "PF_Values.h"

namespace AELib {

// Throws the host's code for a missing callback where there is no table, or no function in it.
template <class Table, class Function>
Function* HostCallback(const Table* table, Function* Table::*entry) {
    if (table == nullptr || table->*entry == nullptr) throw int{PF_Err_INVALID_CALLBACK};
    return table->*entry;
}

}  // namespace AELib
