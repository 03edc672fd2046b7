// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>

#include "host/host_app.h"
#include "host/module_entry.h"
#include "kernix/module_strings.h"

namespace kernix {

// A host application without windows: arrays, extensions by type name, the modules' texts, settings,
// messages. A concrete host derives from it and adds its windows, help and whatever else it has.
class KERNIX_API HostAppBase : public HostApp {
public:
    // language: of the modules' texts, a language or locale ("de", "fr_CA.UTF-8"); English where a module
    // lacks it.
    explicit HostAppBase(const std::string& language = "en");
    HostAppBase(const HostAppBase&) = delete;
    HostAppBase& operator=(const HostAppBase&) = delete;
    virtual ~HostAppBase();

    // Initialises a loaded module: it then registers its type names, which CreateExtension asks it for.
    // module is its handle from the system's loader, entry its function ZRDLLFunc. Returns the module's
    // result. The module must stay loaded as long as this host or an object of the module lives.
    vl::Word StartModule(HINSTANCE module, ModuleEntry entry);

    // An extension that the host itself offers.
    void AddExtension(const std::string& typeName, std::function<vl::Extension*()> create);

    void SetSetting(const std::string& key, int value) { m_settings[key] = value; }

    void* LoadModuleStrings(HINSTANCE module) override;
    const char16_t* GetModuleString(void* table, int id) override;
    void RegisterExtensionType(HINSTANCE module, const char* typeName, int a, int b) override;
    vl::Array* CreateSortedArray(vl::ArrayComparator comparator) override;
    vl::Array* CreateArray() override;
    vl::Interface* CreateInstance(int a, int b, int classCode) override;
    vl::Extension* CreateExtension(const char* typeName) override;
    void ReportError(int severity, const char* text) override;
    void ReportFailure(int code) override;
    HWND GetMainWindow(int which) override;
    int GetSettingInt(int mode, const char* key, int fallback) override;
    void ShowHelpTopic(const char* page, int mode) override;
    void LocalizeDialog(void* table, HWND dialog) override;
    void LogLine(const char16_t* format, ...) override;
    vl::Context* CreateContext(int a, int b) override;

protected:
    // Shows a message to the user, in UTF-8; here on standard error. severity 0 is a log line.
    virtual void ShowMessage(int severity, const std::string& text);

private:
    StringTables m_strings;
    std::map<HINSTANCE, ModuleEntry> m_modules;
    std::map<std::string, std::function<vl::Extension*()>, std::less<>> m_extensions;
    std::map<std::string, int, std::less<>> m_settings;
};

// A new context with count 1; null when memory runs out.
KERNIX_API vl::Context* CreateContext();

}  // namespace kernix
