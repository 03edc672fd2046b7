// SPDX-License-Identifier: MIT
#include "app/operations/reduce/watched_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr::reduce {
namespace {

using compare::Evaluator;
using compare::kNone;
using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

struct Box {
    Vec3 low{kFar, kFar, kFar}, high{-kFar, -kFar, -kFar};
    static constexpr double kFar = std::numeric_limits<double>::infinity();

    bool IsEmpty() const { return low.x > high.x; }
    void Widen(Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    std::array<Vec3, 8> Corners() const {
        std::array<Vec3, 8> corners;
        for (std::size_t i = 0; i < 8; ++i)
            corners[i] = {i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z};
        return corners;
    }
};

Vec3 Vector(std::span<const float> numbers, std::size_t index) {
    return {static_cast<double>(numbers[3 * index]), static_cast<double>(numbers[3 * index + 1]),
            static_cast<double>(numbers[3 * index + 2])};
}

Vec3 Sizes(Vec3 v) {
    return {std::abs(v.x), std::abs(v.y), std::abs(v.z)};
}

class PointFinder {
public:
    explicit PointFinder(const Evaluator& evaluator)
        : m_evaluator(evaluator),
          m_document(evaluator.Document()),
          m_watched(evaluator.Nodes()),
          m_boxes(evaluator.Nodes()) {
        NoteGreatestWeights();
    }

    std::vector<Watched> Find() {
        for (std::size_t node = 0; node < m_watched.size(); ++node) AddNode(node);
        for (std::size_t node = 0; node < m_watched.size(); ++node) {
            if (m_boxes[node].IsEmpty()) continue;
            const auto corners = m_boxes[node].Corners();
            m_watched[node].points.insert(m_watched[node].points.end(), corners.begin(), corners.end());
        }
        WatchMovingEnds();
        return std::move(m_watched);
    }

private:
    void NoteGreatestWeights() {
        for (const compare::Animation& animation : m_evaluator.Animations()) {
            for (const compare::Channel& channel : animation.channels) {
                if (channel.path != compare::Path::kWeights) continue;
                std::vector<double>& greatest = m_weights[channel.node];
                std::vector<double> at(channel.curve.Width());
                greatest.resize(std::max(greatest.size(), at.size()));
                for (const float time : channel.curve.Times()) {
                    channel.curve.At(static_cast<double>(time), false, at);
                    for (std::size_t i = 0; i < at.size(); ++i)
                        greatest[i] = std::max(greatest[i], std::abs(at[i]));
                }
            }
        }
    }

    std::vector<double> GreatestWeights(std::size_t node) const {
        std::vector<double> greatest = m_evaluator.Weights(node);
        for (double& weight : greatest) weight = std::abs(weight);
        if (const auto moving = m_weights.find(node); moving != m_weights.end()) {
            greatest.resize(std::max(greatest.size(), moving->second.size()));
            for (std::size_t i = 0; i < moving->second.size(); ++i)
                greatest[i] = std::max(greatest[i], moving->second[i]);
        }
        return greatest;
    }

    void AddNode(std::size_t node) {
        const Json& json = m_document.Elements(Kind::kNode)[node];
        if (json.Find("camera") != nullptr || gltf::FindExtension(json, "KHR_lights_punctual") != nullptr)
            Watch(node);
        if (json.Find("mesh") == nullptr) return;
        const Extent& extent = ExtentOf(json, GreatestWeights(node));
        if (extent.isUnknown) Watch(node);
        if (extent.box.IsEmpty()) return;
        m_boxes[node].Widen(extent.box.low);
        m_boxes[node].Widen(extent.box.high);
    }

    // Identifies what a node draws. Nodes often share it, and then it is examined only once.
    struct Drawing {
        std::size_t mesh, skin;
        std::array<std::size_t, 3> instancing;  // accessors
        std::vector<double> weights;
        auto operator<=>(const Drawing&) const = default;
    };

    // The bounding box of vertices that move with the node itself, in its space.
    struct Extent {
        Box box;
        bool isUnknown = false;  // for some vertices
    };

