// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "host/context.h"
#include "host/ref.h"
#include "module/cleaner/worker.h"
#include "platform/windows.h"

namespace zrt {

// The cleaner's modal dialog: the user chooses operations, a worker runs them. Its states are choosing,
// running and finished, in this order; it can be closed in the first and the last. Interface thread only.
class CleanerDialog {
public:
    // Everything passed must outlive the dialog. log: the worker appends to it. callLimit: see
    // CleanerWorker::Run.
    CleanerDialog(CCleanerImpl& cleaner, vl::zr::Scene& scene, vl::Context& context, std::u16string& log,
                  DWORD callLimit)
        : m_cleaner(cleaner), m_scene(scene), m_context(context), m_log(log), m_callLimit(callLimit) {}

    // Opens the dialog and returns once it is closed.
    void Run();

private:
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR Handle(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleCommand(int command, LPARAM parameter);
    void Init(HWND dialog);
    void StartRun();
    void ShowRunning();
    void FinishRun();
    void ShowFinished();
    void ShowLog();

    CCleanerImpl& m_cleaner;
    vl::zr::Scene& m_scene;
    vl::Context& m_context;
    std::u16string& m_log;
    DWORD m_callLimit;
    HWND m_hDlg = nullptr;  // while the dialog is open
    bool m_bStarted = false;
    std::optional<CleanerWorker> m_worker;  // from the start of the run
};

}  // namespace zrt
