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

// Which of the meshes that look alike at the same place count as duplicates.
enum class Repeats {
    kUnseen,   // those whose removal changes neither look nor behaviour
    kBlended,  // also blended ones, each of which covers more of what lies behind
    kAlike,    // also those distinguished by a node above that hides, moves or replaces them
};

// What a mesh needs for its node to show it; otherwise the node shows its camera or light, if it has one.
enum class Meshes { kAll, kFacesOrLines, kFaces };

struct SceneOptions {
    // Every scene of the document and the nodes outside of any, for operations on the whole document;
    // otherwise the default scene, or else the first, or else every root.
    bool whole = false;
    // Returns why an element (node, material, animation) must be kept; empty if it need not be.
    std::function<std::string(const gltf::Json& element)> keep;
    Repeats repeats = Repeats::kUnseen;
    Meshes meshes = Meshes::kAll;
    // Removes elements even if a reference that cannot be followed could name them.
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

// An element that operations must keep, and why.
struct KeptElement {
    gltf::Kind kind;
    std::size_t index;
    std::string reason;  // the place in the document that refers to it, or what SceneOptions::keep says
};

// What is built from a document. Lists are indexed as in the document unless stated otherwise; null for what
// is not in the scene.
struct SceneParts {
    vl::Ref<kernix::SceneModel> scene;
    NodeLayout layout;
    std::vector<kernix::NodeModel*> nodes;
    std::vector<kernix::MaterialModel*> materials;
    std::vector<kernix::AnimationModel*> animations;
    std::vector<LoadedChannel> channels;            // in document order
    std::vector<kernix::LayerModel*> layers;        // in the order of ZR_scene
    std::vector<kernix::ViewportModel*> viewports;  // likewise; empty if the document lists none
    std::vector<std::size_t> extrasNodes;           // nodes whose metadata came from extras
    std::vector<KeptElement> kept;
    std::vector<SkippedChannel> skipped;
    bool sharesTracks = false;               // some channels drive the same property
    bool force = false;                      // SceneOptions::force
    std::vector<std::uint32_t> nodeIndices;  // in the document, by the number of a scene's node
};

// A document with the changes of its scene written back.
struct WrittenBack {
    gltf::Document document;
    std::vector<gltf::OpaqueUse> refusals;  // what kept elements that the changes left unused
};

// A document and the scene made from it. Nodes, materials and animations map one to one; what the scene does
// not show (textures, other scenes' nodes, unknown extensions) stays in the document alone. Keys are read
// from the document on first use.
//
// A node that something in the document refers to gets a dummy if it shows nothing, and a mesh of such a node
// has a unique format value, so that no other equals it. A material that anything but the scene's meshes
// refers to is listed only if they use it too, and equals no other.
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

    // Returns the document with the changes made to the scene since it was loaded: nodes, materials,
    // animations and keys removed, merged or added, metadata cleared, layers and viewports. The object must
    // not be used afterwards. Throws gltf::Error; unless SceneOptions::force is set, also if a reference that
    // cannot be followed could name a removed element.
    gltf::Document WriteBack() &&;
    // Likewise, and removes the data that only removed elements used.
    WrittenBack WriteBackAndCollect() &&;

private:
    void ReleaseTables();

    std::unique_ptr<gltf::Document> m_document;  // keeps its address when the scene is moved
    std::unique_ptr<DocumentCurves> m_curves;    // the same
    SceneParts m_parts;
};

}  // namespace zr
