// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_edit.h"
#include "app/scene/animations_of.h"
#include "app/scene/loaded_scene.h"
#include "kernix/utf.h"

namespace zr {
namespace {

int CountOfKind(kernix::SceneModel& scene, int kind) {
    return vl::Ref<vl::Array>::Adopt(scene.GetObjectsOfKind(kind))->m_nCount;
}

void PrintScene(kernix::SceneModel& scene) {
    std::printf("nodes       %d\n", scene.m_pNodes->m_nCount);
    constexpr struct {
        const char* label;
        int kind;
    } kKinds[] = {{"meshes", vl::zr::kKindRenderable}, {"lights", vl::zr::kKindLight},
                  {"cameras", vl::zr::kKindCamera},    {"bones", vl::zr::kKindBone},
                  {"dummies", vl::zr::kKindDummy},     {"notes", vl::zr::kKindNote},
                  {"selectors", vl::zr::kKindSelector}};
    for (const auto& kind : kKinds) std::printf("%-11s %d\n", kind.label, CountOfKind(scene, kind.kind));
    std::printf("materials   %d\n", scene.m_pMaterials->m_nCount);
    std::printf("layers      %u\n", scene.m_pLayers != nullptr ? scene.m_pLayers->GetCount() : 0u);
    std::printf("viewports   %zu\n", scene.Viewports().size());
    std::printf("animations  %d\n", scene.m_pAnimations->m_nCount);
    for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
        int keys = 0;
        for (vl::zr::Track* track : animation->Tracks()) keys += track->GetKeyCount();
        std::printf("  \"%s\"  %g to %g s, %zu tracks, %d keys\n", kernix::ToUtf8(animation->m_name).c_str(),
                    static_cast<double>(scene.GetStartTime(animation)),
                    static_cast<double>(scene.GetEndTime(animation)), animation->Tracks().size(), keys);
    }
}

}  // namespace

void AddInfoCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("info", "Show what the host sees of a scene");
    auto file = std::make_shared<std::string>();
    command->add_option("scene", *file, "Scene to read (.gltf, .glb)")->required();
    command->callback([file, &session] {
        session.SetCommand([file, &session] {
            LoadedScene loaded(session.LoadDocument(PathFromUtf8(*file)));
            Host& host = session.GetHost();
            std::printf("module      %s, version %s\n", kernix::ToUtf8(host.ModuleDescription()).c_str(),
                        kernix::ToUtf8(host.ModuleVersion()).c_str());
            PrintScene(loaded.Scene());
            for (const std::string& line : SkippedChannels(loaded, AnimationsOf(loaded.Scene())))
                std::printf("not played  %s\n", line.c_str());
            return 0;
        });
    });
}

}  // namespace zr
