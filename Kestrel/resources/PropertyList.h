// The effect's property list, PiPL, in the forms that the systems store.
//
//   macOS, Linux   version | count | vendor key 0 length data zeros | ...      numbers big-endian
//   Windows        01 00 | the same list                                       numbers little-endian
//
// A four-character code is a number. Zeros fill the data to a multiple of 4; on Windows the length counts
// them after a string.
#pragma once

#include <string>

enum class ListForm { kMac, kWindows };

// The list of this effect, made from EffectIdentity.h.
std::string MakePropertyList(ListForm form);