    // Vertices that move with joints are added to the boxes of these.
    const Extent& ExtentOf(const Json& node, std::vector<double> weights) {
        Drawing drawing{
            IndexMember(node, "mesh"), IndexMember(node, "skin", kNone), {kNone, kNone, kNone}, {}};
        if (const Json* attributes = Instancing(node))
            for (std::size_t i = 0; i < drawing.instancing.size(); ++i)
                drawing.instancing[i] = IndexMember(*attributes, kInstancing[i], kNone);
        drawing.weights = std::move(weights);
        const auto [known, isNew] = m_extents.try_emplace(std::move(drawing));
        Extent& extent = known->second;
        if (!isNew) return extent;
        Box all;
        for (const Json& primitive :
             m_document.Elements(Kind::kMesh)[known->first.mesh].Find("primitives")->Items()) {
            const Json* position = primitive.Find("attributes")->Find("POSITION");
            if (position == nullptr) continue;
            const Vec3 reach = MorphReach(primitive, known->first.weights);
            if (known->first.skin != kNone && AddSkinned(primitive, known->first.skin, reach)) continue;
            const Box box = Widened(BoundsOf(IndexMember(*primitive.Find("attributes"), "POSITION")), reach);
            if (box.IsEmpty()) {
                extent.isUnknown = true;
            } else {
                all.Widen(box.low);
                all.Widen(box.high);
            }
        }
        if (all.IsEmpty()) return extent;
        for (const Affine& instance : Instances(node)) AddCorners(all, instance, extent.box);
        return extent;
    }

    void Watch(std::size_t node) {
        if (m_watched[node].direction) return;
        m_watched[node].points.push_back({});
        m_watched[node].direction = true;
    }

    static void AddCorners(const Box& box, const Affine& place, Box& to) {
        for (const Vec3& corner : box.Corners()) to.Widen(place.Point(corner));
    }

    static Box Widened(Box box, Vec3 reach) {
        box.low = box.low - reach;
        box.high = box.high + reach;
        return box;
    }

    // The bounds of the values: those the accessor states or, without them, the actual ones. Empty: unknown.
    Box BoundsOf(std::size_t accessor) {
        const auto [known, isNew] = m_bounds.try_emplace(accessor);
        if (!isNew) return known->second;
        const Json& json = m_document.Elements(Kind::kAccessor)[accessor];
        const Json* low = json.Find("min");
        const Json* high = json.Find("max");
        const gltf::AccessorInfo info = gltf::Describe(m_document, accessor);
        if (low != nullptr && high != nullptr && low->Items().size() == 3 && high->Items().size() == 3 &&
            !info.normalized) {
            for (const Json* corner : {low, high})
                known->second.Widen(
                    {corner->Items()[0].Number(), corner->Items()[1].Number(), corner->Items()[2].Number()});
        } else if (gltf::HasData(m_document, accessor) && info.shape.Components() == 3) {
            const std::vector<float> values = gltf::ReadFloats(m_document, accessor);
            for (std::size_t i = 0; i < info.count; ++i) known->second.Widen(Vector(values, i));
        }
        return known->second;
    }

    // The greatest distance that morph targets move a vertex along each axis.
    Vec3 MorphReach(const Json& primitive, const std::vector<double>& weights) {
        Vec3 reach;
        const Json* targets = primitive.Find("targets");
        if (targets == nullptr) return reach;
        for (std::size_t i = 0; i < std::min(targets->Items().size(), weights.size()); ++i) {
            const Json& target = targets->Items()[i];
            if (target.Find("POSITION") == nullptr) continue;
            const Box box = BoundsOf(IndexMember(target, "POSITION"));
            if (box.IsEmpty()) continue;
            const Vec3 low = Sizes(box.low), high = Sizes(box.high);
            reach = reach + Vec3{std::max(low.x, high.x), std::max(low.y, high.y), std::max(low.z, high.z)} *
                                weights[i];
        }
        return reach;
    }

    // A skinned vertex is a weighted mean of the positions its joints give it: its error is within a length
    // if theirs are. Returns false if the primitive has no joints: its vertices then move with the node
    // itself.
    bool AddSkinned(const Json& primitive, std::size_t skin, Vec3 reach) {
        const Json& attributes = *primitive.Find("attributes");
        const std::size_t position = IndexMember(attributes, "POSITION");
        const std::span<const Json> joints = m_document.Elements(Kind::kSkin)[skin].Find("joints")->Items();
        const std::vector<Affine> binds = InverseBinds(skin, joints.size());
        std::vector<Box> boxes(joints.size());
        for (std::size_t set = 0;; ++set) {
            const std::string jointsName = Join("JOINTS_", set), weightsName = Join("WEIGHTS_", set);
            if (attributes.Find(jointsName) == nullptr || attributes.Find(weightsName) == nullptr) {
                if (set == 0) return false;
                break;
            }
            const std::size_t influences = IndexMember(attributes, jointsName);
            const std::size_t shares = IndexMember(attributes, weightsName);
            if (!gltf::HasData(m_document, position) || !gltf::HasData(m_document, influences) ||
                !gltf::HasData(m_document, shares)) {
                std::fill(boxes.begin(), boxes.end(), BoundsOf(position));
                break;
            }
            const std::vector<float> points = gltf::ReadFloats(m_document, position);
            const std::vector<std::uint32_t> indices = gltf::ReadIntegers(m_document, influences);
            const std::vector<float> weights = gltf::ReadFloats(m_document, shares);
            for (std::size_t i = 0; i < std::min(indices.size(), weights.size()); ++i) {
                if (weights[i] != 0 && indices[i] < boxes.size() && 3 * (i / 4) + 2 < points.size())
                    boxes[indices[i]].Widen(Vector(points, i / 4));
            }
        }
        for (std::size_t joint = 0; joint < boxes.size(); ++joint) {
            if (!boxes[joint].IsEmpty())
                AddCorners(Widened(boxes[joint], reach), binds[joint],
                           m_boxes[static_cast<std::size_t>(joints[joint].Number())]);
        }
        return true;
    }

