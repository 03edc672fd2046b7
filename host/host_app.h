// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/context.h"
#include "host/extension.h"
#include "host/window_types.h"

// The host application, handed to a module once. It outlives every object of the module. Called on the
// thread of the module's caller, and in a cleaner's dialog run on its worker thread.
class HostApp {
public:
    // Opens the localized string table of the module: null when it has none. Owned by the host.
    virtual void* LoadModuleStrings(HINSTANCE module) = 0;

    // The text in the user's language, in English where that language lacks the id, empty when both do.
    // Valid while the host lives; never null. Empty for a null table.
    virtual const char16_t* GetModuleString(void* table, int id) = 0;
    virtual void RegisterExtensionType(HINSTANCE module, const char* typeName, int a, int b) = 0;
    virtual vl::Array* CreateSortedArray(vl::ArrayComparator comparator) = 0;  // the caller releases it
    virtual vl::Array* CreateArray() = 0;                                      // the caller releases it

    // vl::zr::kClassTransferStream: an empty vl::Stream. Null for other codes. The caller releases it.
    virtual vl::Interface* CreateInstance(int a, int b, int classCode) = 0;
    virtual vl::Extension* CreateExtension(const char* typeName) = 0;  // or null; the caller releases it
    virtual void ReportError(int severity, const char* text) = 0;
    virtual void ReportFailure(int code) = 0;

    // 0: the main window; 4: the 3D view window, whose window value 0 holds a ViewObject. Null without one.
    virtual HWND GetMainWindow(int which) = 0;
    virtual int GetSettingInt(int mode, const char* key, int fallback) = 0;
    virtual void ShowHelpTopic(const char* page, int mode) = 0;

    // Replaces every caption of the dialog and its controls of the form "#" and a string id by that text.
    virtual void LocalizeDialog(void* table, HWND dialog) = 0;
    virtual void LogLine(const char16_t* format, ...) = 0;
    virtual vl::Context* CreateContext(int a, int b) = 0;  // the caller releases it

protected:
    ~HostApp() = default;
};
