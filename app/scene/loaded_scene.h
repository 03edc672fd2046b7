// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/scene/document_curves.h"
#include "app/scene/node_layout.h"
#include "gltf/document.h"
#include "gltf/references.h"
#include "host/ref.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// Which of the meshes that look alike at one place count as duplicates, so that one is enough.
enum class Repeats {
    kUnseen,   // those without which the scene looks and behaves the same
    kBlended,  // also blended ones: every further one covers more of what lies behind
    kAlike,    // also those distinguished by a node above that hides, moves or replaces them
};

// What a mesh has that a node shows; without it the node shows its camera or light, if it has one.
enum class Meshes { kAll, kFacesOrLines, kFaces };

struct SceneOptions {
    // Every scene of the document and what stands outside of any, for what changes the whole document; else
    // its default scene, or its first, or every root.
    bool whole = false;
    // Why an element (node, material, animation) must stay whatever else holds; empty: it need not.
    std::function<std::string(const gltf::Json& element)> keep;
    Repeats repeats = Repeats::kUnseen;
    Meshes meshes = Meshes::kAll;
    // Elements may be removed even where something that cannot be followed could refer to them.
    bool force = false;
    // Called periodically with progress from 0 to 1; may throw.
    std::function<void(double done)> progress = [](double) {};
};

// One channel of the document as a curve the scene plays.
struct LoadedChannel {
    std::size_t animation;
    std::size_t channel;
    vl::zr::Controller* controller = nullptr;
    int keyType = 0;  // of a transform controller; 0 for other controllers
};

enum class Skipped {
    kUnreadable,  // the keys are stored in a form that cannot be read
    kNotShown,    // nothing in the scene shows what they move
};

// A channel of the document that the scene does not play. The document keeps it as it is.
struct SkippedChannel {
    std::size_t animation;
    std::size_t channel;
    Skipped reason;
    std::optional<std::size_t> node;  // whose transform it moves

    std::string Place() const;  // in the document
};

// Why an element stays that an operation might otherwise take.
struct KeptElement {
    gltf::Kind kind;
    std::size_t index;
    std::string reason;  // the place in the document that refers to it, or what SceneOptions::keep says
};

// What is made from a document. By index in the document unless stated otherwise; null for what is not in the
// scene.
struct SceneParts {
    vl::Ref<kernix::SceneModel> scene;
    NodeLayout layout;
    std::vector<kernix::NodeModel*> nodes;
    std::vector<kernix::MaterialModel*> materials;
    std::vector<kernix::AnimationModel*> animations;
    std::vector<LoadedChannel> channels;            // in document order
    std::vector<kernix::LayerModel*> layers;        // in the order of ZR_scene
    std::vector<kernix::ViewportModel*> viewports;  // the same; empty when the host gave its own
    std::vector<std::size_t> extrasNodes;           // nodes whose metadata came from extras
    std::vector<KeptElement> kept;
    std::vector<SkippedChannel> skipped;
    bool sharesTracks = false;               // some channels drive the same property
    bool force = false;                      // SceneOptions::force
    std::vector<std::uint32_t> nodeIndices;  // of the scene's nodes by their number: in the document
};

// A document that its scene was written back into.
struct WrittenBack {
    gltf::Document document;
    std::vector<gltf::OpaqueUse> refusals;  // why what the changes left unused stays in it
};

// A document and the scene made from it. Nodes, materials and animations carry over one by one; what the
// scene does not show (textures, other scenes' nodes, unknown extensions) stays in the document alone. Keys
// are read from the document on first use.
//
// A node that something in the document refers to gets a dummy when it shows nothing. A mesh of such a node
// has a format value of its own: nothing else equals it. Materials that something else than the scene's
// meshes refers to are not listed unless those use them too, and are never equal to others.
class LoadedScene {
public:
    explicit LoadedScene(gltf::Document document, const SceneOptions& options = {});
    LoadedScene(LoadedScene&&) = default;
    ~LoadedScene();

    kernix::SceneModel& Scene() { return *m_parts.scene; }
    const kernix::SceneModel& Scene() const { return *m_parts.scene; }
    gltf::Document& Document() { return *m_document; }
    const gltf::Document& Document() const { return *m_document; }

    // By index in the document; null for what is not in the scene.
    kernix::NodeModel* Node(std::size_t index) const { return m_parts.nodes[index]; }
    kernix::MaterialModel* Material(std::size_t index) const { return m_parts.materials[index]; }
    kernix::AnimationModel* Animation(std::size_t index) const { return m_parts.animations[index]; }

    // A node's index in the document; nothing for null and for one that the document does not have.
    std::optional<std::size_t> IndexOf(const vl::zr::Node* node) const;
    // How messages name a node: by its name, or "#4".
    std::string NameOf(const vl::zr::Node& node) const;

    const SceneParts& Parts() const { return m_parts; }
    const std::vector<std::size_t>& ExtrasNodes() const { return m_parts.extrasNodes; }
    const std::vector<KeptElement>& Kept() const { return m_parts.kept; }
    const std::vector<SkippedChannel>& Skipped() const { return m_parts.skipped; }

    // The document with what changed in the scene since it was made: nodes, materials, animations and keys
    // that went, were merged or were added, metadata that was emptied, layers and viewports. Ends the scene.
    // Throws gltf::Error, also (unless SceneOptions::force) when an element goes that something which cannot
    // be followed could refer to.
    gltf::Document WriteBack() &&;
    // The same without the data that only what went had used.
    WrittenBack WriteBackAndCollect() &&;

private:
    void ReleaseTables();

    std::unique_ptr<gltf::Document> m_document;  // keeps its address when the scene is moved
    std::unique_ptr<DocumentCurves> m_curves;    // the same
    SceneParts m_parts;
};

}  // namespace zr
