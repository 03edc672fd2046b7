// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/scene/content_ids.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Builds controllers and tracks from the document's animations.
class AnimationBuilder {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    AnimationBuilder(const gltf::Document& document, DocumentCurves& curves, SceneParts& parts,
                     ContentIds& ids)
        : m_document(document), m_curves(curves), m_parts(parts), m_ids(ids) {}

    // Reads which node each channel moves, before the nodes exist.
    void NoteMotions();
    // Describes how a node moves; empty if it does not. Two nodes at the same place at rest have equal
    // descriptions only if they coincide at every time of every animation. Call for parents before their
    // children. parent: the node's parent, or kNone.
    std::string Motion(std::size_t node, std::size_t parent);

    void Build();

private:
    struct Goal {
        std::size_t node = kNone;  // for transforms and weights
        std::string_view path;     // translation, rotation, scale or weights; else a pointer
    };

    static Goal GoalOf(const gltf::Json& target);
    // False when the scene does not show what the channel moves.
    bool Channel(std::size_t animation, std::size_t channel, const gltf::Json& sampler, const Goal& goal);
    kernix::SampledControllerModel* SampledController(const Goal& goal);
    kernix::NodeModel* FirstShowing(gltf::Kind kind, std::size_t index);

    const gltf::Document& m_document;
    DocumentCurves& m_curves;
    SceneParts& m_parts;
    ContentIds& m_ids;
    std::unordered_map<std::size_t, std::string> m_motions;  // of nodes with channels
    // The nearest moving node at or above each node.
    std::unordered_map<std::size_t, std::size_t> m_movingAbove;
    std::unordered_map<std::string, kernix::SampledControllerModel*> m_sampled;
    std::map<std::pair<gltf::Kind, std::size_t>, kernix::NodeModel*> m_showing;
};

}  // namespace zr
