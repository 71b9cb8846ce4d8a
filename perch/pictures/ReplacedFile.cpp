#include "ReplacedFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

#include "FileBytes.h"
#include "PictureError.h"
#include "StartFolder.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuseBecauseOf(const fs::path& path, int error) {
    refuseToWrite(path, fmt::format("{}; check its folder and the room on its disk",
                                    std::generic_category().message(error)));
}

// What the last of a chain of links leads to; it need not exist.
fs::path targetOf(const fs::path& path) {
    constexpr int kMostLinks = 40;
    fs::path target = path;
    std::error_code error;
    for (int i = 0; i < kMostLinks; ++i) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) return target;
        target = folderOf(target) / next;
    }
    refuseToWrite(path, "it is a link that leads to itself; choose another name");
}

// The start of the names of temporary files for a file of this name, by the 64-bit FNV-1a hash: names may be
// as long as the file system lets them, and leave no room for more.
std::string prefixFor(const fs::path& target) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : target.filename().string())
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return fmt::format(".perch-{:016x}-", hash);
}

// Where a signal handler finds what it has to remove. A place is free while its pointer is null.
std::array<std::atomic<const char*>, 64> temporaryNames{};

TemporaryFileWatcher watcher{[](const std::string&) {}, [](const std::string&) {}};

// Tells of a temporary file for as long as it may exist.
class Announcement {
public:
    explicit Announcement(const std::string& name) : name(name) { watcher.appears(name); }
    ~Announcement() { watcher.isGone(name); }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

private:
    const std::string& name;
};

class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

