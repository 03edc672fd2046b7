// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

// A user for tests: sees and operates the windows that the program opens, independently of the calls that
// opened them. Everything here is called on the window thread. Controls are named by their id in the open
// dialog; places are in pixels of its client area.
namespace driver {

enum class Key { kTab, kEnter, kEscape, kSpace, kF1 };

struct Place {
    int x, y, width, height;

    bool operator==(const Place&) const = default;
    friend void PrintTo(const Place& p, std::ostream* out) {
        *out << p.x << ' ' << p.y << ' ' << p.width << ' ' << p.height;
    }
};

struct Progress {
    int value, maximum;
};

// Initialises windowing on this thread; returns the error's text where that fails.
std::string Start();

// The steps run in the event loop of the next dialog, once it is active.
void WhenDialogOpens(std::function<void()> steps);
// Serves the events that have arrived so far.
void ServeEvents();
// Serves events until the condition holds; false when it does not within ten seconds.
bool WaitFor(const std::function<bool()>& condition);
// Runs the task in the event loop, after everything posted before.
void Post(std::function<void()> task);
bool IsWindowThread();

bool HasDialog();
std::u16string Title();
Place Area();  // of the client area: at 0, 0
// As the close button of the frame does.
void CloseDialog();

void Press(Key key);
void Click(int id);
// Presses the button by a call, visible or not.
void Trigger(int id);
int FocusedId();
// The control that takes a click at the middle of this one.
int ClickedAt(int id);

bool IsVisible(int id);
bool IsEnabled(int id);
void SetEnabled(int id, bool enabled);
bool IsChecked(int id);
void SetChecked(int id, bool checked);
// Lines are separated by "\n".
std::u16string Text(int id);
Place PlaceOf(int id);
Progress ProgressOf(int id);
// Calls `call` whenever the text of that control changes, until the dialog closes.
void OnTextChange(int id, std::function<void()> call);

// The open windows that show a tree, outside dialogs.
struct TreeItem {
    std::u16string text;
    std::vector<TreeItem> children;
};
struct TreeWindow {
    std::u16string title;
    bool isVisible;
    std::vector<TreeItem> items;
};
std::vector<TreeWindow> TreeWindows();
void CloseTreeWindows();

}  // namespace driver
