// SPDX-License-Identifier: MIT
#include "platform/ui/qt/controls.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>

namespace zrui {
namespace {

using platform::DialogControl;
using platform::ResourceId;

constexpr std::uint32_t kVisible = 0x10000000;
constexpr std::uint32_t kDisabled = 0x08000000;
constexpr std::uint32_t kVerticalScroll = 0x00200000;
constexpr std::uint32_t kTabStop = 0x00010000;
constexpr std::uint32_t kButtonKind = 0x0F;
constexpr std::uint32_t kPushButton = 0;
constexpr std::uint32_t kDefaultPushButton = 1;
constexpr std::uint32_t kAutoCheckBox = 3;
constexpr std::uint32_t kGroupBox = 7;
constexpr std::uint32_t kMultiLine = 0x0004;
constexpr std::uint32_t kReadOnly = 0x0800;

class ButtonWindow final : public Window {
public:
    ButtonWindow(QAbstractButton& button, int id) : Window(button, id), m_button(button) {}
    QString Text() const override { return m_button.text(); }
    void SetText(const QString& text) override { m_button.setText(text); }

private:
    QAbstractButton& m_button;
};

class GroupWindow final : public Window {
public:
    GroupWindow(QGroupBox& group, int id) : Window(group, id), m_group(group) {}
    QString Text() const override { return m_group.title(); }
    void SetText(const QString& text) override { m_group.setTitle(text); }

private:
    QGroupBox& m_group;
};

class EditWindow final : public Window {
public:
    EditWindow(QPlainTextEdit& edit, int id) : Window(edit, id), m_edit(edit) {}

    // Lines end with CR LF outside of the widget and with LF inside.
    QString Text() const override { return m_edit.toPlainText().replace("\n", "\r\n"); }
    void SetText(const QString& text) override { m_edit.setPlainText(QString(text).replace("\r\n", "\n")); }

private:
    QPlainTextEdit& m_edit;
};

class ProgressWindow final : public Window {
public:
    ProgressWindow(QProgressBar& bar, int id) : Window(bar, id), m_bar(bar) {}

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == PBM_SETRANGE) {
            const LPARAM previous =
                MAKELPARAM(static_cast<WORD>(m_bar.minimum()), static_cast<WORD>(m_bar.maximum()));
            m_bar.setRange(LOWORD(static_cast<DWORD_PTR>(lParam)), HIWORD(static_cast<DWORD_PTR>(lParam)));
            return previous;
        }
        if (message == PBM_SETPOS) {
            const int previous = m_bar.value();
            m_bar.setValue(static_cast<int>(wParam));
            return previous;
        }
        return 0;
    }

private:
    QProgressBar& m_bar;
};

std::unique_ptr<Window> MakeButton(const DialogControl& control, QWidget& dialog,
                                   std::function<void()> clicked) {
    const int id = static_cast<int>(control.id);
    const std::uint32_t kind = control.style & kButtonKind;
    if (kind == kGroupBox) {
        auto* group = new QGroupBox(&dialog);
        // The controls inside the frame are its siblings and get the clicks.
        group->setAttribute(Qt::WA_TransparentForMouseEvents);
        // The title is in the frame's upper line, as templates expect; the toolkit's default style puts the
        // frame below it, across the first control.
        group->setStyleSheet(
            "QGroupBox { border: 1px solid palette(mid); border-radius: 2px; margin-top: 0.6em; }"
            "QGroupBox::title { subcontrol-origin: margin; left: 6px; background: palette(window); }");
        return std::make_unique<GroupWindow>(*group, id);
    }
    QAbstractButton* button = nullptr;
    if (kind == kAutoCheckBox) {
        button = new QCheckBox(&dialog);
    } else if (kind == kPushButton || kind == kDefaultPushButton) {
        auto* push = new QPushButton(&dialog);
        push->setDefault(kind == kDefaultPushButton);
        button = push;
    } else {
        return nullptr;
    }
    QObject::connect(button, &QAbstractButton::clicked, std::move(clicked));
    return std::make_unique<ButtonWindow>(*button, id);
}

std::unique_ptr<Window> MakeEdit(const DialogControl& control, QWidget& dialog) {
    if (!(control.style & kMultiLine)) return nullptr;
    auto* edit = new QPlainTextEdit(&dialog);
    edit->setReadOnly((control.style & kReadOnly) != 0);
    edit->setTabChangesFocus(true);
    edit->setVerticalScrollBarPolicy(control.style & kVerticalScroll ? Qt::ScrollBarAlwaysOn
                                                                     : Qt::ScrollBarAlwaysOff);
    edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return std::make_unique<EditWindow>(*edit, static_cast<int>(control.id));
}

std::unique_ptr<Window> MakeProgress(const DialogControl& control, QWidget& dialog) {
    auto* bar = new QProgressBar(&dialog);
    bar->setTextVisible(false);
    bar->setValue(0);
    return std::make_unique<ProgressWindow>(*bar, static_cast<int>(control.id));
}

bool IsClass(const ResourceId& windowClass, std::uint16_t number, const char16_t* name) {
    return (number != 0 && SameResourceId(windowClass, {number, {}})) ||
           SameResourceId(windowClass, {0, name});
}

}  // namespace

std::unique_ptr<Window> MakeControl(const DialogControl& control, QWidget& dialog,
                                    std::function<void()> clicked) {
    std::unique_ptr<Window> window;
    if (IsClass(control.windowClass, 0x80, u"BUTTON")) {
        window = MakeButton(control, dialog, std::move(clicked));
    } else if (IsClass(control.windowClass, 0x81, u"EDIT")) {
        window = MakeEdit(control, dialog);
    } else if (IsClass(control.windowClass, 0, u"msctls_progress32")) {
        window = MakeProgress(control, dialog);
    }
    if (!window) return nullptr;
    QWidget& widget = window->Widget();
    widget.setFocusPolicy(control.style & kTabStop                      ? Qt::StrongFocus
                          : IsClass(control.windowClass, 0x81, u"EDIT") ? Qt::ClickFocus
                                                                        : Qt::NoFocus);
    widget.setEnabled(!(control.style & kDisabled));
    widget.setVisible((control.style & kVisible) != 0);
    window->SetText(QString::fromStdU16String(control.caption));
    return window;
}

bool SetCheck(Window& window, UINT check) {
    auto* box = qobject_cast<QCheckBox*>(&window.Widget());
    if (box) box->setChecked(check == BST_CHECKED);
    return box != nullptr;
}

UINT GetCheck(const Window& window) {
    const auto* box = qobject_cast<QCheckBox*>(&window.Widget());
    return box && box->isChecked() ? BST_CHECKED : BST_UNCHECKED;
}

}  // namespace zrui
