// The values that the writer for a big-endian machine puts into its stream, and the reader here expects.
#pragma once

#include <cstdint>

namespace bigendian {

inline constexpr bool kBool = true;
inline constexpr signed char kSignedChar = -3;
inline constexpr unsigned char kUnsignedChar = 253;
inline constexpr short kShort = -12345;
inline constexpr unsigned short kUnsignedShort = 54321;
inline constexpr int kInt = -123456789;
inline constexpr unsigned int kUnsignedInt = 0xDEADBEEF;
inline constexpr long long kLongLong = -0x0123456789ABCDEF;
inline constexpr unsigned long long kUnsignedLongLong = 0xFEDCBA9876543210;
inline constexpr float kFloat = -0.15625F;
inline constexpr double kDouble = 3.141592653589793;
inline constexpr unsigned char kPixel[4] = {255, 1, 2, 3};

}  // namespace bigendian
