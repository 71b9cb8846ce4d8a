// What this process prints on stderr, libraries included, for as long as the object lives. What a sanitizer
// reports comes out as ever.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace perch::test {

class CapturedStderr {
public:
    CapturedStderr() {
        reportAt(before);
        dup2(fileno(file), STDERR_FILENO);
    }
    ~CapturedStderr() {
        dup2(before, STDERR_FILENO);
        reportAt(STDERR_FILENO);
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
    static void reportAt([[maybe_unused]] std::intptr_t descriptor) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        __sanitizer_set_report_fd(reinterpret_cast<void*>(descriptor));
#endif
    }
    static off_t offsetOf(const std::string& read) {
        return static_cast<off_t>(read.size());
    }

    std::FILE* const file = std::tmpfile();
    const int before = dup(STDERR_FILENO);
};

}  // namespace perch::test
