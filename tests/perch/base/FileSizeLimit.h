// Files may grow to so many bytes while the object lives, as on a disk that is nearly full.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace perch::test {

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before{};
    void (*const handler)(int);
};

}  // namespace perch::test
