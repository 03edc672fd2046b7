// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "host/ref.h"
#include "host/view_object.h"
#include "kernix/host_app_base.h"

namespace zr {

// The host application: loads the module as a shared library and offers it its services. One in a process.
class Host final : public kernix::HostAppBase {
public:
    // language: of the module's texts ("de", "fr_CA.UTF-8"); one that the module lacks means English.
    explicit Host(const std::string& language);
    ~Host() override;

    // Loads and initialises the module. Throws std::runtime_error when it cannot be found or is none.
    void LoadModule();

    std::u16string ModuleVersion() const;
    std::u16string ModuleDescription() const;
    // The number of the host interface that the module was made for.
    vl::Word InterfaceVersion() const;

    // A new extension of the type, with its one count. Throws std::runtime_error when there is none.
    template <typename T>
    vl::Ref<T> Create(const char* typeName) {
        auto extension = vl::Ref<vl::Extension>::Adopt(CreateExtension(typeName));
        auto* wanted = dynamic_cast<T*>(extension.Get());
        if (wanted == nullptr) FailToCreate(typeName);
        return vl::Ref<T>::Share(wanted);
    }

    // The view that the module reaches through the 3D view window; not owned, null for none.
    void SetView(ViewObject* view);

    // Whether log lines of the module go to standard error. Before the module is used.
    void ShowLog(bool on);

    // The last error that the module reported on this thread since this was last asked there. Errors are
    // shown by whoever asks for them.
    static std::string TakeReportedError();

    void* LoadModuleStrings(HINSTANCE module) override;
    const char16_t* GetModuleString(void* table, int id) override;
    HWND GetMainWindow(int which) override;
    void ShowHelpTopic(const char* page, int mode) override;
    void LocalizeDialog(void* table, HWND dialog) override;

protected:
    void ShowMessage(int severity, const std::string& text) override;

private:
    [[noreturn]] static void FailToCreate(const char* typeName);

    struct Parts;
    std::unique_ptr<Parts> m_parts;
    bool m_showLog = false;
};

}  // namespace zr
