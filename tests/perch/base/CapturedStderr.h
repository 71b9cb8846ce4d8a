// What this process prints on stderr, libraries included, for as long as the object lives.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace perch::test {

class CapturedStderr {
public:
    CapturedStderr() { dup2(fileno(file), STDERR_FILENO); }
    ~CapturedStderr() {
        dup2(before, STDERR_FILENO);
        close(before);
        std::fclose(file);
    }
    CapturedStderr(const CapturedStderr&) = delete;
    CapturedStderr& operator=(const CapturedStderr&) = delete;

    std::string text() const {
        std::string result;
        char part[256];
        for (ssize_t size = 0; (size = pread(fileno(file), part, sizeof part, offsetOf(result))) > 0;)
            result.append(part, static_cast<std::size_t>(size));
        return result;
    }

private:
    static off_t offsetOf(const std::string& read) { return static_cast<off_t>(read.size()); }

    std::FILE* const file = std::tmpfile();
    const int before = dup(STDERR_FILENO);
};

}  // namespace perch::test
