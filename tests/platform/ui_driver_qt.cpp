// SPDX-License-Identifier: MIT
#include <QAbstractButton>
#include <QApplication>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>

#include "platform/ui/host_windows.h"
#include "tests/platform/ui_driver.h"

namespace driver {
namespace {

QWidget* Dialog() {
    return QApplication::activeModalWidget();
}

template <typename T = QWidget>
T* Control(int id) {
    return Dialog()->findChild<T*>(QString::number(id));
}

TreeItem ReadItem(const QTreeWidgetItem& item) {
    TreeItem read{item.text(0).toStdU16String(), {}};
    for (int i = 0; i < item.childCount(); ++i) read.children.push_back(ReadItem(*item.child(i)));
    return read;
}

}  // namespace

std::string Start() {
    std::string error;
    platform::StartUserInterface(error);
    return error;
}

void WhenDialogOpens(std::function<void()> steps) {
    QTimer::singleShot(0, [steps = std::move(steps)] {
        if (Dialog() && QTest::qWaitForWindowActive(Dialog())) steps();
    });
}

void ServeEvents() {
    QCoreApplication::processEvents();
}

bool WaitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 10000);
}

void Post(std::function<void()> task) {
    QMetaObject::invokeMethod(qApp, std::move(task), Qt::QueuedConnection);
}

bool IsWindowThread() {
    return QThread::currentThread() == qApp->thread();
}

bool HasDialog() {
    return Dialog() != nullptr;
}

std::u16string Title() {
    return Dialog()->windowTitle().toStdU16String();
}

Place Area() {
    return {0, 0, Dialog()->width(), Dialog()->height()};
}

void CloseDialog() {
    Dialog()->close();
}

void Press(Key key) {
    constexpr Qt::Key kKeys[] = {Qt::Key_Tab, Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space, Qt::Key_F1};
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : Dialog(), kKeys[static_cast<int>(key)]);
}

void Click(int id) {
    QTest::mouseClick(Control(id), Qt::LeftButton, {}, QPoint(8, 8));
}

void Trigger(int id) {
    Control<QAbstractButton>(id)->click();
}

int FocusedId() {
    const QWidget* focus = QApplication::focusWidget();
    return focus ? focus->objectName().toInt() : -1;
}

int ClickedAt(int id) {
    const QWidget* clicked = Dialog()->childAt(Control(id)->geometry().center());
    return clicked ? clicked->objectName().toInt() : -1;
}

bool IsVisible(int id) {
    return Control(id)->isVisible();
}
bool IsEnabled(int id) {
    return Control(id)->isEnabled();
}
void SetEnabled(int id, bool enabled) {
    Control(id)->setEnabled(enabled);
}
bool IsChecked(int id) {
    return Control<QAbstractButton>(id)->isChecked();
}
void SetChecked(int id, bool checked) {
    Control<QAbstractButton>(id)->setChecked(checked);
}

std::u16string Text(int id) {
    if (const auto* edit = Control<QPlainTextEdit>(id)) return edit->toPlainText().toStdU16String();
    return Control<QAbstractButton>(id)->text().toStdU16String();
}

Place PlaceOf(int id) {
    const QRect place = Control(id)->geometry();
    return {place.x(), place.y(), place.width(), place.height()};
}

Progress ProgressOf(int id) {
    const auto* bar = Control<QProgressBar>(id);
    return {bar->value(), bar->maximum()};
}

void OnTextChange(int id, std::function<void()> call) {
    QObject::connect(Control<QPlainTextEdit>(id), &QPlainTextEdit::textChanged, std::move(call));
}

std::vector<TreeWindow> TreeWindows() {
    std::vector<TreeWindow> windows;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        const auto* tree = qobject_cast<const QTreeWidget*>(widget);
        if (!tree) continue;
        windows.push_back({tree->windowTitle().toStdU16String(), tree->isVisible(), {}});
        TreeWindow& window = windows.back();
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            window.items.push_back(ReadItem(*tree->topLevelItem(i)));
        }
    }
    return windows;
}

void CloseTreeWindows() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QTreeWidget*>(widget)) widget->close();
    }
    ServeEvents();
}

}  // namespace driver
