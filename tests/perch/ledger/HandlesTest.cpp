#include "Handles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "PF_Values.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> lines(const Ledger& ledger) {
    std::vector<std::string> texts;
    for (const Finding& finding : ledger.findings())
        texts.push_back(describe(finding));
    return texts;
}

struct HandlesTest : testing::Test {
    Ledger ledger{true};
    HandleTable handles{ledger};

    HandlesTest() { ledger.enterCommand("RENDER"); }
};

TEST_F(HandlesTest, HandleIsTheAddressOfItsDataLockedOrNot) {
    const PF_Handle handle = handles.allocate(16);
    ASSERT_NE(handle, nullptr);
    std::memset(*handle, 7, 16);
    EXPECT_EQ(handles.lock(handle), *handle);
    EXPECT_EQ(handles.size(handle), 16U);
    handles.unlock(handle);
    handles.dispose(handle);
    handles.reportLeaks();
    EXPECT_THAT(lines(ledger), IsEmpty());
}

TEST_F(HandlesTest, ResizeKeepsTheBytesThatFit) {
    const PF_Handle handle = handles.allocate(4);
    std::memcpy(*handle, "abcd", 4);
    EXPECT_EQ(handles.resize(6, handle), PF_Err_NONE);
    EXPECT_EQ(std::memcmp(*handle, "abcd", 4), 0);
    EXPECT_EQ(handles.resize(2, handle), PF_Err_NONE);
    EXPECT_EQ(handles.size(handle), 2U);
    EXPECT_EQ(std::memcmp(*handle, "ab", 2), 0);
    handles.dispose(handle);
}

TEST_F(HandlesTest, EmptyHandleHasAnAddress) {
    const PF_Handle handle = handles.allocate(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(*handle, nullptr);
    EXPECT_EQ(handles.size(handle), 0U);
    handles.dispose(handle);
}

TEST_F(HandlesTest, SizeBeyondMemoryIsRefused) {
    EXPECT_EQ(handles.allocate(~A_u_longlong{0}), nullptr);
    const PF_Handle handle = handles.allocate(3);
    EXPECT_EQ(handles.resize(~A_u_longlong{0} - 8, handle), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(handles.size(handle), 3U);
    handles.dispose(handle);
}

TEST_F(HandlesTest, MisuseIsNamed) {
    A_char* stray = nullptr;
    handles.dispose(&stray);
    EXPECT_EQ(handles.lock(&stray), nullptr);
    EXPECT_EQ(handles.size(nullptr), 0U);
    handles.dispose(nullptr);
    const PF_Handle handle = handles.allocate(1);
    handles.unlock(handle);
    handles.dispose(handle);
    handles.dispose(handle);
    EXPECT_THAT(
        lines(ledger),
        ElementsAre(
            "RENDER, host_dispose_handle: the handle is not one of the host's",
            "RENDER, host_lock_handle: the handle is not one of the host's",
            "RENDER, host_get_handle_size: the handle is null",
            "note: RENDER, host_dispose_handle: the handle is null",
            "RENDER, host_unlock_handle: the handle is not locked; unlock it as often as it was locked",
            "RENDER, host_dispose_handle: the handle has been disposed before"));
}

TEST_F(HandlesTest, LeakIsNamedWithItsLocks) {
    handles.lock(handles.allocate(24));
    ledger.enterCommand("GLOBAL_SETDOWN");
    handles.reportLeaks();
    EXPECT_THAT(lines(ledger), ElementsAre("GLOBAL_SETDOWN, host_new_handle: a handle of 24 bytes was never "
                                           "disposed and is locked 1 times"));
}

TEST_F(HandlesTest, WritingBesideABlockIsFound) {
    const PF_Handle handle = handles.allocate(5);
    (*handle)[5] = 1;
    (*handle)[-1] = 1;
    handles.dispose(handle);
    EXPECT_THAT(lines(ledger),
                ElementsAre("RENDER, host_dispose_handle: bytes before a block of 5 bytes were written",
                            "RENDER, host_dispose_handle: bytes after a block of 5 bytes were written"));
}

TEST_F(HandlesTest, WritingBesideABlockIsFoundBeforeAResizeMovesIt) {
    const PF_Handle handle = handles.allocate(5);
    (*handle)[5] = 1;
    (*handle)[-1] = 1;
    handles.resize(6, handle);
    handles.dispose(handle);
    EXPECT_THAT(lines(ledger),
                ElementsAre("RENDER, host_resize_handle: bytes before a block of 5 bytes were written",
                            "RENDER, host_resize_handle: bytes after a block of 5 bytes were written"));
}

TEST(LenientHandlesTest, MisuseIsPutUpWith) {
    Ledger ledger{false};
    HandleTable handles{ledger};
    const PF_Handle handle = handles.allocate(1);
    handles.dispose(handle);
    handles.dispose(handle);
    handles.unlock(handle);
    EXPECT_EQ(handles.lock(handle), nullptr);
    handles.reportLeaks();
    EXPECT_THAT(ledger.findings(), IsEmpty());
}

}  // namespace
}  // namespace perch::test
