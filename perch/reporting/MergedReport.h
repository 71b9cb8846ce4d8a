// The reports of a job's tasks, joined to one.
#pragma once

#include <span>
#include <string>

#include "JobRecord.h"

namespace perch {

struct NamedRecord {
    std::string name;  // of its file
    JobRecord record;
};

// The state of joined reports where those of some shards are missing.
constexpr char kIncomplete[] = "incomplete";

// Of a frame that several tasks have, the one that is done counts, and of several such the first task's.
// The record is done where every frame is, and incomplete where reports are missing. Throws InputError, which
// names every conflict, where the tasks had other programs, effects or parameters, where a frame of two was
// made from different things, and where two frames were written to one file. `tasks` has one at least.
JobRecord mergedRecord(std::span<const NamedRecord> tasks);

}  // namespace perch
