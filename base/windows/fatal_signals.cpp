// SPDX-License-Identifier: MIT
#include "base/fatal_signals.h"

#include <atomic>
#include <cstring>

#include "base/process.h"
#include "base/windows/handle.h"

namespace zr {
namespace {

constexpr UINT kEndedByUser = 130;

// Held in shared mode by each HoldFatalSignals, and briefly in exclusive mode by whatever is about to end the
// process. The compiler's std::shared_mutex may fail when its first two locks are taken at once.
SRWLOCK g_hold = SRWLOCK_INIT;

// Time to report what was done, and to shut down in order where that is quick.
constexpr DWORD kPatience = 30;  // milliseconds

std::atomic<bool> g_isWorkDone{false};

void WriteError(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

void WaitForHolds() {
    AcquireSRWLockExclusive(&g_hold);
    ReleaseSRWLockExclusive(&g_hold);
}

// Runs on a thread of its own for Ctrl-C, Ctrl-Break, a closed window and the end of the session.
BOOL WINAPI OnConsoleEvent(DWORD) {
    WaitForHolds();
    return FALSE;  // on to the next handler, the last of which ends the process
}

void InstallHandler() {
    static const bool installed = SetConsoleCtrlHandler(OnConsoleEvent, TRUE) != 0;
    static_cast<void>(installed);
}

}  // namespace

HoldFatalSignals::HoldFatalSignals() {
    InstallHandler();
    AcquireSRWLockShared(&g_hold);
}

HoldFatalSignals::~HoldFatalSignals() {
    ReleaseSRWLockShared(&g_hold);
}

// Temporary files vanish with their handles. No destructors run: other threads may still use the objects.
extern "C" void EndBySignal(int) {
    WaitForHolds();
    TerminateProcess(GetCurrentProcess(), kEndedByUser);
}

// The handler that calls this runs on a thread of its own while the work goes on.
void EndSoon(int status, const char* line) {
    if (g_isWorkDone) return;
    Sleep(kPatience);
    AcquireSRWLockExclusive(&g_hold);
    if (!g_isWorkDone) {
        if (IsStandardErrorTerminal()) WriteError("\r\033[K");
        WriteError(line);
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    }
    ReleaseSRWLockExclusive(&g_hold);
}

void BeginWork() {
    g_isWorkDone = false;
}

void EndWork() {
    g_isWorkDone = true;
}

}  // namespace zr
