// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QEventLoop>
#include <optional>
#include <span>
#include <vector>

#include "platform/ui/dialog_template.h"
#include "platform/ui/qt/window.h"

namespace zrui {

// A modal dialog. It lives in the window table, which must outlive it.
class DialogWindow final : public Window {
public:
    // Makes the dialog with all its controls, not yet shown, and adds it to the table. Returns null, adding
    // nothing, when the template has an unsupported class of control.
    static DialogWindow* Create(WindowTable& table, const platform::DialogTemplate& dialog, QWidget* parent,
                                DLGPROC procedure);
    ~DialogWindow() override;

    // Shows the dialog until it is ended, removes it from the table (which deletes it), and returns the
    // result given to End.
    INT_PTR Run(LPARAM parameter);
    void End(INT_PTR result);

    HWND ControlHandle(int id) const;  // the first control with that id, or null
    std::span<const HWND> Controls() const { return m_controls; }

    QString Text() const override { return m_dialog->windowTitle(); }
    void SetText(const QString& text) override { m_dialog->setWindowTitle(text); }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    // What Escape and closing the window do: the command of the Cancel button, unless that is disabled.
    void Cancel();

private:
    DialogWindow(WindowTable& table, std::unique_ptr<QDialog> dialog, DLGPROC procedure);

    bool MakeControls(const platform::DialogTemplate& dialog);
    void Command(int id, HWND control);

    WindowTable& m_table;
    std::unique_ptr<QDialog> m_dialog;
    const DLGPROC m_procedure;
    std::vector<HWND> m_controls;
    QWidget* m_firstTabStop = nullptr;
    QEventLoop m_loop;
    std::optional<INT_PTR> m_result;
};

}  // namespace zrui
