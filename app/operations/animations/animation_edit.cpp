// SPDX-License-Identifier: MIT
#include "app/operations/animations/animation_edit.h"

#include <algorithm>

#include "base/text.h"
#include "host/anim_manager.h"
#include "host/stream.h"
#include "kernix/utf.h"

namespace zr {

std::string HolderName(const LoadedScene& loaded, const kernix::NodeModel& node) {
    if (!node.GetNameText().empty()) return Join("node \"", node.GetNameText(), "\"");
    return Join("node ", loaded.IndexOf(&node).value_or(0));
}

void ForEachController(
    LoadedScene& loaded,
    const std::function<void(vl::zr::Controller& controller, const std::string& holder)>& visit) {
    kernix::SceneModel& scene = loaded.Scene();
    const auto visitAll = [&](vl::Array* controllers, const std::string& holder) {
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(controllers))
            visit(*controller, holder);
    };
    for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes))
        visitAll(node->m_pControllers, HolderName(loaded, static_cast<kernix::NodeModel&>(*node)));
    int index = 0;
    for (vl::zr::Material* material : vl::ArrayOf<vl::zr::Material*>(scene.m_pMaterials))
        visitAll(material->m_pControllers, Join("material ", index++));
}

void CopyTrack(vl::zr::Controller& source, vl::zr::Track* track, vl::zr::Controller& target,
               kernix::AnimationModel* animation) {
    const auto stream = vl::Ref<vl::Stream>::AdoptNew(vl::Stream::CreateInMemory());
    source.SaveTrack(stream.Get(), track, 0);
    stream->Seek(0, 0);
    target.LoadTrack(stream.Get(), 0, target.AddTrack(animation));
}

std::string Quoted(const kernix::AnimationModel& animation) {
    return Join("\"", kernix::ToUtf8(animation.m_name), "\"");
}

bool HasKeys(const kernix::AnimationModel& animation) {
    const auto& tracks = animation.Tracks();
    return std::any_of(tracks.begin(), tracks.end(),
                       [](vl::zr::Track* track) { return track->GetKeyCount() != 0; });
}

std::vector<std::string> RemoveAnimations(Host& host, LoadedScene& loaded, const Animations& animations) {
    const auto words = vl::Ref<vl::Array>::AdoptNew(host.CreateArray());
    vl::ArrayOf<vl::zr::Animation*> list(words.Get());
    for (kernix::AnimationModel* animation : animations) list.Add(animation);
    host.Create<zr_ANIM_MANAGER>(kTypeAnimManager)->RemoveAnimations(nullptr, words.Get());

    std::vector<std::string> held;
    for (const KeptElement& kept : loaded.Kept()) {
        if (kept.kind != gltf::Kind::kAnimation) continue;
        kernix::AnimationModel* animation = loaded.Animation(kept.index);
        if (std::find(animations.begin(), animations.end(), animation) != animations.end())
            held.push_back(Join("animation ", Quoted(*animation), ": ", kept.reason, " refers to it"));
    }
    return held;
}

void FollowInViewports(kernix::SceneModel& scene, const Animations& old, const Animations& added) {
    for (const auto& viewport : scene.Viewports()) {
        const vl::ArrayOf<vl::zr::AnimationReference*> references(viewport->m_pAnimationReferences);
        const bool plays = std::any_of(references.begin(), references.end(), [&](const auto* reference) {
            return std::find(old.begin(), old.end(), reference->pAnimation) != old.end();
        });
        if (!plays) continue;
        for (kernix::AnimationModel* animation : added) viewport->AddAnimationReference(animation);
    }
}

std::vector<std::string> SkippedChannels(const LoadedScene& loaded, const Animations& animations) {
    std::vector<std::string> lines;
    for (const SkippedChannel& skipped : loaded.Skipped()) {
        kernix::AnimationModel* animation = loaded.Animation(skipped.animation);
        if (std::find(animations.begin(), animations.end(), animation) != animations.end())
            lines.push_back(Join(skipped.Place(), " of ", Quoted(*animation), ": ",
                                 skipped.reason == Skipped::kUnreadable
                                     ? "its data is stored in a form that cannot be read"
                                     : "nothing in the scene shows what it moves"));
    }
    return lines;
}

}  // namespace zr
