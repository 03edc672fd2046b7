// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <thread>
#include <vector>

#include "host/anim_manager.h"
#include "host/hdr_helper.h"
#include "host/params.h"
#include "kernix/scene/plain_objects.h"
#include "module/cleaner/cleaner.h"
#include "module/frame/entry.h"
#include "tests/module/cleaner/scenes.h"
#include "tests/module/test_host.h"

using kernix::SceneModel;

namespace {

// The method's parameters from 1 to 10.
enum Parameter {
    kAnimations,
    kEmptyNodes,
    kMaterials,
    kModelViews,
    kLayers,
    kMetadata,
    kNotes,
    kMeshDupes,
    kEnvironment,
    kEqualMaterials
};
constexpr int kParameters = 10;

class EnvironmentHelper final : public zr_HDR_HELPER {
public:
    explicit EnvironmentHelper(std::vector<std::string>& lines) : m_lines(lines) {}
    int RemoveEnvironment(vl::zr::Scene*, vl::Context*, ChangeRecord*) override {
        m_lines.push_back("environment");
        return 3;
    }

private:
    std::vector<std::string>& m_lines;
};

// A host with the module's own extensions.
class CleanerRun : public HostTest {
protected:
    void SetUp() override { host.StartModule(nullptr, ZRDLLFunc); }

    static vl::Ref<vl::Params> Options(SceneModel* scene, const std::array<bool, kParameters>& on) {
        auto params = vl::Ref<vl::Params>::Adopt(vl::Params::Create());
        params->Add(vl::ToWord<vl::zr::Scene*>(scene), ZR_VALUE_SCENE);
        for (const bool option : on) params->Add(option ? 1 : 0, ZR_VALUE_BOOL);
        return params;
    }

    vl::Ref<vl::Extension> m_cleaner = vl::Ref<vl::Extension>::Adopt(CreateCleaner());
};

// One thing for every option. Merging materials makes two meshes equal, and removing the repeated one leaves
// a node empty, which is removed too.
vl::Ref<SceneModel> SceneWithEverything() {
    using Object = vl::Ref<vl::zr::Object3D>;
    auto scene = vl::Ref<SceneModel>::Adopt(new SceneModel);
    kernix::MaterialModel* used = scene->AddMaterial("used", "red");
    kernix::MaterialModel* equal = scene->AddMaterial("equal", "red");
    scene->AddMaterial("unused", "blue");
    kernix::NodeModel* mesh = scene->AddNode(nullptr, "mesh");
    mesh->SetObject(cleaner_test::MakeMesh(used, 0));
    mesh->GetMetadata(true)->Set(u"key", vl::Var(1));
    scene->AddNode(scene->AddNode(nullptr, "group"), "same mesh")
        ->SetObject(cleaner_test::MakeMesh(equal, 0));
    scene->AddNode(nullptr, "empty");
    scene->AddNode(nullptr, "note")->SetObject(Object::Adopt(kernix::CreateNote()));
    kernix::LayerModel* shown = scene->AddLayer("shown");
    shown->AddMember(mesh);
    scene->AddLayer("unused layer");
    kernix::AnimationModel* played = scene->AddAnimation(u"played");
    scene->AddAnimation(u"unused animation");
    kernix::ViewportModel* view = scene->AddViewport(vl::zr::kViewportView, "view");
    view->m_pLayer = shown;
    view->AddAnimationReference(played);
    scene->AddViewport(vl::zr::kViewportModelView, "model view");
    return scene;
}

// What is left, with the nodes that have metadata.
std::vector<std::string> State(SceneModel& scene) {
    std::vector<std::string> state = cleaner_test::Content(scene);
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        vl::VarMap* metadata = node->GetMetadata(false);
        if (metadata != nullptr && metadata->GetCount() > 0) state.push_back("metadata");
    }
    return state;
}

// The elements of `before` missing from `after`, on one line.
std::string Gone(const std::vector<std::string>& before, const std::vector<std::string>& after) {
    std::string gone;
    for (const std::string& element : before) {
        if (std::find(after.begin(), after.end(), element) == after.end()) {
            if (!gone.empty()) gone += ", ";
            gone += element;
        }
    }
    return gone;
}

