// SPDX-License-Identifier: MIT
#include "tests/app/operations/animations/animation_kit.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "kernix/utf.h"

namespace zr::test {

using gltf::Document;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;
using vl::zr::kInterpolationCubic;
using vl::zr::kInterpolationLinear;
using vl::zr::kInterpolationStep;

namespace {

constexpr const char* kNodes = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
  "nodes": [{"name": "body", "children": [1, 2], "translation": [0, 1, 0]},
            {"name": "arm", "rotation": [0, 0.6, 0, 0.8]}, {"name": "arm", "scale": [2, 2, 2]}]})";

// The time nearest to a given one: the merge rounds shifted times to floats.
float Nearest(const std::vector<float>& times, float time) {
    const auto after = std::lower_bound(times.begin(), times.end(), time);
    if (after == times.begin()) return times.front();
    if (after == times.end() || time - *(after - 1) < *after - time) return *(after - 1);
    return *after;
}

}  // namespace

void AddAnimation(Document& document, std::string_view name, const std::vector<Motion>& motions) {
    JsonTree& tree = document.Tree();
    Json empty = JsonTree::MakeObject();
    tree.Member(empty, "name") = tree.MakeString(name);
    const std::size_t index = document.Append(Kind::kAnimation, empty);
    Json channels = JsonTree::MakeArray();
    CurveWriter curves(document);
    for (const Motion& motion : motions) {
        const char* type = motion.path == "rotation" ? "VEC4" : "VEC3";
        Json channel = JsonTree::MakeObject(), target = JsonTree::MakeObject();
        tree.Member(target, "node") = tree.MakeIndex(motion.node);
        tree.Member(target, "path") = tree.MakeString(motion.path);
        tree.Member(channel, "sampler") = tree.MakeIndex(curves.Append(index, motion.curve, type));
        tree.Member(channel, "target") = target;
        tree.Append(channels, channel);
    }
    tree.Member(document.Elements(Kind::kAnimation)[index], "channels") = channels;
}

Document AnimatedScene() {
    Document document = gltf::test::FromText(kNodes);
    AddAnimation(document, "walk",
                 {{0, "translation", {kInterpolationLinear, {0, 0.5F, 1}, {0, 1, 0, 1, 1, 0, 2, 1, 0}}},
                  {1, "rotation", {kInterpolationLinear, {0.25F, 0.5F}, {0, 0, 0, 1, 1, 0, 0, 0}}}});
    AddAnimation(document, "jump",
                 {{0, "translation", {kInterpolationStep, {0.5F, 1.5F}, {0, 1, 0, 0, 9, 0}}},
                  {1, "rotation", {kInterpolationCubic, {0.5F, 1.25F}, {0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 0,
                                                                        0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}}},
                  {2, "scale", {kInterpolationLinear, {0.75F, 1}, {1, 1, 1, 3, 1, 1}}}});
    AddAnimation(document, "rest", {{2, "rotation", {kInterpolationLinear, {0}, {0, 0, 1, 0}}}});
    return document;
}

LoadedScene AnimationCommandTest::Reloaded(LoadedScene& loaded) {
    std::move(loaded).WriteBack().Save(m_folder / "out.glb");
    return LoadedScene(Document::Load(m_folder / "out.glb"));
}

Names NamesOf(LoadedScene& loaded) {
    Names names;
    for (kernix::AnimationModel* animation : AnimationsOf(loaded.Scene()))
        names.push_back(kernix::ToUtf8(animation->m_name));
    return names;
}

kernix::TransformTrack::Sample Pose(LoadedScene& loaded, std::size_t node, kernix::AnimationModel* animation,
                                    float time) {
    kernix::NodeModel& model = *loaded.Node(node);
    auto* controller = model.GetController(vl::zr::kControllerTransform);
    vl::zr::Track* track = controller != nullptr ? controller->GetTrack(animation) : nullptr;
    const kernix::TransformTrack none(nullptr);
    return (track != nullptr ? static_cast<kernix::TransformTrack&>(*track) : none)
        .Evaluate(time, model.GetRestPose());
}

std::vector<float> KeyTimes(kernix::AnimationModel& animation) {
    std::vector<float> times;
    for (vl::zr::Track* track : animation.Tracks()) {
        auto* transform = dynamic_cast<kernix::TransformTrack*>(track);
        if (transform == nullptr) continue;
        for (int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale})
            for (int i = 0; i < transform->Count(type); ++i) times.push_back(transform->TimeOf(type, i));
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

double Difference(const double (&a)[3], const double (&b)[3]) {
    return std::max({std::fabs(a[0] - b[0]), std::fabs(a[1] - b[1]), std::fabs(a[2] - b[2])});
}

double Difference(const kernix::Rotation& a, const kernix::Rotation& b) {
    const auto to = [&](double sign) {
        return std::max({std::fabs(a.x - sign * b.x), std::fabs(a.y - sign * b.y),
                         std::fabs(a.z - sign * b.z), std::fabs(a.w - sign * b.w)});
    };
    return std::min(to(1), to(-1));
}

void ExpectPlaysInSequence(LoadedScene& before, const Names& names, LoadedScene& after,
                           const std::string& merged, double gap, const Rounding& rounding) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    kernix::AnimationModel* result = ChooseAnimation(after.Scene(), merged);
    const std::vector<float> resultTimes = KeyTimes(*result);
    double next = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        kernix::AnimationModel* source = ChooseAnimation(before.Scene(), names[i]);
        const std::vector<float> times = KeyTimes(*source);
        const double offset = i == 0 ? 0 : next - before.Scene().GetStartTime(source);
        const double length = double{before.Scene().GetEndTime(source)} - before.Scene().GetStartTime(source);
        const bool givesWay = length == 0 && gap == 0 && i + 1 < names.size();
        for (const float time : givesWay ? std::vector<float>() : times) {
            const float there = Nearest(resultTimes, static_cast<float>(time + offset));
            std::vector<float> moments{there};
            // Where two sources meet, the first vector of the second may be shifted, and rotations jump.
            if (time == times.front()) {
                moments.push_back(std::nextafter(there, kInfinity));
                moments.push_back(Nearest(resultTimes, there + 0.001F));
            }
            if (time == times.back()) moments.push_back(std::nextafter(there, -kInfinity));
            float down = there, up = there;
            for (int step = 0; step < rounding.steps; ++step) {
                moments.push_back(down = std::nextafter(down, -kInfinity));
                moments.push_back(up = std::nextafter(up, kInfinity));
            }
            for (std::size_t node = 0; node < before.Document().Elements(Kind::kNode).size(); ++node) {
                if (before.Node(node) == nullptr) continue;
                SCOPED_TRACE(Join(names[i], " node ", node, " at ", std::to_string(time)));
                const auto wanted = Pose(before, node, source, time);
                double translation = 1, rotation = 1, scale = 1;
                for (const float moment : moments) {
                    const auto got = Pose(after, node, result, moment);
                    translation = std::min(translation, Difference(wanted.translation, got.translation));
                    rotation = std::min(rotation, Difference(wanted.rotation, got.rotation));
                    scale = std::min(scale, Difference(wanted.scale, got.scale));
                }
                EXPECT_LT(translation, rounding.difference);
                EXPECT_LT(rotation, rounding.difference);
                EXPECT_LT(scale, rounding.difference);
            }
        }
        next = before.Scene().GetEndTime(source) + offset + gap;
    }
}

}  // namespace zr::test
