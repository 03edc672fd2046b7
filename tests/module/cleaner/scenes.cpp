// SPDX-License-Identifier: MIT
#include "tests/module/cleaner/scenes.h"

#include <memory>
#include <random>
#include <sstream>
#include <utility>

#include "kernix/scene/plain_objects.h"
#include "kernix/utf.h"

namespace cleaner_test {

using kernix::SceneModel;

namespace {

std::string Numbered(const char* what, std::size_t number) {
    std::string name = what;
    name += std::to_string(number);
    return name;
}

// For example "node n7 of 41 mode 0".
std::string Line(const char* what, const std::string& name, unsigned count, int mode) {
    std::ostringstream line;
    line << what << ' ' << name << " of " << count << " mode " << mode;
    return line.str();
}

std::string NameOf(vl::zr::Node* node) {
    return static_cast<kernix::NodeModel*>(node)->GetNameText();
}
std::string NameOf(vl::zr::Layer* layer) {
    return static_cast<kernix::LayerModel*>(layer)->m_name;
}
std::string NameOf(vl::zr::Material* material) {
    return *static_cast<kernix::MaterialModel*>(material)->GetNameText();
}
std::string NameOf(vl::zr::Animation* animation) {
    return kernix::ToUtf8(static_cast<kernix::AnimationModel*>(animation)->m_name);
}
std::string NameOf(vl::zr::Viewport* viewport) {
    return kernix::ToUtf8(viewport->m_strName.Text());
}

unsigned CountOf(vl::Array* array) {
    return static_cast<unsigned>(array->m_nCount);
}

}  // namespace

void CallLog::Add(std::string line) {
    m_lines.push_back(std::move(line));
    if (m_onLine) m_onLine();
}

void CallLog::RecordLayerRemoval(vl::zr::Layer* layer, int mode) {
    Add(Line("layer", NameOf(layer), m_scene.m_pLayers->GetCount(), mode));
}

void CallLog::RecordNodeRemoval(vl::zr::Node* node, int mode) {
    Add(Line("node", NameOf(node), CountOf(m_scene.m_pNodes), mode));
}

void CallLog::RecordMaterialRemoval(vl::zr::Material* material, int mode) {
    Add(Line("material", NameOf(material), CountOf(m_scene.m_pMaterials), mode));
}

void CallLog::RecordAnimationRemoval(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) {
    Add(Line("animation", NameOf(animation), CountOf(scene->m_pAnimations), mode));
}

void CallLog::RecordViewportRemoval(vl::zr::Scene* scene, vl::zr::Viewport* viewport, int mode) {
    const auto viewports = vl::Ref<vl::InterfaceArray>::Adopt(scene->GetAllViewports());
    Add(Line("viewport", NameOf(viewport), viewports->GetCount(), mode));
}

std::vector<std::string> Content(SceneModel& scene) {
    std::vector<std::string> content;
    const auto add = [&](const char* what, auto* element) { content.push_back(what + NameOf(element)); };
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) add("node ", node);
    for (auto* material : vl::ArrayOf<vl::zr::Material*>(scene.m_pMaterials)) add("material ", material);
    for (unsigned i = 0; scene.m_pLayers != nullptr && i < scene.m_pLayers->GetCount(); ++i) {
        add("layer ", static_cast<vl::zr::Layer*>(scene.m_pLayers->GetAt(i)));
    }
    for (const auto& viewport : scene.Viewports())
        add("viewport ", static_cast<vl::zr::Viewport*>(viewport.Get()));
    for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(scene.m_pAnimations)) add("animation ", animation);
    return content;
}

vl::Ref<vl::zr::Object3D> MakeMesh(kernix::MaterialModel* material, float x) {
    auto geometry = std::make_shared<kernix::MeshGeometry>();
    geometry->positions =
        std::make_shared<kernix::Positions>(kernix::Positions{x, 0, 0, x + 1, 0, 0, x, 1, 0});
    geometry->faces = kernix::MakeFaces({0, 1, 2});
    auto attributes = std::make_shared<kernix::FaceAttributes>(1, material->GetId());
    return vl::Ref<vl::zr::Object3D>::Adopt(
        new kernix::MeshModel(std::move(geometry), std::move(attributes),
                              std::make_shared<kernix::MaterialUses>(std::vector{material}), 0));
}

