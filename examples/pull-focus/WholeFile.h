// Files that are whole or not there: found cut short when read, never left half written.
#pragma once

#include <span>
#include <string>

// The bytes of a file. Throws std::runtime_error, one sentence that names the file and the mend.
std::string ReadWhole(const std::string& path);

// True for the bytes of a PNG or JPEG file that lack its end. Decoders are lenient there: a JPEG goes on in
// grey. Bytes of other kinds are never found cut short.
bool IsCutShort(const std::string& bytes);

// Writes the bytes under another name in the same folder, then renames, so that `path` is the old file or the
// new one, whatever fails. Throws as ReadWhole does.
void WriteWhole(const std::string& path, std::span<const unsigned char> bytes);
