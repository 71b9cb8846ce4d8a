#include "Mappings.h"

#include <sys/mman.h>

#include <mutex>

namespace mappings {

int made = 0;
std::ptrdiff_t bytes = 0;

namespace {

std::mutex mutex;  // arrays are made on any thread

}  // namespace

}  // namespace mappings

// Names that the linker's --wrap gives.
extern "C" {

void* __real_mmap(void* address, std::size_t size, int protection, int flags, int file, off_t offset);
int __real_munmap(void* address, std::size_t size);

void* __wrap_mmap(void* address, std::size_t size, int protection, int flags, int file, off_t offset) {
    void* const mapping = __real_mmap(address, size, protection, flags, file, offset);
    if (mapping != MAP_FAILED) {
        const std::lock_guard lock(mappings::mutex);
        ++mappings::made;
        mappings::bytes += static_cast<std::ptrdiff_t>(size);
    }
    return mapping;
}

int __wrap_munmap(void* address, std::size_t size) {
    const int error = __real_munmap(address, size);
    if (error == 0) {
        const std::lock_guard lock(mappings::mutex);
        mappings::bytes -= static_cast<std::ptrdiff_t>(size);
    }
    return error;
}

}  // extern "C"
