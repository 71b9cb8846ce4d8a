// A parameter in the terms that a user is shown.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PF_Params.h"

namespace perch {

// A parameter as the effect declared it; everything is copied, nothing points into the effect.
struct Parameter {
    PF_ParamIndex index = 0;         // 1 and up; 0 is the input layer and is not listed
    std::string name;                // "Focal Point"
    std::string typeName;            // "float slider"
    PF_ParamDef definition{};        // as declared; its label pointers are null
    std::vector<std::string> items;  // of a popup, counted from 1 by the effect
    std::string label;               // beside a check box or on a button
    int depth = 0;                   // groups around it; of a group's start and end as well

    // Numbers in the unit of the control: 16.16 values are converted. Absent where the type has none.
    struct Range {
        double minimum = 0.0;
        double maximum = 0.0;
        bool operator==(const Range&) const = default;
    };
    std::optional<Range> validRange;
    std::optional<Range> sliderRange;
    std::optional<double> defaultNumber;
    std::string printedDefault;  // by the effect, of a value that only it understands
    int precision = 0;           // digits shown after the point
    bool isPercent = false;
};

bool isLayer(const Parameter& parameter);
bool isCheckBox(const Parameter& parameter);
// Whether a layer parameter stands for the effect's own layer until the user chooses another.
bool isOfThisLayer(const Parameter& parameter);
// Whether an item of a popup is a line between others, which has a number and is not a value.
bool isSeparator(const std::string& item);
// Sets how deep in groups each parameter lies.
void nestInGroups(std::vector<Parameter>& parameters);

// Throws Error when the definition is of a type that the interface does not have.
Parameter describeParameter(const PF_ParamDef& definition);

}  // namespace perch
