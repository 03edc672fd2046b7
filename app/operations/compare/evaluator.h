// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/operations/compare/affine.h"
#include "app/operations/compare/key_curve.h"
#include "gltf/document.h"

namespace zr::compare {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

enum class Path { kTranslation, kRotation, kScale, kWeights, kPointer };

// A channel of an animation. A pointer to a node's transform or weights becomes a plain channel of that node.
struct Channel {
    std::size_t index;  // in the document's list of channels
    Path path;
    std::size_t node = kNone;  // for all paths but kPointer
    std::string pointer;       // for kPointer
    KeyCurve curve;
};

struct Animation {
    std::string name;
    double start = 0, end = 0;  // of the keys, seconds; 0 without keys
    std::vector<Channel> channels;
    std::vector<std::string> unread;  // places of channels whose keys cannot be read
};

// Plays a document: node transforms, morph weights and pointer values, at rest and at any time of any
// animation. It evaluates the document's accessors directly, in double precision, and shares no code with the
// host's evaluation or the export. The document must outlive it.
class Evaluator {
public:
    // Throws gltf::Error.
    explicit Evaluator(const gltf::Document& document);

    const gltf::Document& Document() const { return m_document; }
    const std::vector<Animation>& Animations() const { return m_animations; }
    std::size_t Nodes() const { return m_rest.size(); }
    // kNone for a root.
    std::size_t Parent(std::size_t node) const { return m_parents[node]; }
    // Every node, parents before their children.
    const std::vector<std::size_t>& ParentsFirst() const { return m_order; }
    // By node: whether any scene contains it. All true if the document has no scene.
    const std::vector<bool>& Shown() const { return m_shown; }

    void SetRest();
    void SetTime(std::size_t animation, double seconds);
    // Replaces each node's transform relative to its parent by what `change` returns. Until the next SetRest
    // or SetTime.
    void ChangeLocals(const std::function<Affine(std::size_t node, const Affine& local)>& change);
    // Until the next SetRest or SetTime.
    void SetWeights(std::size_t node, std::vector<double> weights) { m_weights[node] = std::move(weights); }

    const Affine& World(std::size_t node) const { return m_worlds[node]; }
    // The rest transform relative to the parent. RestParts ignores a matrix.
    const Trs& RestParts(std::size_t node) const { return m_rest[node].parts; }
    Affine RestLocal(std::size_t node) const;
    // The current weights: one for each morph target of the node's mesh.
    std::vector<double> Weights(std::size_t node) const;
    // The current value at a pointer: the animated value or, without one, the document's; nothing if there is
    // neither.
    std::optional<std::vector<double>> Value(std::string_view pointer) const;

private:
    struct Rest {
        bool isMatrix = false;
        Affine matrix;
        Trs parts;
    };

    void ReadNodes();
    void ReadOrder();
    void ReadAnimation(const gltf::Json& animation, std::size_t index);
    void PlaceNodes();

    const gltf::Document& m_document;
    std::vector<Rest> m_rest;
    std::vector<std::size_t> m_parents;
    std::vector<std::size_t> m_order;
    std::vector<bool> m_shown;
    std::vector<Animation> m_animations;

    std::vector<Affine> m_locals;
    std::vector<Affine> m_worlds;
    std::map<std::size_t, std::vector<double>> m_weights;
    std::map<std::string, std::vector<double>, std::less<>> m_pointers;
};

// The number of morph targets of a mesh.
std::size_t TargetCount(const gltf::Json& mesh);

}  // namespace zr::compare
