/*
 * Checks that a structure has the host's layout: size, alignment and the offset of every member. The figures
 * hold on 64-bit targets, where LP64 and LLP64 agree; the checks are empty elsewhere.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define PF_STATIC_ASSERT static_assert
#define PF_ALIGNOF alignof
#else
#define PF_STATIC_ASSERT _Static_assert
#define PF_ALIGNOF _Alignof
#endif

#if UINTPTR_MAX > 0xFFFFFFFFU
#define PF_LAYOUT(type, size, alignment)                        \
    PF_STATIC_ASSERT(sizeof(type) == (size), "size of " #type); \
    PF_STATIC_ASSERT(PF_ALIGNOF(type) == (alignment), "alignment of " #type)
#define PF_AT(type, member, offset) \
    PF_STATIC_ASSERT(offsetof(type, member) == (offset), "offset of " #type "." #member)
#else
#define PF_LAYOUT(type, size, alignment) PF_STATIC_ASSERT(sizeof(type) > 0, "size of " #type)
#define PF_AT(type, member, offset) \
    PF_STATIC_ASSERT(offsetof(type, member) <= (offset), "offset of " #type "." #member)
#endif
