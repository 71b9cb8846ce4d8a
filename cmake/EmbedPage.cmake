# Run by the build: writes a source with the page's script in it. SCRIPT is the script, OUTPUT the source.
file(READ "${SCRIPT}" bytes HEX)
string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include <string_view>
namespace perch {
std::string_view pageScript();
namespace {
constexpr unsigned char kBytes[] = {
${bytes}0};
}
std::string_view pageScript() { return {reinterpret_cast<const char*>(kBytes), sizeof kBytes - 1}; }
}
")
