// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/base.h"

// Windows, dialogs and their controls. All windows belong to the thread that opens the first one; on any
// other thread only SendMessageA and PostMessageA have an effect. Window handles are never reused, and a call
// with the handle of a destroyed window fails (0, null, FALSE). Where no window can be opened, because the
// user-interface library or a display is missing, CreateWindowExA returns null and DialogBoxParamA -1. Wide
// text is UTF-16; narrow text is in the code page of the host.

struct HMENU__;
using HMENU = HMENU__*;
using HTREEITEM = struct TreeItem*;

// A dialog procedure returns non-zero for a message that it has handled.
using DLGPROC = INT_PTR (*)(HWND, UINT, WPARAM, LPARAM);
using WNDENUMPROC = BOOL (*)(HWND, LPARAM);

constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_HELP = 0x0053;
constexpr UINT WM_INITDIALOG = 0x0110;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT PBM_SETRANGE = 0x0401;
constexpr UINT PBM_SETPOS = 0x0402;
constexpr UINT TVM_INSERTITEMA = 0x1100;

constexpr int IDCANCEL = 2;
constexpr UINT BST_UNCHECKED = 0;
constexpr UINT BST_CHECKED = 1;
constexpr int SW_HIDE = 0;
constexpr int SW_SHOW = 5;
constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000);

constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
constexpr DWORD TVS_HASBUTTONS = 0x0001;
constexpr DWORD TVS_HASLINES = 0x0002;
constexpr DWORD TVS_LINESATROOT = 0x0004;
constexpr DWORD TVS_SHOWSELALWAYS = 0x0020;

constexpr UINT TVIF_TEXT = 0x0001;
constexpr UINT TVIF_IMAGE = 0x0002;
constexpr UINT TVIF_PARAM = 0x0004;
constexpr UINT TVIF_SELECTEDIMAGE = 0x0020;
inline const HTREEITEM TVI_ROOT = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0x10000));
inline const HTREEITEM TVI_LAST = reinterpret_cast<HTREEITEM>(static_cast<LONG_PTR>(-0xFFFE));

struct TVITEMA {
    UINT mask;
    HTREEITEM hItem;
    UINT state;
    UINT stateMask;
    LPSTR pszText;
    int cchTextMax;
    int iImage;
    int iSelectedImage;
    int cChildren;
    LPARAM lParam;
};

// TVM_INSERTITEMA returns the new item, or 0 when the parent is not an item of the tree. The item becomes the
// last of its siblings.
struct TVINSERTSTRUCTA {
    HTREEITEM hParent;
    HTREEITEM hInsertAfter;
    TVITEMA item;
};

// Only the class "SysTreeView32" is supported.
HWND CreateWindowExA(DWORD exStyle, LPCSTR windowClass, LPCSTR title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU menu, HINSTANCE module, LPVOID parameter);

// Runs the dialog of that resource until EndDialog, whose result it returns; other windows of the program
// take no input meanwhile. -1 when the dialog cannot be created.
INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR dialogResource, HWND parent, DLGPROC procedure,
                        LPARAM parameter);
BOOL EndDialog(HWND dialog, INT_PTR result);

// From another thread: waits for the window's result (0 if the window has been destroyed by then). Sent
// messages are served before posted ones.
LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

HWND GetDlgItem(HWND dialog, int id);
BOOL EnumChildWindows(HWND parent, WNDENUMPROC callback, LPARAM parameter);
BOOL CheckDlgButton(HWND dialog, int id, UINT check);
UINT IsDlgButtonChecked(HWND dialog, int id);

// At most size - 1 characters and a terminator; the number of characters copied.
int GetWindowTextW(HWND window, LPWSTR text, int size);
BOOL SetWindowTextW(HWND window, LPCWSTR text);
BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text);

BOOL ShowWindow(HWND window, int command);
BOOL EnableWindow(HWND window, BOOL enable);
HWND SetFocus(HWND window);

// Pixels of the screen.
BOOL GetWindowRect(HWND window, RECT* rect);
BOOL ScreenToClient(HWND window, POINT* point);
// Pixels of the parent's client area.
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);

BOOL SetPropA(HWND window, LPCSTR name, HANDLE value);
HANDLE GetPropA(HWND window, LPCSTR name);
HANDLE RemovePropA(HWND window, LPCSTR name);

// A value that the window's creator stored with it; 0 for a window without values.
LONG_PTR GetWindowLongPtrA(HWND window, int index);
