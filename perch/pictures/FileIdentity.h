// Which file a name stands for, however it is spelled and through however many links: two names of one file
// have the same identity.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace pictures {

struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;  // of the file on its device

    bool operator==(const FileIdentity&) const = default;
    bool operator<(const FileIdentity& other) const {
        return std::pair(device, number) < std::pair(other.device, other.number);
    }
};

// Absent where there is no such file.
std::optional<FileIdentity> identityOf(const std::filesystem::path& path);

}  // namespace pictures
