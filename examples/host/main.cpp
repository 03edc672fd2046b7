// SPDX-License-Identifier: MIT
// A host in one file: loads modules, builds a scene in memory and runs the extensions of zrtools on it.
//
//   example-host zrtools.so [another module ...]
#include <dlfcn.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "host/anim_manager.h"
#include "host/cad_text.h"
#include "host/cleaner.h"
#include "host/node.h"
#include "host/params.h"
#include "host/ref.h"
#include "host/serializer.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/scene_model.h"

using kernix::SceneModel;
using vl::Ref;

namespace {

// Loads a module and starts it. It stays loaded: its objects may live as long as the program.
void LoadModule(kernix::HostAppBase& host, const char* file) {
    void* library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    void* entry = dlsym(library, kModuleEntryName);
    if (entry == nullptr) throw std::runtime_error(std::string(file) + " is not a module");
    host.StartModule(static_cast<HINSTANCE>(library), reinterpret_cast<ModuleEntry>(entry));
}

template <typename T>
Ref<T> Create(kernix::HostAppBase& host, const char* typeName) {
    const auto extension = Ref<vl::Extension>::Adopt(host.CreateExtension(typeName));
    auto* wanted = dynamic_cast<T*>(extension.Get());
    if (wanted == nullptr) throw std::runtime_error(std::string("no module offers ") + typeName);
    return Ref<T>::Share(wanted);
}

// A box that slides along x in one animation and along y in another, and an empty node.
Ref<SceneModel> BuildScene() {
    auto scene = Ref<SceneModel>::AdoptNew(new SceneModel);
    kernix::NodeModel* box = scene->AddNode(nullptr, "box");
    auto geometry = std::make_shared<kernix::MeshGeometry>();
    geometry->positions = std::make_shared<kernix::Positions>(kernix::Positions{0, 0, 0, 1, 0, 0, 0, 1, 0});
    geometry->faces = kernix::MakeFaces({0, 1, 2});
    auto uses = std::make_shared<kernix::MaterialUses>();
    uses->Add(scene->AddMaterial("red", "red"));
    box->SetObject(Ref<vl::zr::Object3D>::AdoptNew(
        new kernix::MeshModel(std::move(geometry), nullptr, std::move(uses), 0)));
    scene->AddNode(nullptr, "empty");

    for (const bool alongX : {true, false}) {
        kernix::AnimationModel* animation = scene->AddAnimation(alongX ? u"right" : u"up");
        kernix::TransformTrack* track = box->AddTransformController()->AddTransformTrack(animation);
        track->AddPosition(alongX ? 0.0F : 2.0F)->SetValue({0, 0, 0});
        track->AddPosition(alongX ? 1.0F : 3.0F)->SetValue({alongX ? 5.0F : 0.0F, alongX ? 0.0F : 5.0F, 0});
    }
    return scene;
}

void CleanScene(kernix::HostAppBase& host, SceneModel& scene) {
    const auto cleaner = Create<zr_CLEANER>(host, kTypeCleaner);
    const int before = scene.m_pNodes->m_nCount;
    const int removed = cleaner->RemoveEmptyNodes(&scene, nullptr, nullptr);
    std::printf("cleaner: %d of %d nodes removed\n", removed, before);
}

void MergeAnimations(kernix::HostAppBase& host, SceneModel& scene) {
    const auto manager = Create<zr_ANIM_MANAGER>(host, kTypeAnimManager);
    vl::zr::Animation* merged = manager->MergeAnimations(
        nullptr, scene.m_pAnimations, true, ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE);
    scene.SetActiveAnimation(static_cast<kernix::AnimationModel*>(merged));
    std::printf("animation manager: %g s long, %d animation left\n", scene.GetEndTime(merged),
                scene.m_pAnimations->m_nCount);
}

void ExportRecords(kernix::HostAppBase& host, SceneModel& scene) {
    const auto tool = Create<vl::tk::Serializer>(host, kTypeKeyframeTool);
    tool->m_pScene = &scene;
    tool->m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kAssignNames | vl::tk::kExtractKeys;
    if (tool->Process(0) != 1) throw std::runtime_error("nothing to export");
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(tool->m_pAllNodes)) {
        const int keys = tool->GetKeyCount(record, vl::zr::kKeyPosition);
        std::printf("keyframe tools: %s with %d positions\n", record->szName, keys);
        for (int i = 0; i < keys; ++i) {
            ExportPositionKey key;
            tool->GetPositionKey(record, i, &key);
            std::printf("  %g s: %g %g %g\n", key.fTime, key.vValue.x, key.vValue.y, key.vValue.z);
        }
    }
}

void DrawText(kernix::HostAppBase& host) {
    const auto text = Create<vl::zr::legacy::CadText>(host, kTypeCadText);
    const auto strokes = Ref<vl::zr::legacy::GlyphContour>::Adopt(
        text->CreateStrokeContours(u"Host", LOGFONTW{}, 12, nullptr));
    std::printf("CAD text: %d strokes\n", strokes->GetContourCount());
}

// The extension of ../plugin, if its module was loaded.
void CountNodes(kernix::HostAppBase& host, SceneModel& scene) {
    const auto counter = Ref<vl::Extension>::Adopt(host.CreateExtension("EXAMPLE_NODE_COUNTER"));
    if (!counter) return;
    const auto params = Ref<vl::Params>::AdoptNew(vl::Params::Create());
    params->Add(vl::ToWord<vl::zr::Scene*>(&scene), ZR_VALUE_SCENE);
    if (counter->Invoke(1, params.Get(), nullptr) != vl::kSuccess) return;
    std::printf("node counter: %d\n", static_cast<int>(counter->GetParam(0, 0, ZR_VALUE_INT)));
}

}  // namespace

int main(int argc, char** argv) try {
    kernix::HostAppBase host;
    for (int i = 1; i < argc; ++i) LoadModule(host, argv[i]);
    const Ref<SceneModel> scene = BuildScene();
    CleanScene(host, *scene);
    MergeAnimations(host, *scene);
    ExportRecords(host, *scene);
    DrawText(host);
    CountNodes(host, *scene);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "example-host: %s\n", error.what());
    return 1;
}
