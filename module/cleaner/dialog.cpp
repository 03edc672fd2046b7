// SPDX-License-Identifier: MIT
#include "module/cleaner/dialog.h"

#include "host/scene.h"
#include "module/frame/globals.h"
#include "module/resources/resource.h"

namespace zrt {
namespace {

constexpr char kHelpPage[] = "flush_unused_objects.htm";
constexpr int kTextClose = 604;  // string of the language tables

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

void CleanerDialog::Run() {
    DialogBoxParamA(g_hModule, MAKEINTRESOURCEA(IDD_CLEANER), g_pHost->GetMainWindow(0), DialogProc,
                    reinterpret_cast<LPARAM>(this));
}

// A message whose handling runs out of memory counts as not handled.
INT_PTR CALLBACK CleanerDialog::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) try {
    if (message == WM_INITDIALOG) {
        reinterpret_cast<CleanerDialog*>(lParam)->Init(dialog);
        return TRUE;
    }
    auto* self = static_cast<CleanerDialog*>(GetPropA(dialog, kTypeCleaner));
    return self != nullptr ? self->Handle(dialog, message, wParam, lParam) : FALSE;
} catch (...) {
    return FALSE;
}

INT_PTR CleanerDialog::Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_DESTROY:
            RemovePropA(dialog, kTypeCleaner);
            m_hDlg = nullptr;
            return TRUE;
        case WM_HELP:
            return HandleCommand(IDC_HELP_PAGE, 0);
        case WM_COMMAND:
            return HandleCommand(LOWORD(wParam), lParam);
        default:
            return FALSE;
    }
}

bool CleanerDialog::HandleCommand(int command, LPARAM parameter) {
    switch (command) {
        case IDC_HELP_PAGE:
            g_pHost->ShowHelpTopic(kHelpPage, 0);
            return true;
        case IDC_CLOSE:
            // Escape sends this during a run too, when the worker still needs the dialog and the scene.
            if (!m_worker) EndDialog(m_hDlg, 0);
            return true;
        case IDC_PROCESS:
            StartRun();
            return true;
        case IDC_BREAK:
            m_context.SetBreak(true);
            EnableWindow(GetDlgItem(m_hDlg, IDC_BREAK), FALSE);
            return true;
        case kCommandProgress: {
            const HWND bar = GetDlgItem(m_hDlg, IDC_PROGRESS);
            const auto words = static_cast<DWORD_PTR>(parameter);
            SendMessageA(bar, PBM_SETRANGE, 0, MAKELPARAM(0, HIWORD(words)));
            SendMessageA(bar, PBM_SETPOS, LOWORD(words), 0);
            return true;
        }
        case kCommandLog:
            ShowLog();
            return true;
        case kCommandEnvironment:
            if (m_worker) m_worker->RunEnvironmentCall();
            return true;
        case kCommandEnded:
            FinishRun();
            return true;
        default:
            return false;
    }
}

void CleanerDialog::Init(HWND dialog) {
    try {
        g_pHost->LocalizeDialog(g_hStrings, dialog);
    } catch (...) {
        // The captions stay numbers; the dialog works all the same.
    }
    SetPropA(dialog, kTypeCleaner, this);
    m_hDlg = dialog;
    for (const Operation& operation : kOperations) {
        EnableWindow(GetDlgItem(dialog, operation.option), operation.checked);
        CheckDlgButton(dialog, operation.option, operation.checked ? BST_CHECKED : BST_UNCHECKED);
    }
}

void CleanerDialog::StartRun() {
    if (m_bStarted) return;
    m_bStarted = true;
    CCleanerImpl::CI2BMap options;
    for (const Operation& operation : kOperations) {
        options.Set(operation.option, IsDlgButtonChecked(m_hDlg, operation.option) != 0);
    }
    ShowRunning();
    m_worker.emplace(CleanerWorker::Run{m_cleaner, m_scene, m_context, options, m_hDlg, m_log, m_callLimit});
    if (m_worker->Start()) return;
    m_worker.reset();
    ShowFinished();
}

void CleanerDialog::ShowRunning() {
    for (const Operation& operation : kOperations) ShowControl(m_hDlg, operation.option, false);
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
void CleanerDialog::FinishRun() {
    if (!m_worker || m_worker->IsRunning()) return;
    m_worker.reset();
    ShowFinished();
}

void CleanerDialog::ShowFinished() {
    ShowLog();
    const HWND close = GetDlgItem(m_hDlg, IDC_CLOSE);
    SetWindowTextW(close, platform::Wide(g_pHost->GetModuleString(g_hStrings, kTextClose)));
    const RECT from = PlaceOf(m_hDlg, IDC_CLOSE);
    const RECT to = PlaceOf(m_hDlg, IDC_BREAK);
    MoveControl(m_hDlg, IDC_CLOSE,
                {to.left, to.top, to.left + from.right - from.left, to.top + from.bottom - from.top});
    SetFocus(close);
    ShowControl(m_hDlg, IDC_PROGRESS, false);
    ShowControl(m_hDlg, IDC_BREAK, false);
    ShowControl(m_hDlg, IDC_CLOSE, true);
}

void CleanerDialog::ShowLog() {
    SetDlgItemTextW(m_hDlg, IDC_LOG, platform::Wide(m_log.c_str()));
}

}  // namespace zrt

bool CCleanerImpl::RunDialog(vl::zr::Scene* scene) try {
    if (scene == nullptr) return false;
    scene->BeginModal();
    try {
        const auto context = vl::Ref<vl::Context>::AdoptNew(g_pHost->CreateContext(0, 0));
        zrt::CleanerDialog(*this, *scene, *context, m_strLog, m_dwCallLimit).Run();
    } catch (...) {
        // No dialog without memory; the scene leaves its modal state below.
    }
    scene->EndModal();
    scene->Refresh(10, 0);
    return false;
} catch (...) {
    return false;
}