TEST_F(CleanerRun, EveryParameterSwitchesItsOperation) {
    const std::pair<Parameter, const char*> cases[] = {
        {kAnimations, "animation unused animation"},
        {kEmptyNodes, "node empty"},
        {kMaterials, "material unused"},
        {kModelViews, "viewport model view"},
        {kLayers, "layer unused layer"},
        {kMetadata, "metadata"},
        {kNotes, "node note"},
        {kMeshDupes, ""},
        {kEnvironment, ""},
        {kEqualMaterials, "material equal"},
    };
    for (const auto& [parameter, gone] : cases) {
        std::vector<std::string> environment;
        host.AddExtension(kTypeHdrHelper, [&] { return new EnvironmentHelper(environment); });
        const auto scene = SceneWithEverything();
        const auto before = State(*scene);
        std::array<bool, kParameters> on{};
        on[parameter] = true;
        EXPECT_EQ(m_cleaner->Invoke(1, Options(scene.Get(), on).Get(), nullptr), vl::kSuccess);
        EXPECT_EQ(Gone(before, State(*scene)), gone) << "parameter " << parameter + 1;
        EXPECT_EQ(environment.empty(), parameter != kEnvironment);
    }
}

// Missing options are on; a host's own extension runs last.
TEST_F(CleanerRun, OperationsRunInTheirOrder) {
    std::vector<std::string> steps;
    host.AddExtension(kTypeHdrHelper, [&] { return new EnvironmentHelper(steps); });
    const auto scene = SceneWithEverything();
    auto state = State(*scene);
    scene->m_onNotify = [&](int, int, int) {
        auto now = State(*scene);
        steps.push_back(Gone(state, now));
        state = std::move(now);
    };
    const auto params = vl::Ref<vl::Params>::Adopt(vl::Params::Create());
    params->Add(vl::ToWord<vl::zr::Scene*>(scene.Get()), ZR_VALUE_SCENE);
    EXPECT_EQ(m_cleaner->Invoke(1, params.Get(), nullptr), vl::kSuccess);
    EXPECT_EQ(steps, (std::vector<std::string>{"metadata", "node same mesh, material equal",
                                               "node group, node empty", "viewport model view",
                                               "layer unused layer", "node note", "material unused",
                                               "animation unused animation", "environment"}));
    scene->m_onNotify = nullptr;
}

TEST_F(CleanerRun, DoesNothingItWasNotAskedFor) {
    const auto scene = SceneWithEverything();
    const auto before = State(*scene);
    EXPECT_EQ(m_cleaner->Invoke(2, Options(scene.Get(), {}).Get(), nullptr), vl::kWrongClass);
    EXPECT_EQ(m_cleaner->Invoke(1, Options(scene.Get(), {}).Get(), nullptr), vl::kSuccess);
    EXPECT_EQ(m_cleaner->Invoke(1, nullptr, nullptr), vl::kSuccess) << "no list, so no scene";
    const auto context = vl::Ref<vl::Context>::Adopt(kernix::CreateContext());
    context->SetBreak(true);
    std::array<bool, kParameters> breakable;
    breakable.fill(true);
    breakable[kEqualMaterials] = false;
    EXPECT_EQ(m_cleaner->Invoke(1, Options(scene.Get(), breakable).Get(), context.Get()), vl::kSuccess);
    EXPECT_EQ(State(*scene), before);
}

// Operations that need an extension of the host do nothing without it.
TEST_F(CleanerRun, MissingExtensionsCountZero) {
    const auto scene = SceneWithEverything();
    auto& cleaner = dynamic_cast<CCleanerImpl&>(*m_cleaner);
    EXPECT_EQ(cleaner.RemoveEnvMapsAndBackplates(scene.Get(), nullptr, nullptr), 0);
    std::vector<std::string> lines;
    host.AddExtension(kTypeHdrHelper, [&] { return new EnvironmentHelper(lines); });
    EXPECT_EQ(cleaner.RemoveEnvMapsAndBackplates(scene.Get(), nullptr, nullptr), 3);
    host.AddExtension(kTypeAnimManager, [] { return nullptr; });
    EXPECT_EQ(cleaner.RemoveUnusedAnimations(scene.Get(), nullptr, nullptr), 0);
    EXPECT_EQ(scene->m_pAnimations->m_nCount, 2);
}

TEST_F(CleanerRun, TwoAtOnceDoWhatEachDoesAlone) {
    const auto clean = [&](unsigned seed, std::vector<std::string>& state) {
        const auto cleaner = vl::Ref<vl::Extension>::Adopt(host.CreateExtension(kTypeCleaner));
        for (unsigned i = seed; i < seed + 40; ++i) {
            const auto scene = cleaner_test::RandomScene(i);
            std::array<bool, kParameters> on;
            on.fill(true);
            cleaner->Invoke(1, Options(scene.Get(), on).Get(), nullptr);
            for (std::string& line : State(*scene)) state.push_back(std::move(line));
        }
    };
    std::vector<std::string> alone[2];
    std::vector<std::string> together[2];
    for (unsigned i = 0; i < 2; ++i) clean(i * 100, alone[i]);
    std::thread other(clean, 0, std::ref(together[0]));
    clean(100, together[1]);
    other.join();
    EXPECT_EQ(together[0], alone[0]);
    EXPECT_EQ(together[1], alone[1]);
}

}  // namespace
