// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/windows.h"

namespace {

// The system reuses the value of a closed handle; these calls never do, so that misuse shows.
TEST(Handles, FailOnceClosedAndNeverMeanAnotherObject) {
    const HANDLE closed = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    EXPECT_TRUE(CloseHandle(closed));
    const HANDLE next = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    EXPECT_FALSE(SetEvent(closed));
    EXPECT_FALSE(CloseHandle(closed));
    EXPECT_EQ(WaitForSingleObject(closed, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForSingleObject(next, 0), WAIT_TIMEOUT);
    EXPECT_FALSE(CloseHandle(nullptr));
    CloseHandle(next);
}

}  // namespace
