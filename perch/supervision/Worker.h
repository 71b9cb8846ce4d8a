// The child that does the work of a command, where the effect's code runs.
#pragma once

#include <string>
#include <vector>

namespace perch {

// The first argument of a worker, followed by the descriptor that it shares with its parent.
constexpr char kWorkerOption[] = "--worker=";

// Has the worker read the program's standard input.
constexpr char kFramesFromOption[] = "--frames-from";

// Prepares this process, which the parent has started as its worker. False where nobody has.
bool becomeWorker(const std::string& option);

bool isWorker();

// Ends the worker, the only way that counts as an end. `sentence` is empty where everything has been told.
[[noreturn]] void finishWork(int status, const std::string& sentence);

}  // namespace perch