// A locked, empty file beside the final one; removed with the object unless it has been renamed.
class TemporaryFile {
public:
    TemporaryFile(const fs::path& named, const fs::path& target)
        : path(folderOf(target) / (prefixFor(target) + fmt::format("{:08x}", std::random_device()()))),
          name(path.string()),
          announcement(name),
          descriptor(open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666)) {
        if (descriptor.number < 0) refuseBecauseOf(named, errno);
        enlist();
        if (flock(descriptor.number, LOCK_EX) == 0) return;
        const int error = errno;
        drop();
        refuseBecauseOf(named, error);
    }
    ~TemporaryFile() { drop(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int number() const { return descriptor.number; }

    bool isThere() const {
        struct stat status {};
        return fstat(descriptor.number, &status) == 0 && status.st_nlink > 0;
    }

    bool renameTo(const fs::path& target) {
        if (std::rename(name.c_str(), target.c_str()) != 0) return false;
        isRenamed = true;
        return true;
    }

private:
    void enlist() {
        for (std::atomic<const char*>& place : temporaryNames) {
            const char* none = nullptr;
            if (place.compare_exchange_strong(none, name.c_str())) return;
        }
    }

    void drop() {
        for (std::atomic<const char*>& place : temporaryNames) {
            const char* own = name.c_str();
            place.compare_exchange_strong(own, nullptr);
        }
        if (!isRenamed) unlink(name.c_str());
    }

    const fs::path path;
    const std::string name;
    const Announcement announcement;
    const Descriptor descriptor;
    bool isRenamed = false;
};

// Another run for the same name that tidies up takes one that is not locked yet for a file left behind.
std::unique_ptr<TemporaryFile> newTemporaryFile(const fs::path& named, const fs::path& target) {
    constexpr int kMostTries = 1000;
    for (int i = 0; i < kMostTries; ++i) {
        auto file = std::make_unique<TemporaryFile>(named, target);
        if (file->isThere()) return file;
    }
    refuseToWrite(named, "somebody removes what is written for it; choose another name");
}

bool writeAll(int file, std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

// Piece after piece to the disk itself, so that no flush takes long.
bool writeThrough(int file, std::span<const unsigned char> bytes, const std::function<void()>& checkpoint) {
    constexpr std::size_t kPiece = std::size_t{16} << 20;
    while (true) {
        if (checkpoint) checkpoint();
        const auto piece = bytes.first(std::min(kPiece, bytes.size()));
        if (!writeAll(file, piece)) return false;
        bytes = bytes.subspan(piece.size());
        if (bytes.empty()) return true;
        if (fdatasync(file) != 0) return false;
    }
}

// The owner first, as a change of it takes rights away.
bool takeOver(int file, const struct stat& older) {
    struct stat own {};
    if (fstat(file, &own) != 0) return false;
    const bool isSame = own.st_uid == older.st_uid && own.st_gid == older.st_gid;
    if (!isSame && fchown(file, older.st_uid, older.st_gid) != 0) return false;
    return fchmod(file, older.st_mode & 07777) == 0;
}

// Also for the super-user, whom no mode stops.
void requireReplaceable(const fs::path& path, const struct stat& older) {
    if (S_ISDIR(older.st_mode)) refuseToWrite(path, "a folder has this name; choose another");
    if (!S_ISREG(older.st_mode)) refuseToWrite(path, "it is not a file; choose another name");
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    if ((older.st_mode & kAnyWrite) == 0 || access(path.c_str(), W_OK) != 0) {
        refuseToWrite(path, "it is read-only; choose another name or change its mode");
    }
}

[[noreturn]] void refuseFolder(const fs::path& folder, const fs::path& firstFile,
                               const std::error_code& error) {
    refuseToWrite(firstFile,
                  fmt::format("there is no folder \"{}\" and it cannot be made ({}); create it first",
                              folder.string(), error.message()));
}

void makeFolder(const fs::path& folder, const fs::path& firstFile) {
    std::error_code error;
    if (fs::is_directory(folder, error)) return;
    if (!fs::create_directory(folder, error) && error) refuseFolder(folder, firstFile, error);
}

// Of a folder that is there, or else of the one that it would be made in.
void requireRights(const fs::path& folder, const fs::path& firstFile) {
    std::error_code error;
    const bool isThere = fs::exists(folder, error);
    if (isThere && !fs::is_directory(folder, error))
        refuseFolder(folder, firstFile, make_error_code(std::errc::file_exists));
    const fs::path changed = isThere ? folder : folderOf(folder);
    if (access(changed.c_str(), W_OK | X_OK) == 0) return;
    if (isThere) refuseBecauseOf(firstFile, errno);
    refuseFolder(folder, firstFile, {errno, std::generic_category()});
}

// Files of dead runs have lost their lock.
void removeIfLeftBehind(const fs::path& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (file.number >= 0 && flock(file.number, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
}

constexpr std::size_t kPrefixLength = 24;  // ".perch-", 16 digits, "-"

void removeLeftovers(const fs::path& folder, const std::set<std::string>& prefixes) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (prefixes.contains(entry.path().filename().string().substr(0, kPrefixLength)))
            removeIfLeftBehind(entry.path());
    }
}

struct Folder {
    fs::path firstFile;
    fs::path firstTarget;
    std::set<std::string> prefixes;  // of temporary files
};

// Of files that may be replaced.
std::map<fs::path, Folder> foldersOf(std::span<const fs::path> paths) {
    std::map<fs::path, Folder> folders;
    for (const fs::path& path : paths) {
        const fs::path target = targetOf(path);
        struct stat older {};
        if (stat(target.c_str(), &older) == 0) requireReplaceable(path, older);
        Folder& folder = folders.try_emplace(folderOf(target), Folder{path, target, {}}).first->second;
        folder.prefixes.insert(prefixFor(target));
    }
    return folders;
}

}  // namespace

void prepareToReplace(std::span<const fs::path> paths) {
    const std::map<fs::path, Folder> folders = foldersOf(paths);
    for (const auto& [path, folder] : folders)
        makeFolder(path, folder.firstFile);
    for (const auto& [path, folder] : folders) {
        removeLeftovers(path, folder.prefixes);
        newTemporaryFile(folder.firstFile, folder.firstTarget);
    }
}

void requireReplaceable(std::span<const fs::path> paths) {
    for (const auto& [path, folder] : foldersOf(paths))
        requireRights(path, folder.firstFile);
}

void replaceFile(const fs::path& path, std::span<const unsigned char> bytes,
                 const std::function<void()>& checkpoint) {
    const fs::path target = targetOf(placeOf(path));
    struct stat older {};
    const bool exists = stat(target.c_str(), &older) == 0;
    if (exists) requireReplaceable(path, older);
    const std::unique_ptr<TemporaryFile> temporary = newTemporaryFile(path, target);
    if (!writeThrough(temporary->number(), bytes, checkpoint)) refuseBecauseOf(path, errno);
    if (exists && !takeOver(temporary->number(), older)) {
        refuseToWrite(path, "it belongs to another user; choose another name");
    }
    if (fsync(temporary->number()) != 0 || !temporary->renameTo(target)) refuseBecauseOf(path, errno);
    // The name as well; a file system that cannot do that has done all it can.
    const Descriptor folder(open(folderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.number >= 0) fsync(folder.number);
}

void watchTemporaryFiles(const TemporaryFileWatcher& wanted) {
    watcher = wanted;
}

void removeTemporaryFiles() {
    for (const std::atomic<const char*>& place : temporaryNames) {
        if (const char* const name = place.load()) unlink(name);
    }
}

}  // namespace pictures
