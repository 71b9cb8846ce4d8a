// The folder in which the page may save presets, and nothing else.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace perch {

class SaveFolder {
public:
    // Throws Error where there is no such folder.
    explicit SaveFolder(const std::string& path);
    ~SaveFolder();
    SaveFolder(const SaveFolder&) = delete;
    SaveFolder& operator=(const SaveFolder&) = delete;

    // Replaces the file whole or not at all. Throws UsageError for what is not the plain name of a preset,
    // "look.json", or what is there and no plain file, a link above all; Error where it cannot be written.
    // Any thread.
    void save(const std::string& name, std::string_view text) const;

private:
    const int folder;
    mutable std::mutex saving;
};

}  // namespace perch
