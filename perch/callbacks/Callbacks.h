// The tables that an effect is given. They are the same for every command.
#pragma once

#include <set>
#include <string>

#include "CallbackTables.h"
#include "PF_Entry.h"
#include "PF_FloatSuites.h"
#include "PF_SmartRender.h"
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
// What only suites offer.
PF_iterateFloatSuite1 floatIterateSuite();
PF_Err fillFloat(PF_ProgPtr effectRef, const PF_PixelFloat* color, const PF_Rect* area,
                 PF_EffectWorld* world);
PF_Err premultiplyColorFloat(PF_ProgPtr effectRef, PF_EffectWorld* src, const PF_PixelFloat* color,
                             A_long forward, PF_EffectWorld* dst);
PF_Err pixelDataFloat(PF_EffectWorld* world, PF_PixelPtr pixel, PF_PixelFloat** address);
// copy_hq of the transform suite, which the utility table lacks.
PF_Err copyFiltered(PF_ProgPtr effectRef, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* srcArea,
                    PF_Rect* dstArea);

// What comes with the two commands of smart rendering.
PF_PreRenderCallbacks* preRenderCallbacks();
PF_SmartRenderCallbacks* smartRenderCallbacks();

// The table of a suite; null when the host has none of that name and version.
const void* findSuite(const char* name, A_long version);
// Of all suites that the host has, each once.
std::set<std::string> suiteNames();

}  // namespace perch
