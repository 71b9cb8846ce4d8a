/*
 * Parameters whose values only the effect understands. The host keeps a handle for each value and has the
 * effect copy, save, compare and dispose of it by PF_Cmd_ARBITRARY_CALLBACK, with a PF_ArbParamsExtra as the
 * command's `extra`. The command may come inside any other and with a null effect reference.
 */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* `arbPH` receives the default, in a new handle. */
typedef struct PF_ArbNewParams {
    void* refconPV; /* that of the parameter's definition, here and below */
    PF_ArbitraryH* arbPH;
} PF_ArbNewParams;
PF_LAYOUT(PF_ArbNewParams, 16, 8);
PF_AT(PF_ArbNewParams, arbPH, 8);

typedef struct PF_ArbDisposeParams {
    void* refconPV;
    PF_ArbitraryH arbH;
} PF_ArbDisposeParams;
PF_LAYOUT(PF_ArbDisposeParams, 16, 8);
PF_AT(PF_ArbDisposeParams, arbH, 8);

/* A null source asks for a default. */
typedef struct PF_ArbCopyParams {
    void* refconPV;
    PF_ArbitraryH src_arbH;
    PF_ArbitraryH* dst_arbPH; /* receives a new handle */
} PF_ArbCopyParams;
PF_LAYOUT(PF_ArbCopyParams, 24, 8);
PF_AT(PF_ArbCopyParams, src_arbH, 8);
PF_AT(PF_ArbCopyParams, dst_arbPH, 16);

typedef struct PF_ArbFlatSizeParams {
    void* refconPV;
    PF_ArbitraryH arbH;
    A_u_long* flat_data_sizePLu; /* receives the bytes that FLATTEN_FUNC will write */
} PF_ArbFlatSizeParams;
PF_LAYOUT(PF_ArbFlatSizeParams, 24, 8);
PF_AT(PF_ArbFlatSizeParams, arbH, 8);
PF_AT(PF_ArbFlatSizeParams, flat_data_sizePLu, 16);

typedef struct PF_ArbFlattenParams {
    void* refconPV;
    PF_ArbitraryH arbH;
    A_u_long buf_sizeLu;
    void* flat_dataPV; /* the host's, of buf_sizeLu bytes, to be filled */
} PF_ArbFlattenParams;
PF_LAYOUT(PF_ArbFlattenParams, 32, 8);
PF_AT(PF_ArbFlattenParams, arbH, 8);
PF_AT(PF_ArbFlattenParams, buf_sizeLu, 16);
PF_AT(PF_ArbFlattenParams, flat_dataPV, 24);

typedef struct PF_ArbUnflattenParams {
    void* refconPV;
    A_u_long buf_sizeLu;
    const void* flat_dataPV;
    PF_ArbitraryH* arbPH; /* receives a new handle */
} PF_ArbUnflattenParams;
PF_LAYOUT(PF_ArbUnflattenParams, 32, 8);
PF_AT(PF_ArbUnflattenParams, buf_sizeLu, 8);
PF_AT(PF_ArbUnflattenParams, flat_dataPV, 16);
PF_AT(PF_ArbUnflattenParams, arbPH, 24);

typedef struct PF_ArbInterpParams {
    void* refconPV;
    PF_ArbitraryH left_arbH;
    PF_ArbitraryH right_arbH;
    PF_FpLong tF;            /* 0 is left, 1 is right */
    PF_ArbitraryH* interpPH; /* receives a new handle */
} PF_ArbInterpParams;
PF_LAYOUT(PF_ArbInterpParams, 40, 8);
PF_AT(PF_ArbInterpParams, left_arbH, 8);
PF_AT(PF_ArbInterpParams, right_arbH, 16);
PF_AT(PF_ArbInterpParams, tF, 24);
PF_AT(PF_ArbInterpParams, interpPH, 32);

typedef struct PF_ArbCompareParams {
    void* refconPV;
    PF_ArbitraryH a_arbH;
    PF_ArbitraryH b_arbH;
    PF_ArbCompareResult* compareP; /* receives one of PF_ArbCompare */
} PF_ArbCompareParams;
PF_LAYOUT(PF_ArbCompareParams, 32, 8);
PF_AT(PF_ArbCompareParams, a_arbH, 8);
PF_AT(PF_ArbCompareParams, b_arbH, 16);
PF_AT(PF_ArbCompareParams, compareP, 24);

typedef struct PF_ArbPrintSizeParams {
    void* refconPV;
    PF_ArbitraryH arbH;
    A_u_long* print_sizePLu; /* receives the room that PRINT_FUNC needs */
} PF_ArbPrintSizeParams;
PF_LAYOUT(PF_ArbPrintSizeParams, 24, 8);
PF_AT(PF_ArbPrintSizeParams, arbH, 8);
PF_AT(PF_ArbPrintSizeParams, print_sizePLu, 16);

typedef struct PF_ArbPrintParams {
    void* refconPV;
    PF_ArbPrintFlags print_flags;
    PF_ArbitraryH arbH;
    A_u_long print_sizeLu;
    A_char* print_bufferPC; /* the host's, of print_sizeLu bytes, to be filled */
} PF_ArbPrintParams;
PF_LAYOUT(PF_ArbPrintParams, 40, 8);
PF_AT(PF_ArbPrintParams, print_flags, 8);
PF_AT(PF_ArbPrintParams, arbH, 16);
PF_AT(PF_ArbPrintParams, print_sizeLu, 24);
PF_AT(PF_ArbPrintParams, print_bufferPC, 32);

/* Text that the effect does not understand is answered with PF_Err_CANNOT_PARSE_KEYFRAME_TEXT. */
typedef struct PF_ArbScanParams {
    void* refconPV;
    const A_char* bufPC;
    A_u_long bytes_to_scanLu;
    PF_ArbitraryH* arbPH; /* receives a new handle */
} PF_ArbScanParams;
PF_LAYOUT(PF_ArbScanParams, 32, 8);
PF_AT(PF_ArbScanParams, bufPC, 8);
PF_AT(PF_ArbScanParams, bytes_to_scanLu, 16);
PF_AT(PF_ArbScanParams, arbPH, 24);

typedef struct PF_ArbParamsExtra {
    PF_FunctionSelector which_function; /* PF_Arbitrary */
    A_short id;                         /* that of the parameter's definition */
    A_short padding;
    union {
        PF_ArbNewParams new_func_params;
        PF_ArbDisposeParams dispose_func_params;
        PF_ArbCopyParams copy_func_params;
        PF_ArbFlatSizeParams flat_size_func_params;
        PF_ArbFlattenParams flatten_func_params;
        PF_ArbUnflattenParams unflatten_func_params;
        PF_ArbInterpParams interp_func_params;
        PF_ArbCompareParams compare_func_params;
        PF_ArbPrintSizeParams print_size_func_params;
        PF_ArbPrintParams print_func_params;
        PF_ArbScanParams scan_func_params;
    } u;
} PF_ArbParamsExtra;
PF_LAYOUT(PF_ArbParamsExtra, 48, 8);
PF_AT(PF_ArbParamsExtra, id, 4);
PF_AT(PF_ArbParamsExtra, padding, 6);
PF_AT(PF_ArbParamsExtra, u, 8);

#ifdef __cplusplus
}
#endif
