// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/scene/curves.h"
#include "app/scene/loaded_scene.h"
#include "gltf/references.h"

namespace zr {

// Brings a scene's changes into its document.
class SceneWriter {
public:
    explicit SceneWriter(LoadedScene& loaded);

    void Run();

private:
    void Materials();
    void Nodes();
    void Animations();
    void Channels();
    void NewChannels();
    void NewChannel(vl::zr::Controller& controller, vl::zr::Track& track, int keyType,
                    const gltf::Json& target, std::string_view type);
    void TransformChannels(kernix::NodeModel& node);
    void SampledChannels(vl::zr::Controller& controller);
    void DropEmptyAnimations();
    void Layers();
    void Viewports();

    bool Goes(gltf::Kind kind, std::size_t index) const;
    void Remove(gltf::Kind kind, std::size_t index);
    // The document's animation for a model, made when it is new; nothing for one the scene does not hold.
    std::optional<std::size_t> AnimationFor(kernix::AnimationModel* model);

    LoadedScene& m_loaded;
    gltf::Document& m_document;
    gltf::JsonTree& m_tree;
    gltf::Removal m_removal;
    std::unordered_map<const vl::zr::Animation*, std::size_t> m_animationIndex;
    std::unordered_map<const vl::zr::Controller*, std::string> m_types;  // accessor type of sampled values
    std::vector<bool> m_changed;  // animations whose channels were changed
    using TrackKey = std::pair<const vl::zr::Controller*, const vl::zr::Animation*>;
    std::map<std::pair<TrackKey, int>, bool> m_written;
};

}  // namespace zr
