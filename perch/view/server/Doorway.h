// A file that leads a browser to the page. The page's address has the token in it, and what a program is
// started with every user of the machine can read; the file only its owner can.
#pragma once

#include <filesystem>
#include <string>

namespace perch {

class Doorway {
public:
    // In the user's folder for what lasts as long as a session, or the one for temporary files. Throws Error.
    explicit Doorway(const std::string& address);
    ~Doorway();  // removes the file
    Doorway(const Doorway&) = delete;
    Doorway& operator=(const Doorway&) = delete;

    const std::filesystem::path& file() const { return path; }

private:
    std::filesystem::path path;
};

// A page that leads on to the address at once.
std::string pageLeadingTo(const std::string& address);

}  // namespace perch
