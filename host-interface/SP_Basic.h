/* The basic suite: how an effect obtains the other function tables of the host. */
#pragma once

#include <stddef.h>

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef A_long SPErr;
#ifdef _WIN32
typedef A_long SPBoolean;
#else
typedef A_u_char SPBoolean;
#endif

typedef struct SPBasicSuite {
    /* [main-thread] The table stays valid until it has been released as often as acquired. Non-zero when the
     * host lacks the suite at that version; *suite is then undefined. */
    SPErr (*AcquireSuite)(const char* name, A_long version, const void** suite);
    /* [main-thread] */
    SPErr (*ReleaseSuite)(const char* name, A_long version);
    /* [any-thread] Compares two names. */
    SPBoolean (*IsEqual)(const char* token1, const char* token2);
    /* [main-thread] Plain memory of the host, given back with FreeBlock. */
    SPErr (*AllocateBlock)(size_t size, void** block);
    SPErr (*FreeBlock)(void* block);
    SPErr (*ReallocateBlock)(void* block, size_t newSize, void** newblock);
    /* [any-thread] Always an error. */
    SPErr (*Undefined)(void);
} SPBasicSuite;
PF_LAYOUT(SPBasicSuite, 56, 8);
PF_AT(SPBasicSuite, ReleaseSuite, 8);
PF_AT(SPBasicSuite, IsEqual, 16);
PF_AT(SPBasicSuite, AllocateBlock, 24);
PF_AT(SPBasicSuite, FreeBlock, 32);
PF_AT(SPBasicSuite, ReallocateBlock, 40);
PF_AT(SPBasicSuite, Undefined, 48);

#ifdef __cplusplus
}
#endif
