// SPDX-License-Identifier: MIT
#include "module/cleaner/dialog.h"

#include "host/context.h"
#include "host/scene.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/operations.h"
#include "module/frame/globals.h"
#include "module/resources/resource.h"

namespace {

void ShowControl(HWND dialog, int id, bool show) {
    ShowWindow(GetDlgItem(dialog, id), show ? SW_SHOW : SW_HIDE);
}

// The place of a control in the client area of its dialog.
RECT PlaceOf(HWND dialog, int id) {
    RECT rect{};
    GetWindowRect(GetDlgItem(dialog, id), &rect);
    POINT corner{rect.left, rect.top};
    ScreenToClient(dialog, &corner);
    return {corner.x, corner.y, corner.x + rect.right - rect.left, corner.y + rect.bottom - rect.top};
}

void MoveControl(HWND dialog, int id, const RECT& place) {
    MoveWindow(GetDlgItem(dialog, id), place.left, place.top, place.right - place.left,
               place.bottom - place.top, TRUE);
}

}  // namespace

bool CCleanerImpl::RunDialog(vl::zr::Scene* scene) {
    if (!scene) return false;
    m_pScene = scene;
    scene->BeginModal();
    m_pContext = g_pHost->CreateContext(0, 0);
    DialogBoxParamA(g_hModule, MAKEINTRESOURCEA(IDD_CLEANER), g_pHost->GetMainWindow(0), DialogProc,
                    reinterpret_cast<LPARAM>(this));
    scene->EndModal();
    m_pContext->Release();
    m_pContext = nullptr;
    scene->Refresh(10, 0);
    m_pScene = nullptr;
    return false;
}

INT_PTR CALLBACK CCleanerImpl::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* cleaner = reinterpret_cast<CCleanerImpl*>(lParam);
        SetPropA(dialog, kTypeCleaner, cleaner);
        cleaner->InitDialog(dialog);
        return TRUE;
    }
    auto* cleaner = static_cast<CCleanerImpl*>(GetPropA(dialog, kTypeCleaner));
    if (!cleaner) return FALSE;
    switch (message) {
        case WM_DESTROY:
            RemovePropA(dialog, kTypeCleaner);
            cleaner->m_hDlg = nullptr;
            return TRUE;
        case WM_HELP:
            return cleaner->HandleCommand(IDC_HELP_PAGE, 0);
        case WM_COMMAND:
            return cleaner->HandleCommand(LOWORD(wParam), lParam);
        default:
            return FALSE;
    }
}

bool CCleanerImpl::HandleCommand(int command, LPARAM parameter) {
    switch (command) {
        case IDC_HELP_PAGE:
            g_pHost->ShowHelpTopic("flush_unused_objects.htm", 0);
            return true;
        case IDC_CLOSE:
            // Escape sends this during a run too, when the worker still needs the dialog and this object.
            if (!m_bRunning && !m_hThread) EndDialog(m_hDlg, 0);
            return true;
        case IDC_PROCESS:
            StartRun();
            return true;
        case IDC_BREAK:
            m_pContext->SetBreak(true);
            EnableWindow(GetDlgItem(m_hDlg, IDC_BREAK), FALSE);
            return true;
        case zrt::kCommandProgress: {
            const HWND bar = GetDlgItem(m_hDlg, IDC_PROGRESS);
            const auto words = static_cast<DWORD_PTR>(parameter);
            SendMessageA(bar, PBM_SETRANGE, 0, MAKELPARAM(0, HIWORD(words)));
            SendMessageA(bar, PBM_SETPOS, LOWORD(words), 0);
            return true;
        }
        case zrt::kCommandLog:
            ShowLog();
            return true;
        case zrt::kCommandEnvironment:
            RunEnvironmentCall();
            return true;
        case zrt::kCommandEnded:
            FinishRun();
            return true;
        default:
            return false;
    }
}

void CCleanerImpl::InitDialog(HWND dialog) {
    g_pHost->LocalizeDialog(g_hStrings, dialog);
    m_hDlg = dialog;
    m_bStarted = false;
    for (const zrt::Operation& operation : zrt::kOperations) {
        EnableWindow(GetDlgItem(dialog, operation.option), operation.checked);
        CheckDlgButton(dialog, operation.option, operation.checked ? BST_CHECKED : BST_UNCHECKED);
    }
}

void CCleanerImpl::StartRun() {
    if (m_bStarted) return;
    m_bStarted = true;
    m_options.Clear();
    for (const zrt::Operation& operation : zrt::kOperations) {
        m_options.Set(operation.option, IsDlgButtonChecked(m_hDlg, operation.option) != 0);
    }
    ShowRunning();
    // Set before the worker exists: an Escape that comes first must not end the dialog.
    m_bRunning = true;
    m_hThread = CreateThread(nullptr, 0, WorkerProc, this, 0, nullptr);
    if (m_hThread) return;
    m_bRunning = false;
    ShowFinished();
}

void CCleanerImpl::ShowRunning() {
    for (const zrt::Operation& operation : zrt::kOperations) ShowControl(m_hDlg, operation.option, false);
    for (const int id : {IDC_PROCESS, IDC_CLOSE, IDC_OPTIONS, IDC_HELP_PAGE}) ShowControl(m_hDlg, id, false);
    RECT log = PlaceOf(m_hDlg, IDC_LOG);
    const RECT options = PlaceOf(m_hDlg, IDC_OPTIONS);
    log.left = options.left;
    log.right = options.right;
    MoveControl(m_hDlg, IDC_LOG, log);
    for (const int id : {IDC_PROGRESS, IDC_LOG, IDC_BREAK}) ShowControl(m_hDlg, id, true);
    EnableWindow(GetDlgItem(m_hDlg, IDC_PROCESS), FALSE);
    SetFocus(GetDlgItem(m_hDlg, IDC_BREAK));
}

// The worker's last message may arrive before its thread has returned.
void CCleanerImpl::FinishRun() {
    if (m_bRunning || !m_hThread) return;
    WaitForSingleObject(m_hThread, INFINITE);
    CloseHandle(m_hThread);
    m_hThread = nullptr;
    ShowFinished();
}

void CCleanerImpl::ShowFinished() {
    ShowLog();
    const HWND close = GetDlgItem(m_hDlg, IDC_CLOSE);
    SetWindowTextW(close, platform::Wide(g_pHost->GetModuleString(g_hStrings, zrt::kTextClose)));
    const RECT from = PlaceOf(m_hDlg, IDC_CLOSE);
    const RECT to = PlaceOf(m_hDlg, IDC_BREAK);
    MoveControl(m_hDlg, IDC_CLOSE,
                {to.left, to.top, to.left + from.right - from.left, to.top + from.bottom - from.top});
    SetFocus(close);
    ShowControl(m_hDlg, IDC_PROGRESS, false);
    ShowControl(m_hDlg, IDC_BREAK, false);
    ShowControl(m_hDlg, IDC_CLOSE, true);
}

// The log is read while the worker waits for the answer to its message, or has ended.
void CCleanerImpl::ShowLog() {
    SetDlgItemTextW(m_hDlg, IDC_LOG, platform::Wide(m_strLog.c_str()));
}

void CCleanerImpl::RunEnvironmentCall() {
    InterfaceCall expected = InterfaceCall::kPending;
    if (!m_call.compare_exchange_strong(expected, InterfaceCall::kTaken)) return;
    RemoveEnvMapsAndBackplates(m_pScene, m_pContext, m_pRecord);
    SetEvent(m_hEvent);
}
