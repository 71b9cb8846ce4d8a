// Writes the effect's resources:
//   make-resources bundle CONTENTS-FOLDER NAME     for a bundle of macOS or Linux
//   make-resources windows FOLDER NAME             for the resource compiler of Windows

#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "ResourceFiles.h"

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

int main(int argc, char** argv) try {
    const std::string form = argc == 4 ? argv[1] : "";
    if (form == "bundle")
        WriteBundleResources(argv[2], argv[3]);
    else if (form == "windows")
        WriteWindowsResources(argv[2], argv[3]);
    else
        throw std::invalid_argument("usage: make-resources bundle|windows FOLDER NAME");
    return 0;
} catch (const std::exception& error) {
    std::cerr << "make-resources: " << error.what() << '\n';
    return 1;
}
