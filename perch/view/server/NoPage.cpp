// In the place of the page's script where it was not built.
#include <string_view>

namespace perch {

std::string_view pageScript();

std::string_view pageScript() {
    return {};
}

}  // namespace perch
