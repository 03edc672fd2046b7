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

    // Loads and initialises the module. Throws std::runtime_error when it cannot be found or is not a module.
    void LoadModule();

    std::u16string ModuleVersion() const;
    std::u16string ModuleDescription() const;
    // The version of the host interface that the module was built for.
    vl::Word InterfaceVersion() const;

    // Creates an extension of the type. Throws std::runtime_error when no module offers it.
    template <typename T>
    vl::Ref<T> Create(const char* typeName) {
        auto extension = vl::Ref<vl::Extension>::Adopt(CreateExtension(typeName));
        auto* wanted = dynamic_cast<T*>(extension.Get());
        if (wanted == nullptr) FailToCreate(typeName);
        return vl::Ref<T>::Share(wanted);
    }

    // The view that the module reaches through the 3D view window, on this thread; not owned, null for none.
    void SetView(ViewObject* view);

    // Whether the module's log lines go to standard error. Call before using the module.
    void ShowLog(bool on);

    // Returns and clears the last error that the module reported on this thread; it is not shown otherwise.
    static std::string TakeReportedError();

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