vl::Ref<SceneModel> RandomScene(unsigned seed) {
    std::mt19937 random(seed);
    const auto pick = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    auto scene = vl::Ref<SceneModel>::Adopt(new SceneModel);

    std::vector<kernix::MaterialModel*> materials;
    for (std::size_t i = 0; i < 12; ++i) {
        materials.push_back(scene->AddMaterial(Numbered("m", i), Numbered("content ", pick(9))));
    }
    scene->m_pDefaultMaterial = materials[pick(12)];

    std::vector<kernix::NodeModel*> nodes;
    const std::size_t count = 40 + pick(40);
    for (std::size_t i = 0; i < count; ++i) {
        kernix::NodeModel* parent = pick(4) == 0 || nodes.empty() ? nullptr : nodes[pick(nodes.size())];
        nodes.push_back(scene->AddNode(parent, Numbered("n", i)));
    }
    for (kernix::NodeModel* node : nodes) {
        if (pick(8) == 0) node->SetRestPose({{static_cast<float>(pick(3)), 0, 0}, {}, {1, 1, 1}});
        if (pick(10) == 0) node->m_dwFlags = vl::zr::kNodeSystem;
        if (pick(3) == 0) node->GetMetadata(true)->Set(u"key", vl::Var(7));
        using Object = vl::Ref<vl::zr::Object3D>;
        const std::size_t what = pick(20);
        if (what < 8) node->SetObject(MakeMesh(materials[pick(8)], static_cast<float>(pick(2))));
        if (what == 8) node->SetObject(Object::Adopt(kernix::CreateDummy()));
        if (what == 9) node->SetObject(Object::Adopt(kernix::CreateNote()));
        if (what == 10) {
            auto* light = new kernix::LightModel(vl::zr::kLightSpot);
            node->SetObject(Object::Adopt(light));
            light->SetTarget(nodes[pick(nodes.size())]);
        }
        if (what == 11) {
            auto* camera = new kernix::CameraModel;
            node->SetObject(Object::Adopt(camera));
            camera->SetTarget(nodes[pick(nodes.size())]);
        }
        // Subscribers that are nodes: one with a camera, and one with nothing.
        if (what == 12) nodes[pick(nodes.size())]->Subscribe(node);
    }

    std::vector<kernix::LayerModel*> layers;
    for (std::size_t i = 0; i < 6; ++i) {
        layers.push_back(scene->AddLayer(Numbered("l", i)));
        for (std::size_t k = pick(4); k > 0; --k) layers.back()->AddMember(nodes[pick(nodes.size())]);
    }
    std::vector<kernix::AnimationModel*> animations;
    for (int i = 0; i < 5; ++i) {
        animations.push_back(scene->AddAnimation(u"a" + std::u16string(1, static_cast<char16_t>(u'0' + i))));
        nodes[pick(nodes.size())]->AddTransformController()->AddTrack(animations.back());
    }
    const int kinds[] = {1, 2, 6, 2, 3};
    for (std::size_t i = 0; i < 8; ++i) {
        kernix::ViewportModel* viewport = scene->AddViewport(kinds[pick(5)], Numbered("v", i));
        if (pick(2) == 0) viewport->m_pLayer = layers[pick(layers.size())];
        if (pick(3) == 0) viewport->AddAnimationReference(animations[pick(animations.size())]);
    }
    return scene;
}

std::vector<std::string> Trace(unsigned seed,
                               const std::function<int(vl::zr::Scene*, ChangeRecord*)>& operation) {
    const vl::Ref<SceneModel> scene = RandomScene(seed);
    const auto log = vl::Ref<CallLog>::Adopt(new CallLog(*scene));
    scene->m_onNotify = [&log](int code, int a, int b) {
        std::ostringstream line;
        line << "notify " << code << ' ' << a << ' ' << b;
        log->m_lines.push_back(line.str());
    };
    const int count = operation(scene.Get(), log.Get());
    std::vector<std::string> trace = log->m_lines;
    trace.push_back(Numbered("count ", static_cast<std::size_t>(count)));
    for (std::string& line : Content(*scene)) trace.push_back(std::move(line));
    scene->m_onNotify = nullptr;
    return trace;
}

}  // namespace cleaner_test
