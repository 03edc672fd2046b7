// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "platform/windows.h"

namespace {

using Clock = std::chrono::steady_clock;

DWORD CALLBACK AddOne(LPVOID counter) {
    ++*static_cast<std::atomic<int>*>(counter);
    return 0;
}

TEST(Events, ManualResetStaysSetAndAutomaticLetsOneThrough) {
    const HANDLE manual = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE automatic = CreateEventA(nullptr, FALSE, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(SetEvent(manual));
    EXPECT_EQ(WaitForSingleObject(manual, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(automatic, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(automatic, 0), WAIT_TIMEOUT);
    CloseHandle(manual);
    CloseHandle(automatic);
}

TEST(Events, WaitTakesAsLongAsItsLimit) {
    const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const auto start = Clock::now();
    EXPECT_EQ(WaitForSingleObject(event, 50), WAIT_TIMEOUT);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(50));
    CloseHandle(event);
}

TEST(Threads, WaitSeesWhatTheThreadDid) {
    std::atomic<int> counter = 0;
    for (int i = 0; i < 100; ++i) {
        const HANDLE thread = CreateThread(nullptr, 0, AddOne, &counter, 0, nullptr);
        ASSERT_NE(thread, nullptr);
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
        EXPECT_EQ(counter, i + 1);
        EXPECT_TRUE(CloseHandle(thread));
    }
}

TEST(Threads, GoOnAfterTheirHandleIsClosed) {
    static HANDLE proceed;
    static HANDLE ended;
    proceed = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    ended = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const auto run = [](LPVOID) -> DWORD {
        WaitForSingleObject(proceed, INFINITE);
        SetEvent(ended);
        return 0;
    };
    const HANDLE thread = CreateThread(nullptr, 0, run, nullptr, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, 1), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(thread));
    SetEvent(proceed);
    EXPECT_EQ(WaitForSingleObject(ended, INFINITE), WAIT_OBJECT_0);
    CloseHandle(proceed);
    CloseHandle(ended);
}

}  // namespace
