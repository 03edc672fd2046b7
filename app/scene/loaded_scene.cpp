// SPDX-License-Identifier: MIT
#include "app/scene/loaded_scene.h"

#include "app/scene/document_writer.h"
#include "app/scene/scene_builder.h"
#include "app/scene/scene_changes.h"
#include "base/text.h"

namespace zr {

std::string SkippedChannel::Place() const {
    return Join("/animations/", animation, "/channels/", channel);
}

LoadedScene::LoadedScene(gltf::Document document, const SceneOptions& options)
    : m_document(std::make_unique<gltf::Document>(std::move(document))),
      m_curves(std::make_unique<DocumentCurves>(*m_document)),
      m_parts(SceneBuilder(*m_document, *m_curves, options).Build()) {}

LoadedScene::~LoadedScene() = default;

std::optional<std::size_t> LoadedScene::IndexOf(const vl::zr::Node* node) const {
    if (node == nullptr) return std::nullopt;
    const std::size_t number = static_cast<const kernix::NodeModel*>(node)->GetNumber();
    if (number >= m_parts.nodeIndices.size()) return std::nullopt;
    return m_parts.nodeIndices[number];
}

std::string LoadedScene::NameOf(const vl::zr::Node& node) const {
    const std::string& name = static_cast<const kernix::NodeModel&>(node).GetNameText();
    return name.empty() ? Join("#", IndexOf(&node).value_or(0)) : name;
}

gltf::Document LoadedScene::WriteBack() && {
    const DocumentChanges changes = ChangesOf(*this);
    ReleaseTables();
    static_cast<void>(WriteDocument(*m_document, changes));
    return std::move(*m_document);
}

WrittenBack LoadedScene::WriteBackAndCollect() && {
    DocumentChanges changes = ChangesOf(*this);
    changes.takesWhatItLeaves = true;
    ReleaseTables();
    std::vector<gltf::OpaqueUse> refusals = WriteDocument(*m_document, changes);
    return {std::move(*m_document), std::move(refusals)};
}

// Frees the tables that writing does not use, since writing needs memory of its own.
void LoadedScene::ReleaseTables() {
    m_parts.layout = {};
    m_parts.nodes = {};
    m_parts.nodeIndices = {};
}

}  // namespace zr
