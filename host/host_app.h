// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/context.h"
#include "host/extension.h"
#include "host/window_types.h"

// The host application, handed to a module once, with ZRDLL_INIT. It outlives every object of the module. It
// is called on the thread on which it called the module and, during a run of the cleaner's dialog, on the
// run's worker thread. A host need not offer windows, texts or help: kernix::HostAppBase is one without
// windows. The order of functions and fields is the binary interface (host/api.h).
class HostApp {
public:
    // Opens the localized texts of the module with that handle; null when it has none. The host owns them.
    virtual void* LoadModuleStrings(HINSTANCE module) = 0;

    // The text in the user's language, in English where that language lacks the id, empty when both do and
    // for a null table. Never null; valid as long as the host.
    virtual const char16_t* GetModuleString(void* table, int id) = 0;

    // Makes the type name known: CreateExtension asks the module for it from then on. a and b are 0.
    virtual void RegisterExtensionType(HINSTANCE module, const char* typeName, int a, int b) = 0;

    // New, empty arrays; with a comparator FindSorted works. Null when memory runs out.
    virtual vl::Array* CreateSortedArray(vl::ArrayComparator comparator) = 0;
    virtual vl::Array* CreateArray() = 0;

    // vl::zr::kClassTransferStream: an empty vl::Stream in memory. Null for other codes. a and b are 0.
    virtual vl::Interface* CreateInstance(int a, int b, int classCode) = 0;

    // A new extension by its registered type name, which is case-sensitive. Null when nothing offers it.
    virtual vl::Extension* CreateExtension(const char* typeName) = 0;

    // Shows an error to the user. severity: 1.
    virtual void ReportError(int severity, const char* text) = 0;

    // Reports a failure that has no text of its own. code: 1.
    virtual void ReportFailure(int code) = 0;

    // 0: the main window, which becomes the parent of a module's windows; 4: the 3D view window, whose window
    // value 0 holds a ViewObject. Null when there is none.
    virtual HWND GetMainWindow(int which) = 0;

    // A setting of the user by its key ("Features\\ShowTweenkitInfo"), or fallback when it is not set.
    virtual int GetSettingInt(int mode, const char* key, int fallback) = 0;

    // Shows a page of the help by its file's name.
    virtual void ShowHelpTopic(const char* page, int mode) = 0;

    // Replaces every caption of the dialog and its controls of the form "#" and a string id by that text.
    virtual void LocalizeDialog(void* table, HWND dialog) = 0;

    // Writes a line to the log, formatted as by printf: %d, %u, %s (UTF-16) and %%.
    virtual void LogLine(const char16_t* format, ...) = 0;

    // A new context without a break. a and b are 0. Null when memory runs out.
    virtual vl::Context* CreateContext(int a, int b) = 0;

protected:
    ~HostApp() = default;
};
