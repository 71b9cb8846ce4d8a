// The program's own words: results on standard output, everything else on standard error; and what it is told
// on standard input.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace perch {

// The text on one line, without what a terminal would obey: control characters become question marks.
std::string printable(std::string_view text);

// Writes "perch: SENTENCE" and a line break to standard error. Never fails: nobody could be told.
void say(std::string_view sentence) noexcept;
// The same without the name and the line break, as it is.
void sayAsItIs(std::string_view text) noexcept;

// From now on what is said goes to the end of this file as well, each line with its time. The file's folder
// is made where it is the only one missing. Throws OutputError where the file cannot be written, UsageError
// where it is there and no log.
void keepLog(const std::filesystem::path& path);
// To the log alone.
void sayInLog(std::string_view sentence) noexcept;

// Writes a result to standard output, at once. Throws Error where that cannot be done.
void printResult(std::string_view text);

// Opens what nobody has opened of the standard descriptors, so that no file takes their place; writing to
// them fails.
void occupyStandardDescriptors();

// Keeps the standard streams for the program alone: what the effect's code, which is to be loaded, prints to
// standard output goes to standard error from now on, and what it reads is empty.
void keepStreamsApart();

// Where the program's standard input is read.
int inputDescriptor();

}  // namespace perch
