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

struct Gates {
    HANDLE proceed = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE ended = CreateEventA(nullptr, TRUE, FALSE, nullptr);
};

DWORD CALLBACK PassGates(LPVOID parameter) {
    const Gates& gates = *static_cast<Gates*>(parameter);
    WaitForSingleObject(gates.proceed, INFINITE);
    SetEvent(gates.ended);
    return 0;
}

TEST(Threads, GoOnAfterTheirHandleIsClosed) {
    Gates gates;
    const HANDLE thread = CreateThread(nullptr, 0, PassGates, &gates, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, 1), WAIT_TIMEOUT);
    EXPECT_TRUE(CloseHandle(thread));
    SetEvent(gates.proceed);
    EXPECT_EQ(WaitForSingleObject(gates.ended, INFINITE), WAIT_OBJECT_0);
    CloseHandle(gates.proceed);
    CloseHandle(gates.ended);
}

}  // namespace
