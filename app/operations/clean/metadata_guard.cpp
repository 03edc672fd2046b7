// SPDX-License-Identifier: MIT
#include "app/operations/clean/metadata_guard.h"

#include "host/var.h"
#include "kernix/scene/plain_objects.h"

namespace zr {
namespace {

bool HasMetadata(kernix::NodeModel& node) {
    vl::VarMap* metadata = node.GetMetadata(false);
    return metadata != nullptr && metadata->GetCount() != 0;
}

}  // namespace

MetadataGuard::MetadataGuard(LoadedScene& loaded) : m_scene(loaded.Scene()) {
    for (const std::size_t index : loaded.ExtrasNodes()) {
        kernix::NodeModel* node = loaded.Node(index);
        if (node->m_pObject != nullptr) continue;
        node->SetObject(vl::Ref<vl::zr::Object3D>::AdoptNew(kernix::CreateDummy()));
        m_placeholders.push_back(node);
    }
    m_scene.m_mayDelete = [this](kernix::NodeModel& node) { return MayDelete(node); };
    m_scene.m_onNotify = [this](int, int, int) { ReleasePlaceholders(); };
}

MetadataGuard::~MetadataGuard() {
    m_scene.m_mayDelete = nullptr;
    m_scene.m_onNotify = nullptr;
}

bool MetadataGuard::MayDelete(kernix::NodeModel& node) {
    if (dynamic_cast<kernix::MeshModel*>(node.m_pObject) == nullptr || !HasMetadata(node)) return true;
    ++m_spared;
    return false;
}

void MetadataGuard::ReleasePlaceholders() {
    std::erase_if(m_placeholders, [](kernix::NodeModel* node) {
        if (HasMetadata(*node)) return false;
        node->SetObject(nullptr);
        return true;
    });
}

}  // namespace zr
