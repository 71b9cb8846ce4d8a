#include "Call.h"

#include <algorithm>

namespace perch {

CommandResult resultOf(const Call& call) {
    const A_char* begin = call.out.return_msg;
    const A_char* end = std::find(begin, begin + sizeof call.out.return_msg, '\0');
    return {call.code, std::string(begin, end), call.out.out_flags, call.out.out_flags2};
}

}  // namespace perch
