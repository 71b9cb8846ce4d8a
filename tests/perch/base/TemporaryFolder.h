// A folder of its own for a test, gone with the object.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace perch::test {

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "perch-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
        path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path / name; }

    std::filesystem::path path;
};

}  // namespace perch::test
