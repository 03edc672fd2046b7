// SPDX-License-Identifier: MIT
#include "kernix/host_app_base.h"

#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

#include "host/kinds.h"
#include "host/stream.h"
#include "kernix/array.h"
#include "kernix/format16.h"
#include "kernix/utf.h"

namespace kernix {
namespace {

class BreakContext final : public vl::Context {
public:
    void SetBreak(bool on) override { m_bBreak.store(on ? 1 : 0, std::memory_order_relaxed); }
};

}  // namespace

vl::Context* CreateContext() {
    return new BreakContext;
}

HostAppBase::HostAppBase(const std::string& language) : m_strings(language) {}
HostAppBase::~HostAppBase() = default;

vl::Word HostAppBase::StartModule(HINSTANCE module, ModuleEntry entry) {
    m_modules[module] = entry;
    return entry(ZRDLL_INIT, vl::ToWord<HostApp*>(this), vl::ToWord(module));
}

void HostAppBase::AddExtension(const std::string& typeName, std::function<vl::Extension*()> create) {
    m_extensions[typeName] = std::move(create);
}

void HostAppBase::RegisterExtensionType(HINSTANCE module, const char* typeName, int, int) {
    const auto found = m_modules.find(module);
    if (found == m_modules.end()) return;
    AddExtension(typeName, [entry = found->second, name = std::string(typeName)] {
        return vl::FromWord<vl::Extension*>(entry(ZRDLL_CREATE, vl::ToWord(name.c_str()), 0));
    });
}

vl::Extension* HostAppBase::CreateExtension(const char* typeName) try {
    const auto found = m_extensions.find(std::string_view(typeName));
    return found != m_extensions.end() ? found->second() : nullptr;
} catch (...) {
    return nullptr;
}

vl::Array* HostAppBase::CreateSortedArray(vl::ArrayComparator comparator) {
    return kernix::CreateSortedArray(comparator, nullptr);
}

vl::Array* HostAppBase::CreateArray() {
    return kernix::CreateArray();
}

vl::Interface* HostAppBase::CreateInstance(int, int, int classCode) {
    return classCode == vl::zr::kClassTransferStream ? vl::Stream::CreateInMemory() : nullptr;
}

vl::Context* HostAppBase::CreateContext(int, int) {
    return kernix::CreateContext();
}

int HostAppBase::GetSettingInt(int, const char* key, int fallback) {
    const auto found = m_settings.find(std::string_view(key));
    return found != m_settings.end() ? found->second : fallback;
}

void HostAppBase::ReportError(int severity, const char* text) {
    ShowMessage(severity, text);
}

void HostAppBase::ReportFailure(int code) {
    ShowMessage(1, "failure " + std::to_string(code));
}

void HostAppBase::LogLine(const char16_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    ShowMessage(0, ToUtf8(Format16(format, arguments)));
    va_end(arguments);
}

void HostAppBase::ShowMessage(int, const std::string& text) {
    std::fprintf(stderr, "%s\n", text.c_str());
}

void* HostAppBase::LoadModuleStrings(HINSTANCE module) {
    return const_cast<ModuleStrings*>(m_strings.Load(module));
}

const char16_t* HostAppBase::GetModuleString(void* table, int id) {
    return table != nullptr ? static_cast<const ModuleStrings*>(table)->Get(id) : u"";
}

// Windows and help are the concrete host's.
HWND HostAppBase::GetMainWindow(int) {
    return nullptr;
}
void HostAppBase::ShowHelpTopic(const char*, int) {}
void HostAppBase::LocalizeDialog(void*, HWND) {}

}  // namespace kernix
