// SPDX-License-Identifier: MIT
#include "module/cleaner/worker.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "host/context.h"
#include "host/scene.h"
#include "module/cleaner/removal.h"

namespace zrt {
namespace {

// Strings of the language tables.
enum WorkerText : int { kTextStarted = 1000, kTextBroken = 1001, kTextFinished = 1002, kTextRecord = 1050 };

constexpr char16_t kLineEnd[] = u"\r\n";
constexpr std::size_t kMaxFormatted = 1023;

const char16_t* Text(int id) {
    return g_pHost->GetModuleString(g_hStrings, id);
}

std::u16string ToText(int value) {
    const std::string digits = std::to_string(value);
    return {digits.begin(), digits.end()};
}

}  // namespace

CleanerWorker::CleanerWorker(Run run) : m_run(std::move(run)) {}

bool CleanerWorker::Start() {
    // Set before the thread exists: an Escape that comes first must not end the dialog.
    m_bRunning = true;
    m_hThread = CreateThread(nullptr, 0, WorkerProc, this, 0, nullptr);
    if (m_hThread == nullptr) m_bRunning = false;
    return m_hThread != nullptr;
}

void CleanerWorker::Join() {
    if (m_hThread == nullptr) return;
    WaitForSingleObject(m_hThread, INFINITE);
    CloseHandle(m_hThread);
    m_hThread = nullptr;
}

void CleanerWorker::RunEnvironmentCall() {
    InterfaceCall expected = InterfaceCall::kPending;
    if (!m_call.compare_exchange_strong(expected, InterfaceCall::kTaken)) return;
    m_run.cleaner.RemoveEnvMapsAndBackplates(&m_run.scene, &m_run.context, m_record.Get());
    SetEvent(m_hEvent);
}

// A run that runs out of memory ends early, and its log lacks the last line.
DWORD WINAPI CleanerWorker::WorkerProc(LPVOID object) {
    auto& worker = *static_cast<CleanerWorker*>(object);
    const HWND dialog = worker.m_run.dialog;
    bool completed = false;
    try {
        worker.RunOperations();
        completed = true;
    } catch (...) {
        completed = false;
    }
    worker.EndRecord();
    try {
        if (completed) {
            worker.AppendLog(Text(IsBreak(&worker.m_run.context) ? kTextBroken : kTextFinished), true);
        }
    } catch (...) {
        // The run is over all the same.
    }
    worker.m_bRunning = false;
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(kCommandEnded, 0), 0);
    return 0;
}

void CleanerWorker::RunOperations() {
    constexpr WORD kLast = kOperationCount - 1;
    m_record = vl::Ref<ChangeRecord>::AdoptNew(m_run.scene.CreateChangeRecord(1));
    m_record->Begin();
    AppendLog(Text(kTextStarted), true);
    SendCommand(kCommandProgress, MAKELPARAM(0, kLast));
    for (int i = 0; i < kOperationCount && !IsBreak(&m_run.context); ++i) {
        const Operation& operation = kOperations[i];
        if (!m_run.options.IsOn(operation.option)) continue;
        AppendLog(Text(operation.startMessage), false);
        const int count = RunOperation(operation);
        SendCommand(kCommandProgress, MAKELPARAM(static_cast<WORD>(i), kLast));
        AppendLogFormat(true, Text(operation.countMessage), count);
    }
}

int CleanerWorker::RunOperation(const Operation& operation) {
    if (operation.option == IDC_ENVIRONMENT) return CallOnInterfaceThread() ? 1 : 0;
    return (m_run.cleaner.*operation.run)(&m_run.scene, &m_run.context, m_record.Get());
}

// Has the interface thread remove the environment; false if it did not finish in time. By then, a call that
// has not begun is abandoned for good; one that has begun leaves m_hEvent open until the end of the run.
bool CleanerWorker::CallOnInterfaceThread() {
    m_hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    if (m_hEvent == nullptr) return false;
    m_call = InterfaceCall::kPending;
    PostMessageA(m_run.dialog, WM_COMMAND, MAKEWPARAM(kCommandEnvironment, 0), 0);
    const bool inTime = WaitForSingleObject(m_hEvent, m_run.callLimit) != WAIT_TIMEOUT;
    InterfaceCall expected = InterfaceCall::kPending;
    if (inTime || m_call.compare_exchange_strong(expected, InterfaceCall::kAbandoned)) {
        CloseHandle(m_hEvent);
        m_hEvent = nullptr;
    }
    return inTime;
}

void CleanerWorker::EndRecord() {
    if (m_hEvent != nullptr) {
        // A call that began in time but took too long still uses the record.
        WaitForSingleObject(m_hEvent, INFINITE);
        CloseHandle(m_hEvent);
        m_hEvent = nullptr;
    }
    if (!m_record) return;
    try {
        m_record->End(Text(kTextRecord));
    } catch (...) {
        // A record without its caption still holds what was removed.
    }
    m_record.Reset();
}

// Appends the text to the log, with a line end unless it has one, and has the dialog show it.
void CleanerWorker::AppendLog(const char16_t* text, bool lineEnd) {
    const std::u16string_view added = text;
    m_run.log += added;
    if (lineEnd && !(added.size() > 2 && added.ends_with(kLineEnd))) m_run.log += kLineEnd;
    SendCommand(kCommandLog, 0);
}

// Every "%d" of the format becomes the value; the language tables hold no other conversion.
void CleanerWorker::AppendLogFormat(bool lineEnd, const char16_t* format, int value) {
    std::u16string text = format;
    const std::u16string digits = ToText(value);
    for (std::size_t at = text.find(u"%d"); at != std::u16string::npos; at = text.find(u"%d", at)) {
        text.replace(at, 2, digits);
        at += digits.size();
    }
    text.resize(std::min(text.size(), kMaxFormatted));
    AppendLog(text.c_str(), lineEnd);
}

LRESULT CleanerWorker::SendCommand(int command, LPARAM parameter) {
    return SendMessageA(m_run.dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(command), 0), parameter);
}

}  // namespace zrt
