// The tables that an effect is given. They are the same for every command.
#pragma once

#include "CallbackTables.h"
#include "PF_Entry.h"
#include "SP_Basic.h"

namespace perch {

CallbackTables callbackTables();

// Its parts.
const PF_InteractCallbacks& interactionCallbacks();
PF_UtilCallbacks* utilityCallbacks();
SPBasicSuite* basicSuite();

// Each family fills its part of the table.
void fillHandleCallbacks(PF_UtilCallbacks& table);
void fillWorldCallbacks(PF_UtilCallbacks& table);
void fillPixelCallbacks(PF_UtilCallbacks& table);
void fillSamplingCallbacks(PF_UtilCallbacks& table);
void fillIterateCallbacks(PF_UtilCallbacks& table);
PF_ANSICallbacksBlock ansiCallbacks();
// copy_hq of the transform suite, which the utility table lacks.
PF_Err copyFiltered(PF_ProgPtr effectRef, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* srcArea,
                    PF_Rect* dstArea);

// The table of a suite; null when the host has none of that name and version.
const void* findSuite(const char* name, A_long version);
const void* findPixelSuite(const char* name, A_long version);
const void* findParameterSuite(const char* name, A_long version);
const void* findProjectSuite(const char* name, A_long version);

}  // namespace perch
