// SPDX-License-Identifier: MIT
#include "app/operations/compare/compare_scenes.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "app/operations/compare/content_comparison.h"
#include "app/operations/compare/motion_comparison.h"
#include "app/operations/compare/pose_comparison.h"
#include "app/operations/compare/scene_pair.h"
#include "app/operations/compare/structure_comparison.h"
#include "base/text.h"

namespace zr::compare {

using gltf::Document;
using gltf::Kind;

namespace {

// The default tolerance, relative to the scene's size: about the error of rounding to floats along a
// hierarchy.
constexpr double kRelativeTolerance = 1e-6;

double SizeOf(const ScenePair& pair) {
    Vec3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    const auto widen = [&](Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    };
    for (std::size_t node = 0; node < pair.evaluatorA.Nodes(); ++node)
        if (pair.evaluatorA.Shown()[node]) widen(pair.evaluatorA.World(node).origin);
    for (const Part& part : pair.drawnA.Parts()) {
        const std::vector<double> vertices = pair.drawnA.Vertices(part);
        const std::size_t stride = part.shape->stride;
        for (std::size_t i = 0; stride > 0 && i < vertices.size(); i += stride)
            widen({vertices[i], vertices[i + 1], vertices[i + 2]});
    }
    if (!(low.x <= high.x)) return 0;
    // Far from the origin, coordinates are only as exact as their magnitude allows.
    const double size = std::max({Length(high - low), Length(high), Length(low)});
    return std::isfinite(size) ? size : 0;
}

std::vector<std::string> UnreadOf(const ScenePair& pair) {
    std::set<std::string> places;
    for (const Drawn* drawn : {&pair.drawnA, &pair.drawnB})
        for (const std::string& place : drawn->Unread())
            places.insert(Join(drawn == &pair.drawnA ? "first" : "second", " scene, ", place));
    for (const Evaluator* evaluator : {&pair.evaluatorA, &pair.evaluatorB})
        for (const Animation& animation : evaluator->Animations())
            for (const std::string& place : animation.unread)
                places.insert(Join(evaluator == &pair.evaluatorA ? "first" : "second", " scene, ", place));
    return {places.begin(), places.end()};
}

void Judge(CompareResult& result) {
    const Tolerance& limit = result.tolerance;
    const auto set = [&](Aspect aspect, bool same) {
        result.same[static_cast<std::size_t>(aspect)] =
            same || !result.compared[static_cast<std::size_t>(aspect)];
    };
    set(Aspect::kStructure, result.structure.empty());
    set(Aspect::kDrawn, result.drawn.empty());
    set(Aspect::kNodes, result.node.amount <= limit.length && result.axis.amount <= limit.angle);
    set(Aspect::kPoints, result.movedPoint.amount <= limit.length);
    set(Aspect::kViews, result.view.amount <= limit.angle);
    set(Aspect::kValues, result.value.amount <= limit.value);
}

}  // namespace

CompareResult CompareScenes(const Document& a, const Document& b, const CompareOptions& options) {
    ScenePair pair(a, b);
    CompareResult result;
    result.compared = options.aspects;
    result.tolerance = options.tolerance;
    result.size = SizeOf(pair);
    if (result.tolerance.length == 0)
        result.tolerance.length = kRelativeTolerance * (result.size > 0 ? result.size : 1);
    // Also matches the elements that pointers lead to; the comparison of motion needs these.
    ContentComparison content(
        a, b, options.tolerance.value,
        [&pair](Kind kind, std::size_t x, std::size_t y) { return pair.AreSame(kind, x, y); },
        [&result](const std::string& where, const std::string& what, double) {
            result.structure.push_back(Join(where, ": ", what));
        });
    CompareStructure(pair, options.tolerance.value, content, result.structure);
    options.progress(0.1);
    if (options.aspects[static_cast<std::size_t>(Aspect::kDrawn)]) ComparePoses(pair, result);
    options.progress(0.2);
    CompareMotion(
        pair, content, [&options](double done) { options.progress(0.2 + 0.8 * done); }, result);
    result.unread = UnreadOf(pair);
    Judge(result);
    options.progress(1);
    return result;
}

}  // namespace zr::compare
