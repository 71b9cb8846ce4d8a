#include "PixelMemory.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>
#include <map>
#include <mutex>

#include "PixelAccess.h"

#if defined(__unix__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace perch {
namespace {

using Address = std::uintptr_t;

struct Range {
    Address begin = 0;
    Address end = 0;

    bool contains(const Range& other) const { return begin <= other.begin && other.end <= end; }
};

class Registry {
public:
    void add(Range range) {
        const std::lock_guard lock(mutex);
        ends[range.begin] = range.end;
    }
    void remove(Address begin) {
        const std::lock_guard lock(mutex);
        ends.erase(begin);
        ++removals;
    }
    // The range that the address is in; empty where there is none.
    Range find(Address address) {
        const std::lock_guard lock(mutex);
        const auto next = ends.upper_bound(address);
        if (next == ends.begin()) return {};
        const auto& [begin, end] = *std::prev(next);
        return address < end ? Range{begin, end} : Range{};
    }
    // A range that was found stays as it is while this number does.
    std::uint64_t removalCount() const { return removals.load(std::memory_order_acquire); }

private:
    std::mutex mutex;
    std::map<Address, Address> ends;  // by begin
    std::atomic<std::uint64_t> removals{0};
};

// Never destroyed: worlds may outlive whatever is destroyed at the end of the program.
Registry& registry() {
    static Registry& all = *new Registry;
    return all;
}

// Samples are taken pixel by pixel, mostly from one world: its memory is not looked up again.
Range knownRangeOf(Address address) {
    struct Last {
        Range range;
        std::uint64_t removalCount = 0;
    };
    thread_local Last last;
    const std::uint64_t removalCount = registry().removalCount();
    const bool isLast =
        last.removalCount == removalCount && last.range.begin <= address && address < last.range.end;
    if (!isLast) last = {registry().find(address), removalCount};
    return last.range;
}

bool isMapped([[maybe_unused]] const Range& range) {
#if defined(__unix__)
    const auto page = static_cast<Address>(sysconf(_SC_PAGESIZE));
    const Address begin = range.begin / page * page;
    // Starts no writing of what is no file's, and fails where a page is missing.
    return msync(reinterpret_cast<void*>(begin), range.end - begin, MS_ASYNC) == 0;
#else
    return true;
#endif
}

constexpr char kIsNotThere[] = "a world's pixels are not in memory";

// The bytes from the first to the last pixel, wherever the first row is; false where there are no such
// addresses.
bool extentOf(const PF_EffectWorld& world, Range& extent) {
    const std::int64_t rows = std::int64_t{world.rowbytes} * (world.height - 1);
    const std::int64_t before = std::max<std::int64_t>(-rows, 0);
    const std::int64_t after =
        std::max<std::int64_t>(rows, 0) + std::int64_t{world.width} * pixelSize(depthOf(world));
    const auto data = reinterpret_cast<Address>(world.data);
    constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<Address>::max());
    if (static_cast<std::uint64_t>(before) > data || static_cast<std::uint64_t>(after) > kMost - data)
        return false;
    extent = {data - static_cast<Address>(before), data + static_cast<Address>(after)};
    return true;
}

bool isAligned(const PF_EffectWorld& world) {
    const auto channelSize = static_cast<Address>(pixelSize(depthOf(world)) / 4);
    const auto row = static_cast<Address>(static_cast<std::uint32_t>(world.rowbytes));
    return reinterpret_cast<Address>(world.data) % channelSize == 0 && row % channelSize == 0;
}

}  // namespace

void addPixelMemory(const void* begin, std::size_t size) {
    const auto address = reinterpret_cast<Address>(begin);
    registry().add({address, address + size});
}

void removePixelMemory(const void* begin) {
    registry().remove(reinterpret_cast<Address>(begin));
}

const char* flawOf(const PF_EffectWorld& world) {
    if (lacksPixels(world)) return "a world has a size and no pixels";
    if (!hasPixels(world)) return nullptr;
    if (!isAligned(world)) return "a world's rows are not aligned for its pixels";
    Range extent;
    if (!extentOf(world, extent)) return kIsNotThere;
    const Range known = knownRangeOf(reinterpret_cast<Address>(world.data));
    if (known.begin != 0)
        return known.contains(extent) ? nullptr : "a world's record extends past the memory of its pixels";
    return isMapped(extent) ? nullptr : kIsNotThere;
}

const char* flawOf(const PF_EffectWorld* world) {
    if (world == nullptr) return "a world is null";
    return isInMemory(world) ? flawOf(*world) : "a world's record is not in memory";
}

bool isInMemory(const PF_EffectWorld* world) {
    const auto record = reinterpret_cast<Address>(world);
    return world != nullptr && record % alignof(PF_EffectWorld) == 0 &&
           record <= UINTPTR_MAX - sizeof *world && isMapped({record, record + sizeof *world});
}

}  // namespace perch
