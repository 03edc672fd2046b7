// SPDX-License-Identifier: MIT
#include "app/operations/export/animation_runs.h"

#include <stdexcept>
#include <string>

#include "app/operations/export/bake.h"
#include "app/operations/export/record_keys.h"
#include "app/operations/export/record_nodes.h"
#include "app/scene/animations_of.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// Which nodes are split may depend on how they move. A temporary animation with the fullest track of every
// node yields records that fit all other animations; it exists as long as this object.
class FullestTracks {
public:
    explicit FullestTracks(kernix::SceneModel& scene) : m_scene(scene), m_animation(scene.AddAnimation(u"")) {
        for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
            auto* controller = static_cast<kernix::TransformControllerModel*>(
                node->GetController(vl::zr::kControllerTransform));
            if (controller == nullptr) continue;
            vl::zr::Track* fullest = nullptr;
            for (auto* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
                if (fullest == nullptr || track->GetKeyCount() > fullest->GetKeyCount()) fullest = track;
            }
            if (fullest == nullptr) continue;
            kernix::TransformTrack& copy = *controller->AddTransformTrack(m_animation);
            for (const int keyType : kKeyTypes)
                copy.SetCurve(keyType, kernix::StoredCurve(
                                           KeysOf(static_cast<kernix::TransformTrack&>(*fullest), keyType)));
        }
    }
    ~FullestTracks() { m_scene.DeleteAnimation(m_animation); }

    FullestTracks(const FullestTracks&) = delete;
    FullestTracks& operator=(const FullestTracks&) = delete;

    kernix::AnimationModel& Animation() { return *m_animation; }

private:
    kernix::SceneModel& m_scene;
    kernix::AnimationModel* m_animation;
};

// Runs the tools on the animation's baked curves, which are restored afterwards.
Tool RunBaked(Host& host, LoadedScene& loaded, kernix::AnimationModel& animation,
              const ExportOptions& options, Curves curves) {
    const BakedCurves baked(loaded.Scene(), animation, options, curves);
    return RunTool(host, loaded, &animation, options);
}

std::size_t KeysOf(const Tool& tool, const ExportOptions& options) {
    std::size_t count = 0;
    const auto add = [&count](const vl::Array* track) {
        if (track != nullptr) count += static_cast<std::size_t>(track->m_nCount);
    };
    for (const ExportNode* record : AllRecords(tool)) {
        if (!ReportsKeys(*record, options)) continue;
        add(record->pPosKeys);
        add(record->pRotKeys);
        add(record->pScaleKeys);
    }
    return count;
}

void Gather(const Tool& tool, const kernix::AnimationModel& animation, const ExportOptions& options,
            Runs& runs) {
    CollectKeys(tool, animation, options, runs.replaced, runs.added);
    runs.played.push_back({&animation, tool->m_fTimeScale, tool->m_fTimeOffset, tool->GetStartTime()});
    CollectSampledKeys(runs.played.back(), runs.factors, runs.replaced);
    runs.keys += KeysOf(tool, options);
}

// Gathers the keys of one animation from records of its own.
void RunSeparately(Host& host, LoadedScene& loaded, kernix::AnimationModel& animation,
                   const ExportOptions& options, Runs& runs) {
    const Tool tool = RunBaked(host, loaded, animation, options, Curves::kAny);
    if (!runs.records) runs.records = tool;
    const std::size_t addedBefore = runs.added.size();
    Gather(tool, animation, options, runs);
    if (!SameStructure(runs.records, tool) &&
        (runs.added.size() != addedBefore || !KeysFit(tool, runs.records))) {
        throw std::runtime_error("with these options, animation \"" + kernix::ToUtf8(animation.m_name) +
                                 "\" needs different nodes from the others: export the animations one at a "
                                 "time with --animation");
    }
}

}  // namespace

Runs RunAll(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress) {
    kernix::SceneModel& scene = loaded.Scene();
    const std::vector<kernix::AnimationModel*> animations = AnimationsOf(scene);
    Runs runs(loaded, options);
    if (animations.empty()) runs.records = RunTool(host, loaded, nullptr, options);
    if (animations.size() == 1) RunSeparately(host, loaded, *animations[0], options, runs);
    if (animations.size() < 2) return runs;
    {
        FullestTracks fullest(scene);
        runs.records = RunBaked(host, loaded, fullest.Animation(), options, Curves::kAny);
    }
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        kernix::AnimationModel& animation = *animations[i];
        bool fits = false;
        {
            const BakedCurves baked(scene, animation, options, Curves::kAny);
            fits = RunToolAgain(runs.records, scene, animation);
        }
        if (fits) {
            Gather(runs.records, animation, options, runs);
        } else {
            RunSeparately(host, loaded, animation, options, runs);
        }
        for (vl::zr::Track* track : animation.Tracks()) {
            if (auto* transform = dynamic_cast<kernix::TransformTrack*>(track)) transform->Unload();
        }
    }
    return runs;
}

Runs RunOne(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
            const ExportOptions& options) {
    Runs runs(loaded, options);
    if (animation == nullptr) {
        runs.records = RunTool(host, loaded, nullptr, options);
    } else {
        runs.records = RunBaked(host, loaded, *animation, options, Curves::kLinear);
        if (!options.Has(vl::tk::kIgnoreAnimation)) Gather(runs.records, *animation, options, runs);
    }
    return runs;
}

void PackAll(kernix::SceneModel& scene) {
    for (const kernix::AnimationModel* animation : AnimationsOf(scene)) {
        for (vl::zr::Track* track : animation->Tracks()) {
            if (auto* transform = dynamic_cast<kernix::TransformTrack*>(track)) PackKeys(*transform);
        }
    }
}

}  // namespace zr
