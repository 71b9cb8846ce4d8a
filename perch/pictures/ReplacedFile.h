// Files that are replaced whole or not at all.
//
//     .perch-0123456789abcdef-89abcdef   beside the file: its name's hash, and a number of this write
//       created -> locked -> written -> flushed to disk -> given mode and owner -> renamed
//
// Whoever is killed in between leaves the temporary file, without its lock. The next run for the same name
// removes it, and leaves alone those of runs that are under way. Links are followed: what they lead to is
// replaced.
//
// Failures are PictureError. Any thread.
#pragma once

#include <filesystem>
#include <functional>
#include <span>

#include "TemporaryFileWatcher.h"

namespace pictures {

// To be called once for the outputs of a job, before its work: makes their folders where the parent exists,
// throws where a folder or a file cannot be written, and removes what earlier runs for the same names have
// left.
void prepareToReplace(std::span<const std::filesystem::path> paths);

// Throws where that would, as far as it can be told without a change.
void requireReplaceable(std::span<const std::filesystem::path> paths);

// A file that is there keeps its mode and owner. What `checkpoint` throws, which is called again and again
// until all bytes are on the disk, leaves it as it is.
void replaceFile(const std::filesystem::path& path, std::span<const unsigned char> bytes,
                 const std::function<void()>& checkpoint = {});

// Removes the temporary files of writes under way, which then fail. Can be called from a signal handler.
void removeTemporaryFiles();

// To be called before the first write.
void watchTemporaryFiles(const TemporaryFileWatcher& watcher);

}  // namespace pictures
