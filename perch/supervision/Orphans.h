// The processes that an effect starts and leaves behind, in whatever group or session: this process becomes
// their parent when the worker ends, and ends them.
#pragma once

#include <sys/types.h>

#include <set>

namespace perch {

class Orphans {
public:
    // Before the worker is started; the children that there are by then are others'.
    Orphans();

    // After the worker has ended and has been waited for.
    void end() const;

private:
    const std::set<pid_t> others;
};

}  // namespace perch
