/*
 * The property list that describes an effect to its host: resource type 'PiPL', id 16000.
 * All integers are big-endian: version 0, count, then per property vendor, key, id 0, length, and the data
 * padded with zeros to a multiple of 4. Strings are Pascal strings: a length byte, then the characters.
 */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A four-character code as a number. */
#define PF_FOUR_CC(a, b, c, d) \
    (((A_u_long)(a) << 24) | ((A_u_long)(b) << 16) | ((A_u_long)(c) << 8) | (A_u_long)(d))

#define PiPL_RESOURCE_TYPE PF_FOUR_CC('P', 'i', 'P', 'L')
#define PiPL_RESOURCE_ID 16000
#define PiPL_LIST_VERSION 0

#define PiPL_VENDOR PF_FOUR_CC('8', 'B', 'I', 'M')
#define PiPL_KIND PF_FOUR_CC('k', 'i', 'n', 'd')              /* PiPL_KIND_EFFECT */
#define PiPL_NAME PF_FOUR_CC('n', 'a', 'm', 'e')              /* display name */
#define PiPL_CATEGORY PF_FOUR_CC('c', 'a', 't', 'g')          /* menu */
#define PiPL_MATCH_NAME PF_FOUR_CC('e', 'M', 'N', 'A')        /* permanent identity */
#define PiPL_ENTRY_MAC_INTEL PF_FOUR_CC('m', 'i', '6', '4')   /* entry point, Pascal string */
#define PiPL_ENTRY_MAC_ARM PF_FOUR_CC('m', 'a', '6', '4')     /* entry point, Pascal string */
#define PiPL_ENTRY_WINDOWS PF_FOUR_CC('8', '6', '6', '4')     /* entry point, zero-terminated */
#define PiPL_LIST_FORMAT PF_FOUR_CC('e', 'P', 'V', 'R')       /* two 16-bit: 2, 0 */
#define PiPL_INTERFACE_VERSION PF_FOUR_CC('e', 'S', 'V', 'R') /* two 16-bit: major, minor */
#define PiPL_EFFECT_VERSION PF_FOUR_CC('e', 'V', 'E', 'R')    /* 32-bit, see PF_VERSION */
#define PiPL_INFO_FLAGS PF_FOUR_CC('e', 'I', 'N', 'F')        /* 16-bit 0 */
#define PiPL_OUT_FLAGS PF_FOUR_CC('e', 'G', 'L', 'O')         /* 32-bit PF_OutFlags */
#define PiPL_OUT_FLAGS2 PF_FOUR_CC('e', 'G', 'L', '2')        /* 32-bit PF_OutFlags2 */
#define PiPL_RESERVED PF_FOUR_CC('a', 'e', 'F', 'L')          /* 32-bit 0 */

#define PiPL_KIND_EFFECT PF_FOUR_CC('e', 'F', 'K', 'T')

/* The packed version of an effect: major 0 to 127, the others 0 to 15, build 0 to 511. */
#define PF_VERSION(major, minor, bugfix, stage, build)                                                    \
    (((((A_u_long)(major)) >> 3 & 15U) << 26) | (((A_u_long)(major)&7U) << 19) |                          \
     (((A_u_long)(minor)&15U) << 15) | (((A_u_long)(bugfix)&15U) << 11) | (((A_u_long)(stage)&3U) << 9) | \
     ((A_u_long)(build)&511U))

enum { PF_Stage_DEVELOP = 0, PF_Stage_ALPHA = 1, PF_Stage_BETA = 2, PF_Stage_RELEASE = 3 };

/* The version of the interface that this header describes. */
enum { PF_INTERFACE_MAJOR = 13, PF_INTERFACE_MINOR = 29 };

#ifdef __cplusplus
}
#endif
