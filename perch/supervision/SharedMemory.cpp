#include "SharedMemory.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

#include "Error.h"

namespace perch {
namespace {

void* mapShared(int descriptor) {
    void* const memory =
        mmap(nullptr, sizeof(Whereabouts), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    return memory != MAP_FAILED ? memory : nullptr;
}

}  // namespace

SharedMemory::SharedMemory() : descriptor(memfd_create("perch", 0)) {
    const bool isLarge = descriptor >= 0 && ftruncate(descriptor, sizeof(Whereabouts)) == 0;
    void* const mapped = isLarge ? mapShared(descriptor) : nullptr;
    if (mapped == nullptr) {
        const int reason = errno;
        if (descriptor >= 0) close(descriptor);
        throw Error(fmt::format("cannot share memory with a child: {}; --in-process does without one",
                                std::generic_category().message(reason)));
    }
    memory = new (mapped) Whereabouts;
    memory->supervisor = getpid();
}

SharedMemory::~SharedMemory() {
    munmap(memory, sizeof *memory);
    close(descriptor);
}

bool SharedMemory::adopt(int descriptor) {
    struct stat about {};
    if (fstat(descriptor, &about) != 0 || about.st_size != sizeof(Whereabouts)) return false;
    void* const mapped = mapShared(descriptor);
    if (mapped == nullptr) return false;
    close(descriptor);
    useWhereabouts(*std::launder(static_cast<Whereabouts*>(mapped)));
    return true;
}

}  // namespace perch
