// SPDX-License-Identifier: MIT
#include "app/operations/compare/evaluator.h"

#include <algorithm>

#include "base/text.h"
#include "gltf/members.h"
#include "gltf/pointer.h"
#include "gltf/walk.h"

namespace zr::compare {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

template <std::size_t N>
void ReadNumbers(const Json* json, std::array<double, N>& out) {
    if (json == nullptr) return;
    for (std::size_t i = 0; i < N; ++i) out[i] = json->Items()[i].Number();
}

std::optional<Path> PathNamed(std::string_view name) {
    if (name == "translation") return Path::kTranslation;
    if (name == "rotation") return Path::kRotation;
    if (name == "scale") return Path::kScale;
    if (name == "weights") return Path::kWeights;
    return std::nullopt;
}

// What a channel drives: the path of a node, or a pointer.
struct Driven {
    Path path = Path::kPointer;
    std::size_t node = kNone;
    std::string pointer;
};

std::optional<Driven> DrivenBy(const Json& target) {
    if (target.Find("path")->String() != "pointer") {
        const auto path = PathNamed(target.Find("path")->String());
        if (!path || target.Find("node") == nullptr) return std::nullopt;
        return Driven{*path, IndexMember(target, "node"), {}};
    }
    const Json* extension = gltf::FindExtension(target, "KHR_animation_pointer");
    if (extension == nullptr) return std::nullopt;
    const std::string_view pointer = extension->Find("pointer")->String();
    const auto element = gltf::PointerTarget(pointer);
    if (element && element->kind == Kind::kNode) {
        const std::string_view rest = pointer.substr(element->textOffset + element->textSize);
        if (const auto path = rest.empty() ? std::nullopt : PathNamed(rest.substr(1)))
            return Driven{*path, element->index, {}};
    }
    return Driven{Path::kPointer, kNone, std::string(pointer)};
}

std::vector<double> Numbers(const Json& json) {
    if (json.IsNumber()) return {json.Number()};
    if (json.IsBool()) return {json.Bool() ? 1.0 : 0.0};
    std::vector<double> numbers;
    for (const Json& item : json.Items()) numbers.push_back(item.Number());
    return numbers;
}

}  // namespace

std::size_t TargetCount(const Json& mesh) {
    const Json* targets = mesh.Find("primitives")->Items()[0].Find("targets");
    return targets != nullptr ? targets->Items().size() : 0;
}

Evaluator::Evaluator(const gltf::Document& document) : m_document(document) {
    ReadNodes();
    ReadOrder();
    const auto animations = document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) ReadAnimation(animations[i], i);
    SetRest();
}

void Evaluator::ReadNodes() {
    const auto nodes = m_document.Elements(Kind::kNode);
    m_rest.resize(nodes.size());
    m_parents.assign(nodes.size(), kNone);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        Rest& rest = m_rest[i];
        if (const Json* matrix = nodes[i].Find("matrix")) {
            rest.isMatrix = true;
            std::array<double, 16> numbers;
            ReadNumbers(matrix, numbers);
            rest.matrix = AffineOf(std::span<const double>(numbers));
        }
        ReadNumbers(nodes[i].Find("translation"), rest.parts.translation);
        ReadNumbers(nodes[i].Find("rotation"), rest.parts.rotation);
        ReadNumbers(nodes[i].Find("scale"), rest.parts.scale);
        if (const Json* children = nodes[i].Find("children"))
            for (const Json& child : children->Items()) m_parents[*child.Index()] = i;
    }
}

void Evaluator::ReadOrder() {
    const auto nodes = m_document.Elements(Kind::kNode);
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (m_parents[i] == kNone) m_order.push_back(i);
    for (std::size_t i = 0; i < m_order.size(); ++i)
        if (const Json* children = nodes[m_order[i]].Find("children"))
            for (const Json& child : children->Items()) m_order.push_back(*child.Index());
    const auto scenes = m_document.Elements(Kind::kScene);
    m_shown.assign(nodes.size(), scenes.empty());
    for (const Json& scene : scenes)
        if (const Json* roots = scene.Find("nodes"))
            for (const Json& root : roots->Items()) m_shown[*root.Index()] = true;
    for (const std::size_t node : m_order)
        if (m_parents[node] != kNone && m_shown[m_parents[node]]) m_shown[node] = true;
}