    std::vector<Affine> InverseBinds(std::size_t skin, std::size_t joints) const {
        std::vector<Affine> binds(joints);
        const Json& json = m_document.Elements(Kind::kSkin)[skin];
        if (json.Find("inverseBindMatrices") == nullptr) return binds;
        const std::size_t accessor = IndexMember(json, "inverseBindMatrices");
        if (!gltf::HasData(m_document, accessor)) return binds;
        const std::vector<float> matrices = gltf::ReadFloats(m_document, accessor);
        for (std::size_t joint = 0; joint < joints && 16 * joint + 16 <= matrices.size(); ++joint)
            binds[joint] = compare::AffineOf(std::span<const float>(matrices).subspan(16 * joint, 16));
        return binds;
    }

    static constexpr std::array<std::string_view, 3> kInstancing{"TRANSLATION", "ROTATION", "SCALE"};

    // The attributes of a node's instances; null: it has none.
    static const Json* Instancing(const Json& node) {
        const Json* instancing = gltf::FindExtension(node, "EXT_mesh_gpu_instancing");
        return instancing != nullptr ? instancing->Find("attributes") : nullptr;
    }

    // The transforms, in the node's space, with which its mesh is drawn.
    std::vector<Affine> Instances(const Json& node) const {
        const Json* attributes = Instancing(node);
        if (attributes == nullptr) return {Affine()};
        const auto read = [&](std::string_view name) {
            if (attributes->Find(name) == nullptr) return std::vector<float>();
            const std::size_t accessor = IndexMember(*attributes, name);
            return gltf::HasData(m_document, accessor) ? gltf::ReadFloats(m_document, accessor)
                                                       : std::vector<float>();
        };
        const std::vector<float> places = read(kInstancing[0]), turns = read(kInstancing[1]),
                                 scales = read(kInstancing[2]);
        std::vector<Affine> instances(std::max({places.size() / 3, turns.size() / 4, scales.size() / 3}));
        for (std::size_t i = 0; i < instances.size(); ++i) {
            compare::Trs parts;
            if (3 * i + 3 <= places.size()) std::copy_n(&places[3 * i], 3, parts.translation.begin());
            if (4 * i + 4 <= turns.size()) std::copy_n(&turns[4 * i], 4, parts.rotation.begin());
            if (3 * i + 3 <= scales.size()) std::copy_n(&scales[3 * i], 3, parts.scale.begin());
            instances[i] = parts.Matrix();
        }
        return instances;
    }

    // Something else may be attached to an animated node with nothing drawn below it.
    void WatchMovingEnds() {
        std::set<std::size_t> moving;
        for (const compare::Animation& animation : m_evaluator.Animations()) {
            for (const compare::Channel& channel : animation.channels)
                if (channel.path <= compare::Path::kScale) moving.insert(channel.node);
        }
        std::vector<bool> isSeen(m_evaluator.Nodes(), false);  // the node or something below it
        const std::vector<std::size_t>& order = m_evaluator.ParentsFirst();
        for (auto node = order.rbegin(); node != order.rend(); ++node) {
            if (!isSeen[*node] && m_watched[*node].IsEmpty() && moving.contains(*node)) Watch(*node);
            if (!m_watched[*node].IsEmpty()) isSeen[*node] = true;
            const std::size_t parent = m_evaluator.Parent(*node);
            if (isSeen[*node] && parent != kNone) isSeen[parent] = true;
        }
    }

    const Evaluator& m_evaluator;
    const gltf::Document& m_document;
    std::vector<Watched> m_watched;
    std::vector<Box> m_boxes;
    std::map<Drawing, Extent> m_extents;
    std::map<std::size_t, Box> m_bounds;  // by accessor
    std::map<std::size_t, std::vector<double>>
        m_weights;  // by node: the greatest magnitudes in any animation
};

}  // namespace

std::vector<Watched> WatchedPoints(const Evaluator& evaluator) {
    return PointFinder(evaluator).Find();
}

}  // namespace zr::reduce
