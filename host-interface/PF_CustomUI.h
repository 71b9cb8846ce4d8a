/* What an effect that draws controls of its own hands to register_ui. */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

struct PF_CustomUIInfo {
    A_long reserved;
    PF_CustomEventFlags events; /* the windows that are to send it PF_Cmd_EVENT */
    A_long comp_ui_width;       /* of its overlays, here and below */
    A_long comp_ui_height;
    PF_UIAlignment comp_ui_alignment;
    A_long layer_ui_width;
    A_long layer_ui_height;
    PF_UIAlignment layer_ui_alignment;
    A_long preview_ui_width;
    A_long preview_ui_height;
    PF_UIAlignment preview_ui_alignment;
};
PF_LAYOUT(PF_CustomUIInfo, 44, 4);
PF_AT(PF_CustomUIInfo, events, 4);
PF_AT(PF_CustomUIInfo, comp_ui_width, 8);
PF_AT(PF_CustomUIInfo, comp_ui_height, 12);
PF_AT(PF_CustomUIInfo, comp_ui_alignment, 16);
PF_AT(PF_CustomUIInfo, layer_ui_width, 20);
PF_AT(PF_CustomUIInfo, layer_ui_height, 24);
PF_AT(PF_CustomUIInfo, layer_ui_alignment, 28);
PF_AT(PF_CustomUIInfo, preview_ui_width, 32);
PF_AT(PF_CustomUIInfo, preview_ui_height, 36);
PF_AT(PF_CustomUIInfo, preview_ui_alignment, 40);

#ifdef __cplusplus
}
#endif
