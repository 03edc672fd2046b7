// SPDX-License-Identifier: MIT
#include "app/services/host.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

#include "app/services/help.h"
#include "app/services/module_library.h"
#include "app/services/poly_boolean.h"
#include "app/services/strings.h"
#include "base/file.h"
#include "base/process.h"
#include "base/text.h"
#include "platform/ui/host_windows.h"
#include "platform/windows.h"

namespace zr {
namespace {

constexpr int kViewWindow = 4;
constexpr std::size_t kLongestText = 1024;
constexpr const char* kModuleFile = ZR_MODULE_FILE;

// The module reports errors on the thread that called it.
thread_local std::string t_reportedError;

// Stands in for the 3D view window, which this host does not show: its value holds the view.
class ViewWindow final : public platform::HostControl {
public:
    explicit ViewWindow(ViewObject* view) : HostControl(reinterpret_cast<LONG_PTR>(view)) {}

    LRESULT OnMessage(UINT, WPARAM, LPARAM) override { return 0; }
};

// The file that ZR_MODULE names, else the module beside the program or in the library folder.
std::filesystem::path FindModule() {
    if (const auto chosen = EnvironmentVariable("ZR_MODULE")) return PathFromUtf8(*chosen);
    const std::filesystem::path folder = ProgramFile().parent_path();
    const std::filesystem::path libraries = (folder / ZR_LIBRARIES_FROM_PROGRAM).lexically_normal();
    for (const auto& candidate : {folder / kModuleFile, libraries / kModuleFile}) {
        if (std::filesystem::exists(candidate)) return candidate;
    }
    throw std::runtime_error(std::string("the module ") + kModuleFile + " was found neither in " +
                             PathToUtf8(folder) + " nor in " + PathToUtf8(libraries) +
                             "; set ZR_MODULE to its path");
}

}  // namespace

struct Host::Parts {
    std::optional<ViewWindow> viewWindow;
    ModuleEntry entry = nullptr;
};

Host::Host(const std::string& language) : HostAppBase(language), m_parts(std::make_unique<Parts>()) {
    AddExtension(kTypePolyBoolean, [] { return new PolyBooleanExtension; });
}

Host::~Host() = default;

void Host::LoadModule() {
    const ModuleLibrary module = LoadModuleLibrary(FindModule());
    m_parts->entry = module.entry;
    StartModule(module.instance, module.entry);
}

std::u16string Host::ModuleVersion() const {
    char16_t buffer[kLongestText] = {};
    m_parts->entry(ZRDLL_GETVERSIONSTRING, vl::ToWord(buffer + 0), 0);
    return buffer;
}

std::u16string Host::ModuleDescription() const {
    char16_t buffer[kLongestText] = {};
    m_parts->entry(ZRDLL_GETDESCRIPTION, vl::ToWord(buffer + 0), 0);
    return buffer;
}

vl::Word Host::InterfaceVersion() const {
    return m_parts->entry(ZRDLL_VERSION, 0, 0);
}

void Host::FailToCreate(const char* typeName) {
    throw std::runtime_error(std::string("the module offers no extension \"") + typeName + "\"");
}

void Host::ShowLog(bool on) {
    m_showLog = on;
    SetSetting("Features\\ShowTweenkitInfo", on ? 1 : 0);
}

void Host::SetView(ViewObject* view) {
    m_parts->viewWindow.reset();
    if (view != nullptr) m_parts->viewWindow.emplace(view);
}

std::string Host::TakeReportedError() {
    return std::exchange(t_reportedError, {});
}

HWND Host::GetMainWindow(int which) {
    const bool hasWindow = which == kViewWindow && m_parts->viewWindow;
    return hasWindow ? m_parts->viewWindow->Handle() : nullptr;
}

void Host::ShowHelpTopic(const char* page, int) {
    const std::filesystem::path file = HelpPage(page);
    if (!OpenInBrowser(file)) std::fprintf(stderr, "zr: help: %s\n", PathToUtf8(file).c_str());
}

void Host::LocalizeDialog(void* table, HWND dialog) {
    if (table != nullptr) zr::LocalizeDialog(*static_cast<const kernix::ModuleStrings*>(table), dialog);
}

void Host::ShowMessage(int severity, const std::string& text) {
    if (severity > 0) {
        t_reportedError = text;
    } else if (m_showLog) {
        std::fprintf(stderr, "zr: log: %s\n", Printable(text).c_str());
    }
}

}  // namespace zr