void Evaluator::ReadAnimation(const Json& json, std::size_t index) {
    Animation animation;
    animation.name = gltf::NameOf(json);
    const Json* channels = json.Find("channels");
    const auto items = channels != nullptr ? channels->Items() : std::span<const Json>();
    bool isFirst = true;
    for (std::size_t i = 0; i < items.size(); ++i) {
        auto driven = DrivenBy(*items[i].Find("target"));
        if (!driven) continue;
        const Json& sampler = json.Find("samplers")->Items()[IndexMember(items[i], "sampler")];
        if (!HasKeys(m_document, sampler)) {
            animation.unread.push_back(Join("/animations/", index, "/channels/", i));
            continue;
        }
        animation.channels.push_back(
            {i, driven->path, driven->node, std::move(driven->pointer), KeyCurve(m_document, sampler)});
        const auto times = animation.channels.back().curve.Times();
        const double start = static_cast<double>(times.front()), end = static_cast<double>(times.back());
        animation.start = isFirst ? start : std::min(animation.start, start);
        animation.end = isFirst ? end : std::max(animation.end, end);
        isFirst = false;
    }
    m_animations.push_back(std::move(animation));
}

Affine Evaluator::RestLocal(std::size_t node) const {
    return m_rest[node].isMatrix ? m_rest[node].matrix : m_rest[node].parts.Matrix();
}

void Evaluator::SetRest() {
    m_weights.clear();
    m_pointers.clear();
    m_locals.resize(Nodes());
    for (std::size_t i = 0; i < Nodes(); ++i) m_locals[i] = RestLocal(i);
    PlaceNodes();
}

void Evaluator::SetTime(std::size_t animation, double seconds) {
    m_weights.clear();
    m_pointers.clear();
    for (std::size_t i = 0; i < Nodes(); ++i) m_locals[i] = RestLocal(i);
    std::map<std::size_t, Trs> moved;
    for (const Channel& channel : m_animations[animation].channels) {
        std::vector<double> value(channel.curve.Width());
        channel.curve.At(seconds, channel.path == Path::kRotation, value);
        if (channel.path == Path::kPointer) {
            m_pointers[channel.pointer] = std::move(value);
        } else if (channel.path == Path::kWeights) {
            m_weights[channel.node] = std::move(value);
        } else {
            Trs& parts = moved.try_emplace(channel.node, m_rest[channel.node].parts).first->second;
            if (channel.path == Path::kRotation)
                std::copy_n(value.begin(), 4, parts.rotation.begin());
            else
                std::copy_n(value.begin(), 3,
                            (channel.path == Path::kScale ? parts.scale : parts.translation).begin());
        }
    }
    for (const auto& [node, parts] : moved) m_locals[node] = parts.Matrix();
    PlaceNodes();
}

void Evaluator::ChangeLocals(const std::function<Affine(std::size_t, const Affine&)>& change) {
    for (std::size_t i = 0; i < Nodes(); ++i) m_locals[i] = change(i, m_locals[i]);
    PlaceNodes();
}

void Evaluator::PlaceNodes() {
    m_worlds.resize(Nodes());
    for (const std::size_t node : m_order)
        m_worlds[node] =
            m_parents[node] == kNone ? m_locals[node] : m_worlds[m_parents[node]] * m_locals[node];
}

std::vector<double> Evaluator::Weights(std::size_t node) const {
    const Json& json = m_document.Elements(Kind::kNode)[node];
    const std::size_t mesh = IndexMember(json, "mesh", kNone);
    if (mesh == kNone) return {};
    const Json& meshJson = m_document.Elements(Kind::kMesh)[mesh];
    std::vector<double> weights(TargetCount(meshJson), 0.0);
    if (weights.empty()) return weights;
    const auto take = [&](const std::vector<double>& values) {
        std::copy_n(values.begin(), std::min(values.size(), weights.size()), weights.begin());
    };
    if (const auto animated = m_weights.find(node); animated != m_weights.end())
        take(animated->second);
    else if (const Json* own = json.Find("weights"))
        take(Numbers(*own));
    else if (const auto shared = Value(Join("/meshes/", mesh, "/weights")))
        take(*shared);
    return weights;
}

std::optional<std::vector<double>> Evaluator::Value(std::string_view pointer) const {
    if (const auto animated = m_pointers.find(pointer); animated != m_pointers.end()) return animated->second;
    const Json* json = gltf::AtPointer(m_document.Root(), pointer);
    if (json == nullptr) return std::nullopt;
    return Numbers(*json);
}

}  // namespace zr::compare
