#include "FakeContext.h"

#include <algorithm>
#include <numeric>
#include <thread>

namespace {

void ThrowAt(int call, int failingCall, int code) {
    if (call == failingCall) throw code;
}

}  // namespace

void FakeContext::checkAbort() const {
    ++abortChecks;
    ThrowAt(abortChecks, abortFailure.call, abortFailure.code);
}

void FakeContext::progress(int i, int n, float base, float span) const {
    progressCalls.push_back({i, n, base, span});
    ThrowAt(static_cast<int>(progressCalls.size()), progressFailure.call, progressFailure.code);
}

int FakeContext::lockedHandles() const {
    return static_cast<int>(
        std::count_if(blocks.begin(), blocks.end(), [](const auto& block) { return block->locks > 0; }));
}

FakeContext::Block* FakeContext::find(char** handle, const char* operation) const {
    for (const auto& block : blocks) {
        if (&block->address == handle) return block.get();
    }
    handleFaults.push_back(std::string(operation) + ": not a live handle");
    return nullptr;
}

char** FakeContext::newHandle(std::size_t size) const {
    ThrowAt(++allocations, allocationFailure.call, allocationFailure.code);
    auto block = std::make_unique<Block>();
    block->bytes.resize(std::max<std::size_t>(size, 1));  // an empty block has an address too
    block->address = block->bytes.data();
    block->size = size;
    blocks.push_back(std::move(block));
    return &blocks.back()->address;
}

char** FakeContext::newLockedHandle(std::size_t size) const {
    char** const handle = newHandle(size);
    lockHandle(handle);
    return handle;
}

char* FakeContext::lockHandle(char** handle) const {
    Block* const block = find(handle, "lock");
    if (block == nullptr) return nullptr;
    ++block->locks;
    return block->address;
}

void FakeContext::unlockHandle(char** handle) const {
    Block* const block = find(handle, "unlock");
    if (block == nullptr) return;
    if (block->locks == 0) {
        handleFaults.emplace_back("unlock: not locked");
    } else {
        --block->locks;
    }
}

void FakeContext::disposeHandle(char** handle) const {
    const Block* const block = find(handle, "dispose");
    std::erase_if(blocks, [block](const auto& owned) { return owned.get() == block; });
}

std::size_t FakeContext::getHandleSize(char** handle) const {
    const Block* const block = find(handle, "size");
    return block == nullptr ? 0 : block->size;
}

void FakeContext::resizeHandle(std::size_t size, char*** handle) const {
    const Block* const block = find(*handle, "resize");
    if (block == nullptr) return;
    if (block->locks > 0) handleFaults.emplace_back("resize: locked");
    char** const moved = newHandle(size);
    std::copy_n(block->address, std::min(size, block->size), *moved);
    disposeHandle(*handle);
    *handle = moved;
}

int FakeContext::multiThread(int count, void* refcon,
                             int (*fn)(void* refcon, int thread, int i, int iterations)) const {
    if (multiThreadError != 0) return multiThreadError;
    lastIterations = !canThread ? 1 : count == -1 ? processors : count;
    std::vector<int> sequence = order;
    if (sequence.empty() || !canThread) {
        sequence.resize(static_cast<std::size_t>(lastIterations));
        std::iota(sequence.begin(), sequence.end(), 0);
    }

    std::vector<int> results(sequence.size());
    const auto run = [&](std::size_t n) {
        results[n] = fn(refcon, sequence[n], sequence[n], lastIterations);
    };
    {
        std::vector<std::jthread> threads;
        for (std::size_t n = 0; n < sequence.size(); ++n) {
            if (realThreads && sequence[n] != 0) threads.emplace_back(run, n);
        }
        for (std::size_t n = 0; n < sequence.size(); ++n) {
            if (!realThreads || sequence[n] == 0) run(n);
        }
    }
    const auto failed = std::find_if(results.begin(), results.end(), [](int result) { return result != 0; });
    return failed == results.end() ? 0 : *failed;
}
