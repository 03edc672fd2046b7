// SPDX-License-Identifier: MIT
#include "app/operations/compare/motion_comparison.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "app/operations/compare/track_comparison.h"

namespace zr::compare {

using gltf::Json;
using gltf::Kind;

namespace {

// Limits on what is evaluated over all times: node transforms, and faces.
constexpr std::size_t kMostTransforms = 20'000'000;
constexpr std::size_t kMostFaces = 6'000'000;
constexpr std::size_t kFewTimes = 64;  // per animation, if it has too many keys

class MotionComparison {
public:
    MotionComparison(ScenePair& pair, const ContentComparison& content,
                     const std::function<void(double done)>& progress, CompareResult& result)
        : m_pair(pair), m_content(content), m_progress(progress), m_result(result) {}

    void Run() {
        ComparePlaces("", 0);
        std::size_t pairs = 0;
        for (const std::size_t partner : m_pair.animations) pairs += partner != kNone;
        if (pairs == 0) return;
        const std::size_t nodes = m_pair.evaluatorA.Nodes() + m_pair.evaluatorB.Nodes() + 1;
        const std::size_t faces = m_pair.drawnA.Faces() + m_pair.drawnB.Faces() + 1;
        const std::size_t times = std::max<std::size_t>(kMostTransforms / nodes / pairs, 4);
        const std::size_t shapes = std::max<std::size_t>(kMostFaces / faces / pairs, 1);
        std::size_t done = 0;
        for (std::size_t i = 0; i < m_pair.animations.size(); ++i) {
            if (m_pair.animations[i] == kNone) continue;
            m_pair.SetRest();
            CompareAnimation(i, m_pair.animations[i], times, shapes);
            m_progress(static_cast<double>(++done) / static_cast<double>(pairs));
        }
        m_pair.SetRest();
    }

private:
    void CompareAnimation(std::size_t a, std::size_t b, std::size_t times, std::size_t shapes) {
        const Animation& x = m_pair.evaluatorA.Animations()[a];
        TrackComparison tracks(m_pair.evaluatorA, m_pair.evaluatorB, m_result.tolerance);
        tracks.Run(
            x, m_pair.evaluatorB.Animations()[b],
            [this](const Channel& channel) { return GoalOf(channel, true); },
            [this](const Channel& channel) { return GoalOf(channel, false); },
            [&](const Goal& goal, double amount, double time) {
                m_result.value.Note(
                    amount, [&] { return goal.Place(); }, x.name, time);
            });
        for (const double time : tracks.Times(times, kFewTimes)) {
            m_pair.evaluatorA.SetTime(a, time);
            m_pair.evaluatorB.SetTime(b, time);
            ComparePlaces(x.name, time);
            ++m_result.times;
        }
        if (!m_result.compared[static_cast<std::size_t>(Aspect::kPoints)]) return;
        for (const double time : tracks.Times(shapes, kFewTimes / 4)) {
            m_pair.evaluatorA.SetTime(a, time);
            m_pair.evaluatorB.SetTime(b, time);
            const DrawnDifference difference =
                CompareDrawn(m_pair.drawnA, m_pair.drawnB, m_pair.materials.classes, m_result.tolerance);
            m_result.movedPoint.Note(
                difference.length,
                [&] { return difference.node == kNone ? "" : m_pair.NodeText(difference.node); }, x.name,
                time);
        }
    }

    // What a channel of one document drives; nothing if the other document lacks it.
    std::optional<Goal> GoalOf(const Channel& channel, bool ofA) const {
        Goal goal;
        goal.path = channel.path;
        if (channel.path == Path::kPointer) {
            const auto other = Translated(channel.pointer, ofA);
            if (!other) return std::nullopt;
            goal.pointerA = ofA ? channel.pointer : *other;
            goal.pointerB = ofA ? *other : channel.pointer;
        } else {
            const std::size_t other = Partner(Kind::kNode, channel.node, ofA);
            if (other == kNone) return std::nullopt;
            goal.nodeA = ofA ? channel.node : other;
            goal.nodeB = ofA ? other : channel.node;
        }
        return goal;
    }

    std::optional<std::string> Translated(const std::string& pointer, bool fromA) const {
        const auto target = gltf::PointerTarget(pointer);
        if (!target) return pointer;
        const std::size_t count = (fromA ? m_pair.a : m_pair.b).Elements(target->kind).size();
        if (target->index >= count) return std::nullopt;
        const std::size_t partner = Partner(target->kind, target->index, fromA);
        if (partner == kNone) return std::nullopt;
        return std::string(pointer).replace(target->textOffset, target->textSize, std::to_string(partner));
    }

    std::size_t Partner(Kind kind, std::size_t index, bool fromA) const {
        if (kind == Kind::kNode) return fromA ? m_pair.nodes.ofA[index] : m_pair.nodes.ofB[index];
        if (kind != Kind::kMaterial)
            return fromA ? m_content.PartnerInB(kind, index) : m_content.PartnerInA(kind, index);
        return (fromA ? m_pair.materialPairs.ofA : m_pair.materialPairs.ofB)[index];
    }

    void ComparePlaces(std::string_view animation, double time) {
        for (const auto& [a, b] : m_pair.nodes.pairs) {
            const Affine& x = m_pair.evaluatorA.World(a);
            const Affine& y = m_pair.evaluatorB.World(b);
            const auto place = [&, node = a] { return m_pair.NodeText(node); };
            m_result.node.Note(Finite(Length(x.origin - y.origin)), place, animation, time);
            for (const auto& [u, v] : {std::pair(x.x, y.x), std::pair(x.y, y.y), std::pair(x.z, y.z)}) {
                const double size = std::max({Length(u), Length(v), 1e-6});
                m_result.axis.Note(Finite(Length(u - v) / size), place, animation, time);
            }
            const Json& json = m_pair.a.Elements(Kind::kNode)[a];
            if (!Carries(json, "camera") && !Carries(json, "light")) continue;
            const double chord = Length(Unit(x.z) - Unit(y.z));
            m_result.view.Note(Finite(2 * std::asin(std::min(chord / 2, 1.0))), place, animation, time);
        }
    }

    ScenePair& m_pair;
    const ContentComparison& m_content;
    const std::function<void(double done)>& m_progress;
    CompareResult& m_result;
};

}  // namespace

void CompareMotion(ScenePair& pair, const ContentComparison& content,
                   const std::function<void(double done)>& progress, CompareResult& result) {
    MotionComparison(pair, content, progress, result).Run();
}

}  // namespace zr::compare
