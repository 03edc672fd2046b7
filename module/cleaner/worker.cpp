// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <string_view>

#include "host/change_record.h"
#include "host/context.h"
#include "host/scene.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/dialog.h"
#include "module/cleaner/operations.h"
#include "module/cleaner/removal.h"

namespace {

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

DWORD WINAPI CCleanerImpl::WorkerProc(LPVOID object) {
    static_cast<CCleanerImpl*>(object)->RunWorker();
    return 0;
}

void CCleanerImpl::RunWorker() {
    constexpr WORD kLast = zrt::kOperationCount - 1;
    const HWND dialog = m_hDlg;
    m_pRecord = m_pScene->CreateChangeRecord(1);
    m_pRecord->Begin();
    AppendLog(Text(zrt::kTextStarted), true);
    SendCommand(zrt::kCommandProgress, MAKELPARAM(0, kLast));
    for (int i = 0; i < zrt::kOperationCount && !zrt::IsBreak(m_pContext); ++i) {
        const zrt::Operation& operation = zrt::kOperations[i];
        if (!m_options.IsOn(operation.option)) continue;
        AppendLog(Text(operation.startMessage), false);
        const int count = RunInWorker(operation);
        SendCommand(zrt::kCommandProgress, MAKELPARAM(static_cast<WORD>(i), kLast));
        AppendLogFormat(true, Text(operation.countMessage), count);
    }
    if (m_hEvent) {
        // A call that began in time but took too long still uses the record.
        WaitForSingleObject(m_hEvent, INFINITE);
        CloseHandle(m_hEvent);
        m_hEvent = nullptr;
    }
    m_pRecord->End(Text(zrt::kTextRecord));
    m_pRecord->Release();
    m_pRecord = nullptr;
    AppendLog(Text(zrt::IsBreak(m_pContext) ? zrt::kTextBroken : zrt::kTextFinished), true);
    m_bRunning = false;
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(zrt::kCommandEnded, 0), 0);
}

int CCleanerImpl::RunInWorker(const zrt::Operation& operation) {
    if (operation.option == zrt::kOptionEnvironment) return CallOnInterfaceThread() ? 1 : 0;
    return (this->*operation.run)(m_pScene, m_pContext, m_pRecord);
}

// Appends the text to the log, with a line end unless it has one, and lets the dialog show it.
void CCleanerImpl::AppendLog(const char16_t* text, bool lineEnd) {
    const std::u16string_view added = text;
    m_strLog += added;
    if (lineEnd && !(added.size() > 2 && added.ends_with(kLineEnd))) m_strLog += kLineEnd;
    SendCommand(zrt::kCommandLog, 0);
}

// Every "%d" of the format becomes the value; the language tables hold no other conversion.
void CCleanerImpl::AppendLogFormat(bool lineEnd, const char16_t* format, int value) {
    std::u16string text = format;
    const std::u16string digits = ToText(value);
    for (std::size_t at = text.find(u"%d"); at != std::u16string::npos; at = text.find(u"%d", at)) {
        text.replace(at, 2, digits);
        at += digits.size();
    }
    text.resize(std::min(text.size(), kMaxFormatted));
    AppendLog(text.c_str(), lineEnd);
}

// Lets the interface thread remove the environment; false when it did not finish in time. Then a call that
// has not begun is abandoned and never will; one that has begun leaves m_hEvent for the end of the run.
bool CCleanerImpl::CallOnInterfaceThread() {
    m_hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    m_call = InterfaceCall::kPending;
    PostMessageA(m_hDlg, WM_COMMAND, MAKEWPARAM(zrt::kCommandEnvironment, 0), 0);
    const bool inTime = WaitForSingleObject(m_hEvent, m_dwCallLimit) != WAIT_TIMEOUT;
    InterfaceCall expected = InterfaceCall::kPending;
    if (inTime || m_call.compare_exchange_strong(expected, InterfaceCall::kAbandoned)) {
        CloseHandle(m_hEvent);
        m_hEvent = nullptr;
    }
    return inTime;
}

LRESULT CCleanerImpl::SendCommand(int command, LPARAM parameter) {
    return SendMessageA(m_hDlg, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(command), 0), parameter);
}
