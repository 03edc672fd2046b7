// SPDX-License-Identifier: MIT
#include "app/operations/compare/pose_comparison.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace zr::compare {
namespace {

// A pseudo-random number from 0 to 1 that depends only on its arguments.
double Scattered(std::size_t seed, std::size_t which) {
    std::uint64_t x = (seed * 16 + which + 1) * 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 31)) * 0xbf58476d1ce4e5b9ULL;
    return static_cast<double>((x ^ (x >> 29)) >> 11) / 9007199254740992.0;
}

Affine Probe(std::size_t pair) {
    Trs turn;
    for (std::size_t i = 0; i < 3; ++i) turn.rotation[i] = 0.4 * (Scattered(pair, i) - 0.5);
    return turn.Matrix();
}

class PoseComparison {
public:
    PoseComparison(ScenePair& pair, CompareResult& result) : m_pair(pair), m_result(result) {}

    void Run() {
        CompareDrawnAs("at rest");
        // Errors in joints, vertex weights and morph targets show only when these move.
        if (!m_pair.nodes.IsComplete()) return;
        for (const bool isA : {true, false}) {
            Evaluator& evaluator = isA ? m_pair.evaluatorA : m_pair.evaluatorB;
            std::vector<std::size_t> pairOf(evaluator.Nodes(), kNone);
            for (std::size_t i = 0; i < m_pair.nodes.pairs.size(); ++i)
                pairOf[isA ? m_pair.nodes.pairs[i].first : m_pair.nodes.pairs[i].second] = i;
            evaluator.ChangeLocals([&](std::size_t node, const Affine& local) {
                return pairOf[node] == kNone ? local : local * Probe(pairOf[node]);
            });
            for (std::size_t node = 0; node < pairOf.size(); ++node) {
                std::vector<double> weights = evaluator.Weights(node);
                for (std::size_t i = 0; i < weights.size(); ++i) weights[i] = Scattered(pairOf[node], 8 + i);
                if (!weights.empty() && pairOf[node] != kNone) evaluator.SetWeights(node, std::move(weights));
            }
        }
        if (m_result.drawn.empty()) CompareDrawnAs("with every joint and morph target moved");
        m_pair.SetRest();
    }

private:
    void CompareDrawnAs(std::string_view pose) {
        const DrawnDifference difference =
            CompareDrawn(m_pair.drawnA, m_pair.drawnB, m_pair.materials.classes, m_result.tolerance);
        m_result.faces = std::max(m_result.faces, difference.faces);
        m_result.point.Note(
            difference.length,
            [&] { return difference.node == kNone ? "" : m_pair.NodeText(difference.node); }, "", 0);
        if (difference.changed > 0)
            m_result.drawn.push_back(Join(
                Counted(difference.changed, "face differs ", "faces differ "), pose, ", the first of ",
                m_pair.NodeText(difference.changedNode), "; points by up to ", Short(difference.length, 3),
                ", directions ", Short(difference.angle, 3), ", other values ", Short(difference.value, 3)));
        if (difference.onlyA > 0)
            m_result.drawn.push_back(Join(Counted(difference.onlyA, "face is", "faces are"),
                                          " drawn only by the first scene ", pose, ", the first of ",
                                          NodeText(m_pair.a, difference.onlyANode)));
        if (difference.onlyB > 0)
            m_result.drawn.push_back(Join(Counted(difference.onlyB, "face is", "faces are"),
                                          " drawn only by the second scene ", pose, ", the first of ",
                                          NodeText(m_pair.b, difference.onlyBNode)));
    }

    ScenePair& m_pair;
    CompareResult& m_result;
};

}  // namespace

void ComparePoses(ScenePair& pair, CompareResult& result) {
    PoseComparison(pair, result).Run();
}

}  // namespace zr::compare
