// How a job tells how far it is.
#pragma once

namespace perch {

enum class ProgressForm {
    Auto,    // a line that is written over on a terminal; elsewhere a line from time to time
    Lines,   // a line for each frame
    Json,    // the same as JSON on standard output
    OpenJd,  // on standard output what a scheduler of Open Job Description looks for
    None,
};

}  // namespace perch
