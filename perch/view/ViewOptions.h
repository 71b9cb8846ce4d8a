// What `perch view` is asked for beside what it shows.
#pragma once

#include <string>
#include <vector>

namespace perch {

// The first argument of a process that is a session, followed by the socket that it shares with the server.
constexpr char kSessionOption[] = "--session=";

struct ViewOptions {
    int port = 0;  // 0: of the system's choice
    bool opensBrowser = true;
    std::string saveFolder;              // empty: presets are downloaded
    std::vector<std::string> arguments;  // of the session
};

// Serves the page until a signal asks for the end; the exit status. Throws Error. A program either links the
// server or the loader, which finds it in a module.
int serveView(const ViewOptions& options);

}  // namespace perch
