// SPDX-License-Identifier: MIT
#include "platform/ui/qt/dialog.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QKeyEvent>

#include "platform/ui/qt/controls.h"

namespace zrui {
namespace {

constexpr std::uint32_t kSystemMenu = 0x00080000;

// Turns the keys and the close button of the toolkit's dialog into messages.
class DialogWidget final : public QDialog {
public:
    explicit DialogWidget(QWidget* parent) : QDialog(parent) {}

    void SetOwner(DialogWindow* owner) { m_owner = owner; }

    void reject() override { m_owner->Cancel(); }

protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        m_owner->OnMessage(WM_CLOSE, 0, 0);
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_F1) {
            m_owner->OnMessage(WM_HELP, 0, 0);
        } else {
            QDialog::keyPressEvent(event);
        }
    }

private:
    DialogWindow* m_owner = nullptr;
};

QFont DialogFont(const platform::DialogTemplate& dialog) {
    QFont font = QApplication::font();
    if (dialog.fontPoints <= 0) return font;
    // "MS Shell Dlg" is an alias of the system's dialog font.
    if (dialog.fontFace != u"MS Shell Dlg") font.setFamily(QString::fromStdU16String(dialog.fontFace));
    font.setPointSize(dialog.fontPoints);
    font.setWeight(static_cast<QFont::Weight>(std::clamp(dialog.fontWeight, 1, 1000)));
    font.setItalic(dialog.fontItalic);
    return font;
}

class DialogUnits {
public:
    explicit DialogUnits(const QFont& font) {
        const QFontMetrics metrics(font);
        const int alphabet =
            metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
        m_width = (alphabet / 26 + 1) / 2;
        m_height = metrics.height();
    }

    QRect ToPixels(const platform::DialogPlace& place) const {
        return {X(place.x), Y(place.y), X(place.width), Y(place.height)};
    }

private:
    int X(int units) const { return (units * m_width + 2) / 4; }
    int Y(int units) const { return (units * m_height + 4) / 8; }

    int m_width;
    int m_height;
};

}  // namespace

DialogWindow::DialogWindow(WindowTable& table, std::unique_ptr<QDialog> dialog, DLGPROC procedure)
    : Window(*dialog, 0), m_table(table), m_dialog(std::move(dialog)), m_procedure(procedure) {}

DialogWindow::~DialogWindow() {
    for (const HWND control : m_controls) m_table.Remove(control);
}

DialogWindow* DialogWindow::Create(WindowTable& table, const platform::DialogTemplate& dialog,
                                   QWidget* parent, DLGPROC procedure) {
    auto widget = std::make_unique<DialogWidget>(parent);
    DialogWidget& widgetRef = *widget;
    std::unique_ptr<DialogWindow> window(new DialogWindow(table, std::move(widget), procedure));
    DialogWindow* result = window.get();
    widgetRef.SetOwner(result);
    const HWND handle = table.Add(std::move(window));
    if (result->MakeControls(dialog)) return result;
    table.Remove(handle);
    return nullptr;
}

bool DialogWindow::MakeControls(const platform::DialogTemplate& dialog) {
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    if (dialog.style & kSystemMenu) flags |= Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    m_dialog->setWindowFlags(flags);
    m_dialog->setWindowModality(Qt::ApplicationModal);
    m_dialog->setFont(DialogFont(dialog));
    const DialogUnits units(m_dialog->font());
    m_dialog->setFixedSize(units.ToPixels(dialog.place).size());
    SetText(QString::fromStdU16String(dialog.caption));

    QWidget* previous = nullptr;
    for (const platform::DialogControl& control : dialog.controls) {
        const std::size_t index = m_controls.size();
        auto window = MakeControl(control, *m_dialog, [this, index, id = static_cast<int>(control.id)] {
            Command(id, m_controls[index]);
        });
        if (!window) return false;
        QWidget& widget = window->Widget();
        widget.setGeometry(units.ToPixels(control.place));
        // The first control of a template is on top; the toolkit puts the newest there.
        widget.lower();
        if (widget.focusPolicy() == Qt::StrongFocus) {
            if (previous) QWidget::setTabOrder(previous, &widget);
            if (!m_firstTabStop && !widget.isHidden()) m_firstTabStop = &widget;
            previous = &widget;
        }
        m_controls.push_back(m_table.Add(std::move(window)));
    }
    return true;
}

INT_PTR DialogWindow::Run(LPARAM parameter) {
    const Window* first = m_table.FindWidget(m_firstTabStop);
    const auto focus = reinterpret_cast<WPARAM>(first ? first->Handle() : nullptr);
    if (m_procedure(Handle(), WM_INITDIALOG, focus, parameter) && m_firstTabStop) m_firstTabStop->setFocus();
    if (!m_result) {
        m_dialog->show();
        m_loop.exec();
        m_dialog->hide();
    }
    m_procedure(Handle(), WM_DESTROY, 0, 0);
    const INT_PTR result = m_result.value_or(0);
    m_table.Remove(Handle());
    return result;
}

void DialogWindow::End(INT_PTR result) {
    m_result = result;
    m_loop.quit();
}

HWND DialogWindow::ControlHandle(int id) const {
    for (const HWND control : m_controls) {
        if (m_table.Find(control)->Id() == id) return control;
    }
    return nullptr;
}

LRESULT DialogWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const INT_PTR handled = m_procedure(Handle(), message, wParam, lParam);
    if (!handled && message == WM_CLOSE) Cancel();
    return handled;
}

void DialogWindow::Cancel() {
    const HWND button = ControlHandle(IDCANCEL);
    if (!button || m_table.Find(button)->Widget().isEnabled()) Command(IDCANCEL, button);
}

void DialogWindow::Command(int id, HWND control) {
    m_procedure(Handle(), WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), 0),
                reinterpret_cast<LPARAM>(control));
}

}  // namespace zrui
