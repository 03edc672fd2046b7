// SPDX-License-Identifier: MIT
#include <chrono>
#include <iterator>
#include <memory>
#include <utility>

#include "platform/windows.h"
#include "tests/platform/ui_driver.h"

namespace driver {
namespace {

constexpr UINT kTask = WM_APP;

DWORD g_thread = 0;
// A message-only window: tasks posted to it run in any event loop.
HWND g_tasks = nullptr;
std::function<void()> g_steps;
std::function<void()> g_onTextChange;
WNDPROC g_textProcedure = nullptr;

bool IsOfClass(HWND window, const char* name) {
    char found[32];
    return GetClassNameA(window, found, sizeof found) != 0 && lstrcmpiA(found, name) == 0;
}

BOOL CALLBACK TakeDialog(HWND window, LPARAM found) {
    if (!IsOfClass(window, "#32770") || !IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

HWND Dialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(g_thread, TakeDialog, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

HWND Control(int id) {
    return GetDlgItem(Dialog(), id);
}

LRESULT CALLBACK RunTask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kTask) return DefWindowProcA(window, message, wParam, lParam);
    const std::unique_ptr<std::function<void()>> task(reinterpret_cast<std::function<void()>*>(lParam));
    (*task)();
    return 0;
}

// A dialog is shown only once the message queue is empty, so this polls.
void CALLBACK RunSteps(HWND, UINT, UINT_PTR timer, DWORD) {
    if (!Dialog() || GetForegroundWindow() != Dialog()) return;
    KillTimer(g_tasks, timer);
    std::exchange(g_steps, {})();
}

LRESULT CALLBACK WatchText(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = CallWindowProcA(g_textProcedure, window, message, wParam, lParam);
    if (message == WM_SETTEXT) g_onTextChange();
    return result;
}

std::u16string WindowText(HWND window) {
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)), 0);
    GetWindowTextW(window, platform::Wide(text.data()), static_cast<int>(text.size()) + 1);
    std::erase(text, u'\r');
    return text;
}

std::vector<TreeItem> ReadItems(HWND tree, HTREEITEM first) {
    std::vector<TreeItem> items;
    for (HTREEITEM at = first; at; at = TreeView_GetNextSibling(tree, at)) {
        char16_t text[512];
        TVITEMW item{};
        item.mask = TVIF_TEXT;
        item.hItem = at;
        item.pszText = platform::Wide(text);
        item.cchTextMax = static_cast<int>(std::size(text));
        SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        items.push_back({text, ReadItems(tree, TreeView_GetChild(tree, at))});
    }
    return items;
}

BOOL CALLBACK TakeTree(HWND window, LPARAM found) {
    if (IsOfClass(window, "SysTreeView32")) reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
    return TRUE;
}

std::vector<HWND> Trees() {
    std::vector<HWND> trees;
    EnumThreadWindows(g_thread, TakeTree, reinterpret_cast<LPARAM>(&trees));
    return trees;
}

}  // namespace

std::string Start() {
    if (g_tasks) return {};
    g_thread = GetCurrentThreadId();
    // A host has the common controls loaded; here the test is the host.
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS | ICC_TREEVIEW_CLASSES};
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = RunTask;
    windowClass.lpszClassName = "DriverTasks";
    if (!InitCommonControlsEx(&controls) || !RegisterClassA(&windowClass)) return "no window classes";
    g_tasks = CreateWindowA("DriverTasks", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    return g_tasks ? "" : "no window";
}

void WhenDialogOpens(std::function<void()> steps) {
    g_steps = std::move(steps);
    SetTimer(g_tasks, 1, 10, RunSteps);
}

void ServeEvents() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (HasDialog() && IsDialogMessageA(Dialog(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

bool WaitFor(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
        ServeEvents();
    }
    return true;
}

void Post(std::function<void()> task) {
    PostMessageA(g_tasks, kTask, 0, reinterpret_cast<LPARAM>(new std::function<void()>(std::move(task))));
}

bool IsWindowThread() {
    return GetCurrentThreadId() == g_thread;
}

bool HasDialog() {
    return Dialog() != nullptr;
}

std::u16string Title() {
    return WindowText(Dialog());
}

Place Area() {
    RECT area{};
    GetClientRect(Dialog(), &area);
    return {0, 0, static_cast<int>(area.right), static_cast<int>(area.bottom)};
}

void CloseDialog() {
    SendMessageA(Dialog(), WM_SYSCOMMAND, SC_CLOSE, 0);
    ServeEvents();
}

void Press(Key key) {
    constexpr WORD kKeys[] = {VK_TAB, VK_RETURN, VK_ESCAPE, VK_SPACE, VK_F1};
    INPUT strokes[2]{};
    for (INPUT& stroke : strokes) {
        stroke.type = INPUT_KEYBOARD;
        stroke.ki.wVk = kKeys[static_cast<int>(key)];
    }
    strokes[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, strokes, sizeof strokes[0]);
    ServeEvents();
}

void Click(int id) {
    const HWND control = Control(id);
    PostMessageA(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(8, 8));
    PostMessageA(control, WM_LBUTTONUP, 0, MAKELPARAM(8, 8));
    ServeEvents();
}

void Trigger(int id) {
    SendMessageA(Control(id), BM_CLICK, 0, 0);
}

int FocusedId() {
    const HWND focus = GetFocus();
    return focus ? GetDlgCtrlID(focus) : -1;
}

int ClickedAt(int id) {
    const Place place = PlaceOf(id);
    POINT middle{place.x + place.width / 2, place.y + place.height / 2};
    ClientToScreen(Dialog(), &middle);
    return GetDlgCtrlID(WindowFromPoint(middle));
}

bool IsVisible(int id) {
    return IsWindowVisible(Control(id));
}
bool IsEnabled(int id) {
    return IsWindowEnabled(Control(id));
}
void SetEnabled(int id, bool enabled) {
    EnableWindow(Control(id), enabled);
}
bool IsChecked(int id) {
    return SendMessageA(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}
void SetChecked(int id, bool checked) {
    SendMessageA(Control(id), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

std::u16string Text(int id) {
    return WindowText(Control(id));
}

Place PlaceOf(int id) {
    RECT place{};
    GetWindowRect(Control(id), &place);
    MapWindowPoints(nullptr, Dialog(), reinterpret_cast<POINT*>(&place), 2);
    return {static_cast<int>(place.left), static_cast<int>(place.top),
            static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top)};
}

Progress ProgressOf(int id) {
    PBRANGE range{};
    SendMessageA(Control(id), PBM_GETRANGE, FALSE, reinterpret_cast<LPARAM>(&range));
    return {static_cast<int>(SendMessageA(Control(id), PBM_GETPOS, 0, 0)), range.iHigh};
}

void OnTextChange(int id, std::function<void()> call) {
    g_onTextChange = std::move(call);
    g_textProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(Control(id), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WatchText)));
}

std::vector<TreeWindow> TreeWindows() {
    std::vector<TreeWindow> windows;
    for (const HWND tree : Trees()) {
        windows.push_back(
            {WindowText(tree), IsWindowVisible(tree) != 0, ReadItems(tree, TreeView_GetRoot(tree))});
    }
    return windows;
}

void CloseTreeWindows() {
    for (const HWND tree : Trees()) SendMessageA(tree, WM_CLOSE, 0, 0);
    ServeEvents();
}

}  // namespace driver
