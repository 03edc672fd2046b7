// SPDX-License-Identifier: MIT
#include "kernix/scene/change_record_model.h"

#include <utility>

#include "kernix/scene/animation_model.h"
#include "kernix/scene/material_model.h"
#include "kernix/scene/node_model.h"
#include "kernix/scene/viewport_model.h"
#include "kernix/utf.h"

namespace kernix {

void ChangeRecordModel::Begin() {
    m_entries.clear();
    m_caption.clear();
    m_open = true;
}

void ChangeRecordModel::End(const char16_t* caption) {
    m_caption = caption != nullptr ? caption : u"";
    m_open = false;
}

void ChangeRecordModel::Keep(Change change, vl::Interface* object, std::string name) {
    m_entries.push_back({change, vl::Ref<vl::Interface>::Share(object), std::move(name)});
}

void ChangeRecordModel::RecordLayerRemoval(vl::zr::Layer* layer, int) {
    Keep(Change::kLayerRemoval, layer, static_cast<LayerModel*>(layer)->m_name);
}

void ChangeRecordModel::RecordNodeRemoval(vl::zr::Node* node, int) {
    Keep(Change::kNodeRemoval, node, static_cast<NodeModel*>(node)->GetNameText());
}

void ChangeRecordModel::RecordMaterialRemoval(vl::zr::Material* material, int) {
    Keep(Change::kMaterialRemoval, material,
         static_cast<MaterialModel*>(material)->GetNameText().value_or(""));
}

void ChangeRecordModel::RecordAnimationCreation(vl::zr::Scene*, vl::zr::Animation* animation, int) {
    Keep(Change::kAnimationCreation, animation, ToUtf8(static_cast<AnimationModel*>(animation)->m_name));
}

void ChangeRecordModel::RecordAnimationRemoval(vl::zr::Scene*, vl::zr::Animation* animation, int) {
    Keep(Change::kAnimationRemoval, animation, ToUtf8(static_cast<AnimationModel*>(animation)->m_name));
}

void ChangeRecordModel::RecordAnimationItemRemoval(vl::Interface* item, int) {
    Keep(Change::kAnimationItemRemoval, item, {});
}

void ChangeRecordModel::RecordViewportRemoval(vl::zr::Scene*, vl::zr::Viewport* viewport, int) {
    Keep(Change::kViewportRemoval, viewport, ToUtf8(viewport->m_strName.Text()));
}

void ChangeRecordModel::RecordTrackCreation(vl::Interface*, vl::Interface* trackObject) {
    Keep(Change::kTrackCreation, trackObject, {});
}

}  // namespace kernix
