// The bytes of a colour profile as small as it can be.
#pragma once

#include <string>

namespace perch::test {

// A header, and a text for its one tag, at 144.
inline std::string smallProfile() {
    std::string profile(160, '\0');
    profile[3] = static_cast<char>(profile.size());
    profile[8] = 2;  // version
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    profile.replace(68, 12, std::string("\0\0\xF6\xD6\0\1\0\0\0\0\xD3\x2D", 12));  // the white of D50
    profile.replace(128, 16, std::string("\0\0\0\1cprt\0\0\0\x90\0\0\0\x10", 16));
    profile.replace(144, 4, "text");
    profile.replace(152, 4, "free");
    return profile;
}

}  // namespace perch::test
