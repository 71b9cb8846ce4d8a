// Which file a name stands for, however it is spelled and through however many links: two names of one file
// have the same identity.
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace pictures {

struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;  // of the file on its device

    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

// Absent where there is no such file.
std::optional<FileIdentity> identityOf(const std::filesystem::path& path);

}  // namespace pictures
