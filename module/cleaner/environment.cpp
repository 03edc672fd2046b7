// SPDX-License-Identifier: MIT
#include "host/hdr_helper.h"
#include "host/view_object.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"
#include "platform/windows.h"

namespace {

constexpr int kViewWindow = 4;

}  // namespace

int CCleanerImpl::RemoveEnvMapsAndBackplates(vl::zr::Scene* scene, vl::Context* context,
                                             ChangeRecord* record) {
    if (scene == nullptr) return 0;
    return zrt::Counted([&](int& count) {
        const HWND window = g_pHost->GetMainWindow(kViewWindow);
        auto* view = reinterpret_cast<ViewObject*>(GetWindowLongPtrA(window, 0));
        if (view != nullptr) view->ClearBackdrop(record);

        const auto extension = vl::Ref<vl::Extension>::Adopt(g_pHost->CreateExtension(kTypeHdrHelper));
        auto* helper = dynamic_cast<zr_HDR_HELPER*>(extension.Get());
        if (helper != nullptr) count = helper->RemoveEnvironment(scene, context, record);
    });
}
