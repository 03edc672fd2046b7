// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string>

#include "host/change_record.h"
#include "host/ref.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/operations.h"
#include "platform/windows.h"

namespace zrt {

// Messages of the worker thread to the dialog: the command of a WM_COMMAND message without a control.
enum DialogCommand : int {
    kCommandEnded = 1281,        // posted last: the worker ends
    kCommandProgress = 1537,     // sent; parameter: position in the low word, maximum in the high word
    kCommandLog = 1538,          // sent: the log has grown
    kCommandEnvironment = 1539,  // posted: run the call handed to the interface thread
};

// Runs a dialog's operations on a thread of their own, with a change record, progress and a log. One object
// serves one run. Unless stated otherwise, its functions are for the interface thread.
class CleanerWorker {
public:
    // What a run works with. All of it must outlive the run. Only the worker writes to the log while it runs;
    // the interface thread reads it while the worker waits for the answer to a message, or has ended.
    struct Run {
        CCleanerImpl& cleaner;
        vl::zr::Scene& scene;
        vl::Context& context;
        CCleanerImpl::CI2BMap options;
        HWND dialog;
        std::u16string& log;
        DWORD callLimit;  // milliseconds that the call handed to the interface thread may wait
    };

    explicit CleanerWorker(Run run);
    CleanerWorker(const CleanerWorker&) = delete;
    CleanerWorker& operator=(const CleanerWorker&) = delete;
    ~CleanerWorker() { Join(); }

    // False if no thread can be created.
    bool Start();

    // True from Start until the worker needs neither dialog nor scene any more.
    bool IsRunning() const { return m_bRunning; }

    // Waits for the end of the thread.
    void Join();

    // Runs the call that kCommandEnvironment announces, unless the worker has abandoned it.
    void RunEnvironmentCall();

private:
    // The time-out and the start of the call may coincide: whoever takes the call out of kPending decides.
    enum class InterfaceCall { kNone, kPending, kTaken, kAbandoned };

    // On the worker's thread.
    static DWORD WINAPI WorkerProc(LPVOID object);
    void RunOperations();
    int RunOperation(const Operation& operation);
    bool CallOnInterfaceThread();
    void EndRecord();
    void AppendLog(const char16_t* text, bool lineEnd);
    void AppendLogFormat(bool lineEnd, const char16_t* format, int value);
    LRESULT SendCommand(int command, LPARAM parameter);

    Run m_run;
    vl::Ref<ChangeRecord> m_record;  // open while the operations run
    HANDLE m_hThread = nullptr;
    std::atomic<bool> m_bRunning = false;
    HANDLE m_hEvent = nullptr;  // of the one call handed to the interface thread
    std::atomic<InterfaceCall> m_call = InterfaceCall::kNone;
};

}  // namespace zrt
