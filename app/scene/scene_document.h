// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <vector>

#include "app/gltf/document.h"
#include "host/ref.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// A glTF document and the scene made from it. The document stays as it was read until WriteChanges brings it
// up to the scene. Nodes outside the document's scene are not in the model and stay untouched.
struct SceneDocument {
    // Throws gltf::Error.
    static SceneDocument Load(const std::filesystem::path& file);

    gltf::Document document;
    vl::Ref<kernix::SceneModel> scene;

    // By index in the document; null for what the scene does not show. NodeModel::m_source leads back.
    std::vector<kernix::NodeModel*> nodes;
    std::vector<kernix::MaterialModel*> materials;
    std::vector<kernix::AnimationModel*> animations;

    // The viewport that plays every animation of a document that lists no viewports; never written. Null
    // where the document lists its own.
    kernix::ViewportModel* playsAll = nullptr;
};

// Edits the document to what the scene now holds: nodes, materials, animations, layers, viewports and metadata
// that went leave it, merged materials are replaced at every use, and animations that were made or whose
// tracks changed are written. Without changes the document stays equal. What is left without a reference
// (accessors, images, buffer bytes) stays; gltf::CollectGarbage takes it.
void WriteChanges(SceneDocument& loaded);

}  // namespace zr
