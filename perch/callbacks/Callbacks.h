// The tables that an effect is given, except the suites. They are the same for every command.
#pragma once

#include "PF_Entry.h"
#include "PF_FloatSuites.h"
#include "PF_SmartRender.h"

namespace perch {

const PF_InteractCallbacks& interactionCallbacks();
PF_UtilCallbacks* utilityCallbacks();

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
const PF_PreRenderCallbacks& preRenderCallbacks();
const PF_SmartRenderCallbacks& smartRenderCallbacks();

}  // namespace perch
