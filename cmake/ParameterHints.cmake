# kestrel_parameter_hints(GUIDE SOURCE): writes a source with the rows of the guide's table of parameters, their names and what
# they do, again whenever the guide has changed.
function(kestrel_parameter_hints guide source)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${guide}")
  file(READ "${guide}" text)
  string(REGEX REPLACE "^.*\n\\| parameter \\| does [^\n]*\n[^\n]*\n" "" text "${text}")
  string(REGEX REPLACE "\n\n.*$" "\n" text "${text}")
  string(REGEX REPLACE "\\| ([^|\n]+) \\| ([^|\n]+) \\|\n" "    {\"\\1\", \"\\2\"},\n" rows "${text}")
  if(NOT rows MATCHES "^(    {\"[^\"\n]+\", \"[^\"\n]+\"},\n)+$")
    message(FATAL_ERROR "${guide} has no table of the effect's parameters in rows of two cells without quotation marks")
  endif()
  file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT "#include \"ParameterHints.h\"

namespace perch {
namespace {

constexpr ParameterHint kHints[] = {
${rows}};

}  // namespace

std::span<const ParameterHint> parameterHints() {
    return kHints;
}

}  // namespace perch
")
endfunction()
