// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "app/scene/curves.h"
#include "gltf/references.h"

namespace zr {

// The property of a node that a new channel animates.
struct NodeGoal {
    std::size_t node;
    std::string_view path;  // "translation", "rotation", "scale", "weights"; static storage
};
using Goal = std::variant<NodeGoal, std::string>;  // or a JSON pointer

// A channel of the document that gets another curve; a curve without keys removes it.
struct ChangedChannel {
    std::size_t animation;
    std::size_t channel;
    Curve curve;
};

struct NewChannel {
    std::size_t animation;
    Goal goal;
    std::string type;  // accessor type of a value
    Curve curve;
};

struct ChangedViewport {
    bool stays = true;
    std::vector<std::size_t> animations;  // to play
};

// A transform as translation, rotation and scale where these can express it, else as a column-major matrix.
struct TransformParts {
    std::array<float, 3> translation;
    std::array<float, 4> rotation;
    std::array<float, 3> scale;
};
using NodeTransform = std::variant<TransformParts, std::array<float, 16>>;

struct ChangedNode {
    std::size_t index;
    std::unique_ptr<const NodeTransform> transform;  // null: unchanged
    std::optional<std::string> name;                 // nothing: unchanged; empty: no name
    std::vector<std::size_t> children;
    std::optional<std::size_t> target;  // what its camera or light aims at
    bool dropsPivots = false;           // and its object's offset
};

// Members (moved_members.h) to remove from a node.
struct DroppedMembers {
    std::size_t node;
    std::span<const std::string_view> members;
};

// An object that moves from one node to another.
struct MovedObject {
    std::size_t from;
    std::size_t to;
};

struct NewCamera {
    std::size_t node;
    std::string nodeName;  // used if the node has none
    double fieldOfView;    // vertical, radians
    double near;
    double far;
};

struct SceneRoots {
    std::size_t scene;  // a document without scenes gets one
    std::vector<std::size_t> nodes;
};

// Changes to a document's nodes.
struct ChangedNodes {
    std::vector<ChangedNode> nodes;
    std::vector<DroppedMembers> dropped;
    std::vector<MovedObject> movedObjects;  // after the drops
    std::vector<SceneRoots> roots;
    std::vector<std::pair<std::size_t, std::size_t>> movedJoints;  // of skins: from node to node
    std::vector<NewCamera> cameras;
    bool exchangesAxes = false;  // the transforms have Y and Z exchanged; the objects are to follow
};

// All changes to a document. Indices refer to the document before the changes; new elements follow the
// existing ones of their kind, in the order listed here.
struct DocumentChanges {
    std::vector<std::pair<std::size_t, std::string>> materialNames;
    std::optional<ChangedNodes> nodes;
    double lengthScale = 1;                    // see ScaleLengths
    std::vector<std::size_t> mergedMaterials;  // the material that replaces each; empty: no merge
    std::vector<std::size_t> droppedExtras;    // nodes that lose theirs
    std::vector<ChangedChannel> changedChannels;
    std::vector<std::string> newAnimations;  // their names
    std::vector<NewChannel> newChannels;
    std::vector<bool> keptLayers;            // empty: all
    std::vector<ChangedViewport> viewports;  // empty: as they are
    gltf::Removal removal;
    bool force = false;  // removes elements even if a reference that cannot be followed could name them
    bool takesWhatItLeaves = false;  // also removes what the changes leave unreferenced
};

}  // namespace zr
