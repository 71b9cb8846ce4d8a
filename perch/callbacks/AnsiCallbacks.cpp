// The C library's functions, which effects reach through the host.
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "Callbacks.h"

namespace perch {
namespace {

// The caller provides enough room, as with the C function.
__attribute__((format(printf, 2, 3))) int printText(A_char* text, const A_char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsprintf(text, format, arguments);
    va_end(arguments);
    return length;
}

}  // namespace

PF_ANSICallbacksBlock ansiCallbacks() {
    PF_ANSICallbacksBlock table{};
    table.atan = std::atan;
    table.atan2 = std::atan2;
    table.ceil = std::ceil;
    table.cos = std::cos;
    table.exp = std::exp;
    table.fabs = std::fabs;
    table.floor = std::floor;
    table.fmod = std::fmod;
    table.hypot = std::hypot;
    table.log = std::log;
    table.log10 = std::log10;
    table.pow = std::pow;
    table.sin = std::sin;
    table.sqrt = std::sqrt;
    table.tan = std::tan;
    table.sprintf = printText;
    table.strcpy = std::strcpy;
    table.asin = std::asin;
    table.acos = std::acos;
    return table;
}

}  // namespace perch
