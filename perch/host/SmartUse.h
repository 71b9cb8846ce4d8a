// Which way an effect renders that knows two.
#pragma once

namespace perch {

// The commands of smart rendering, or RENDER; Auto takes the first only where RENDER leaves the frame as it
// was.
enum class SmartUse { Auto, On, Off };

}  // namespace perch
