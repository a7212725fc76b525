#include "base/handle.h"

#include <gtest/gtest.h>

#include <system_error>

#include "base/file.h"
#include "temporary_folder.h"

namespace base {
namespace {

class Handle : public testing::Test {
protected:
    OwnedHandle Open() { return TheFileSystem().OpenToAppend(m_folder / "file"); }

    const test_support::TemporaryFolder m_folder;
};

#ifdef _WIN32
std::intptr_t ValueOf(const OwnedHandle& handle) { return reinterpret_cast<std::intptr_t>(handle.Handle()); }
OwnedHandle HandleOf(std::intptr_t value) { return OwnedHandle(reinterpret_cast<void*>(value)); }
#else
std::intptr_t ValueOf(const OwnedHandle& handle) { return handle.Descriptor(); }
OwnedHandle HandleOf(std::intptr_t value) { return OwnedHandle(static_cast<int>(value)); }
#endif

// Asked from the system.
bool IsOpen(std::intptr_t value) {
    OwnedHandle handle = HandleOf(value);
    bool isOpen = true;
    try {
        TheFileSystem().Size(handle, "handle");
    } catch (const std::system_error&) {
        isOpen = false;
    }
    handle.ReleaseDescriptor();
    return isOpen;
}

TEST_F(Handle, IsClosedWithItsOwner) {
    std::intptr_t value = 0;
    {
        const OwnedHandle handle = Open();
        value = ValueOf(handle);
        EXPECT_TRUE(handle);
        EXPECT_TRUE(IsOpen(value));
    }
    EXPECT_FALSE(IsOpen(value));
}

TEST_F(Handle, MovesToAnotherOwner) {
    OwnedHandle first = Open();
    const std::intptr_t value = ValueOf(first);
    OwnedHandle second = std::move(first);
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): empty by contract
    EXPECT_EQ(ValueOf(second), value);
    OwnedHandle third = Open();
    const std::intptr_t old = ValueOf(third);
    third = std::move(second);
    EXPECT_FALSE(IsOpen(old));
    EXPECT_TRUE(IsOpen(value));
}

TEST_F(Handle, CanBeClosedEarlyAndOnce) {
    OwnedHandle handle = Open();
    const std::intptr_t value = ValueOf(handle);
    EXPECT_TRUE(handle.Close());
    EXPECT_FALSE(handle);
    EXPECT_FALSE(IsOpen(value));
    EXPECT_TRUE(handle.Close());
}

TEST_F(Handle, CanBeGivenAway) {
    OwnedHandle handle = Open();
    const std::intptr_t value = ValueOf(handle);
    EXPECT_NE(handle.ReleaseDescriptor(), -1);
    EXPECT_FALSE(handle);
    EXPECT_TRUE(IsOpen(value));
    EXPECT_TRUE(HandleOf(value).Close());
}

TEST_F(Handle, IsNoneForWhatTheSystemAnswersWhenItOpenedNothing) {
    EXPECT_FALSE(OwnedHandle());
    EXPECT_FALSE(OwnedHandle(-1));
    EXPECT_FALSE(OwnedHandle(static_cast<void*>(nullptr)));
    EXPECT_FALSE(OwnedHandle(reinterpret_cast<void*>(std::intptr_t{-1})));
    EXPECT_TRUE(OwnedHandle().Close());
    EXPECT_EQ(OwnedHandle().Handle(), nullptr);
}

}  // namespace
}  // namespace base
