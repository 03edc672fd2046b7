// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/scene/curves.h"
#include "app/scene/loaded_scene.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/collect.h"
#include "host/array.h"
#include "host/kinds.h"
#include "host/var.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Kind;
using Names = std::vector<std::string>;

Names NodeNames(kernix::SceneModel& scene) {
    Names names;
    for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes))
        names.push_back(static_cast<kernix::NodeModel*>(node)->GetNameText());
    return names;
}

LoadedScene Second() {
    gltf::Document document = gltf::test::Sample();
    document.Tree().Member(document.Root(), "scene") = document.Tree().MakeIndex(1);
    return LoadedScene(std::move(document));
}

// Replaces pieces of the sample's text.
gltf::Document Changed(std::initializer_list<std::pair<std::string_view, std::string_view>> changes) {
    std::string json = gltf::test::SampleJson();
    for (const auto& [from, to] : changes) {
        EXPECT_NE(json.find(from), std::string::npos) << from;
        json.replace(json.find(from), from.size(), to);
    }
    return gltf::Document::FromBytes(BytesOf(gltf::test::Glb(json, gltf::test::SampleBin())), "changed.glb");
}

TEST(LoadedScene, NodesComeParentsFirstWithTheirObjects) {
    LoadedScene loaded(gltf::test::Sample());
    EXPECT_EQ(NodeNames(loaded.Scene()), (Names{"left", "right", "light", "camera", "hip", "knee"}));
    EXPECT_EQ(loaded.Node(6), nullptr);  // of the other scene
    const auto type = [&](std::size_t node) { return loaded.Node(node)->m_pObject->GetType(); };
    EXPECT_EQ(type(0), vl::zr::kTypeObject);
    EXPECT_EQ(type(2), vl::zr::kTypeLight);
    EXPECT_EQ(type(3), vl::zr::kTypeCamera);
    EXPECT_EQ(type(4), vl::zr::kTypeBone);
    EXPECT_EQ(loaded.Node(5)->GetParent(), loaded.Node(4));
    EXPECT_EQ(loaded.Node(1)->GetRestPose().translation, (vl::Vector3<float>{1, 0, 0}));
    EXPECT_EQ(loaded.Node(1)->GetMetadata(false)->GetCount(), 2);

    LoadedScene second = Second();
    EXPECT_EQ(NodeNames(second.Scene()), (Names{"skinned"}));

    LoadedScene jointWithMesh(Changed({{R"({"name": "knee"})", R"({"name": "knee", "mesh": 0})"}}));
    EXPECT_EQ(jointWithMesh.Node(5)->m_dwFlags, vl::zr::kNodeSkeleton);
    EXPECT_EQ(jointWithMesh.Node(4)->m_dwFlags, 0U);
}

TEST(LoadedScene, MatricesArePlacedAsWritten) {
    LoadedScene loaded(gltf::test::FromText(R"({"asset":{"version":"2.0"},"nodes":[
        {"matrix":[0,2,0,0, -2,0,0,0, 0,0,2,0, 5,6,7,1],"children":[1]},{"translation":[1,0,0]}]})"));
    vl::Matrix4<double> world;
    loaded.Node(1)->GetWorldMatrix(&world, 1);
    EXPECT_NEAR(world.m[3][0], 5, 1e-12);
    EXPECT_NEAR(world.m[3][1], 8, 1e-12);
    EXPECT_NEAR(world.m[3][2], 7, 1e-12);
}

TEST(LoadedScene, MeshesShareGeometryAndDifferInFormat) {
    // Two meshes with equal content in different accessors.
    const auto scene = [](std::string_view second, std::string_view nodes) {
        return LoadedScene(
            Changed({{R"({"primitives": [{"attributes": {"POSITION": 1}, "material": 0}])", second},
                     {R"({"name": "skinned", "mesh": 1, "skin": 0})", R"({"name": "skinned"})"},
                     {R"("children": [1, 2])", R"("children": [2])"},
                     {R"("nodes": [0, 3, 4])", nodes},
                     {R"({"sampler": 0, "target": {"node": 1, "path": "translation"}},)", ""},
                     {R"({"sampler": 1, "target": {"node": 0, "path": "weights"}},)", ""},
                     {R"({"bufferView": 6, "componentType": 5126, "count": 2, "type": "SCALAR"})",
                      R"({"bufferView": 6, "componentType": 5126, "count": 2, "type": "SCALAR"},
                 {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3"})"},
                     {R"({"name": "knee"})", R"({"name": "knee", "mesh": 1})"},
                     {R"("joints": [4, 5], "inverseBindMatrices": 5)", R"("joints": [4])"},
                     {R"(/nodes/5/translation)", R"(/nodes/3/translation)"}}));
    };
    const auto mesh = [](LoadedScene& loaded, std::size_t node) {
        return dynamic_cast<vl::zr::Mesh*>(loaded.Node(node)->m_pObject);
    };
    const char* const kSame = R"({"primitives": [{"attributes": {"POSITION": 7}, "indices": 0, "material": 1,
        "targets": [{"POSITION": 2}], "extensions": {"KHR_materials_variants": {"mappings":
        [{"material": 2, "variants": [0]}, {"material": 1, "variants": [1]}]}}}])";
    LoadedScene same = scene(kSame, R"("nodes": [0, 1, 3, 4])");
    ASSERT_NE(mesh(same, 5), nullptr);
    EXPECT_EQ(mesh(same, 0)->m_nFormat, mesh(same, 1)->m_nFormat);
    EXPECT_EQ(mesh(same, 0)->m_nFormat, mesh(same, 5)->m_nFormat);
    EXPECT_EQ(mesh(same, 0)->m_pPositions, mesh(same, 5)->m_pPositions);
    EXPECT_EQ(mesh(same, 0)->CountMaterialUses(same.Material(2), 1), 1);
    EXPECT_EQ(mesh(same, 0)->CountMaterialUses(same.Material(1), 1), 2);
    EXPECT_EQ(mesh(same, 0)->CountMaterialUses(same.Material(0), 1), 0);
    EXPECT_EQ(mesh(same, 0)->m_pFaceAttributes[0], same.Material(1)->GetId());

    for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
             {R"("targets": [{"POSITION": 2}])", R"("targets": [{"POSITION": 1}])"},
             {R"("variants": [0]})", R"("variants": [1]})"},
             {R"({"attributes": {"POSITION": 7})", R"({"attributes": {"POSITION": 7, "NORMAL": 2})"}}) {
        std::string other = kSame;
        other.replace(other.find(from), from.size(), to);
        LoadedScene differs = scene(other, R"("nodes": [0, 1, 3, 4])");
        EXPECT_NE(mesh(differs, 0)->m_nFormat, mesh(differs, 5)->m_nFormat) << to;
    }
}

// A small file can name one accessor a thousand times; its content is stored once, and so are the uses.
TEST(LoadedScene, PrimitivesThatShareVerticesStoreThemOnce) {
    std::string primitives;
    for (int i = 0; i < 1000; ++i)
        primitives += Join(i == 0 ? "" : ",", R"({"attributes":{"POSITION":0},"material":)", i % 2, "}");
    LoadedScene loaded(gltf::test::FromText(Join(
        R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0},{"mesh":0},{"mesh":1}],"materials":[{},{"doubleSided":true}],
        "meshes":[{"primitives":[)",
        primitives, R"(]},{"primitives":[{"attributes":{"POSITION":0},"material":0},
        {"attributes":{"POSITION":0},"material":1}]}],
        "accessors":[{"componentType":5126,"count":3,"type":"VEC3"}]})")));
    const auto mesh = [&](std::size_t node) {
        return static_cast<kernix::MeshModel*>(loaded.Node(node)->m_pObject);
    };
    EXPECT_EQ(mesh(0)->m_nVertices, 3U);
    EXPECT_EQ(mesh(0)->m_nFaces, 2U);
    EXPECT_EQ(mesh(0)->m_pFaceAttributes[1], 1U);
    EXPECT_EQ(mesh(0)->CountMaterialUses(loaded.Material(1), 1), 500);
    EXPECT_EQ(mesh(0)->GetUses(), mesh(1)->GetUses());
    EXPECT_EQ(mesh(0)->m_pPositions, mesh(2)->m_pPositions);
    EXPECT_EQ(mesh(0)->m_nFormat, mesh(1)->m_nFormat);
    EXPECT_NE(mesh(0)->m_nFormat, mesh(2)->m_nFormat) << "a thousand primitives are not two";
}

// Equal bytes are equal whatever lies between them, but not if their format differs.
TEST(LoadedScene, AccessorsAreEqualByContent) {
    std::string bin = gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) +
                      gltf::test::Floats({0, 0, 0, 9, 1, 0, 0, 9, 0, 1, 0, 9}) +
                      gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 2, 0});
    const auto node = [](int normal) { return Join(R"({"mesh":)", normal, "}"); };
    const auto meshOf = [](int normal) {
        return Join(R"({"primitives":[{"attributes":{"POSITION":0,"NORMAL":)", normal, "}}]}");
    };
    std::string nodes, meshes;
    for (int i = 0; i < 5; ++i) {
        nodes += (i == 0 ? "" : ",") + node(i);
        meshes += (i == 0 ? "" : ",") + meshOf(i);
    }
    LoadedScene loaded(gltf::Document::FromBytes(
        BytesOf(gltf::test::Glb(Join(R"({"asset":{"version":"2.0"},"nodes":[)", nodes, R"(],"meshes":[)",
                                     meshes, R"(],"accessors":[
        {"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"},
        {"bufferView":1,"componentType":5126,"count":3,"type":"VEC3"},
        {"bufferView":2,"componentType":5126,"count":3,"type":"VEC3"},
        {"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"},
        {"bufferView":3,"byteOffset":80,"componentType":5126,"count":3,"type":"VEC3"}],"bufferViews":[
        {"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":48,"byteStride":16},
        {"buffer":0,"byteOffset":84,"byteLength":36},{"buffer":0,"byteOffset":4,"byteLength":116}],
        "buffers":[{"byteLength":120}]})"),
                                bin)),
        "accessors.glb"));
    const auto format = [&](std::size_t i) {
        return static_cast<kernix::MeshModel*>(loaded.Node(i)->m_pObject)->m_nFormat;
    };
    EXPECT_EQ(format(0), format(1)) << "interleaved";
    EXPECT_NE(format(0), format(2));
    EXPECT_EQ(format(0), format(3)) << "another accessor of the same bytes";
    EXPECT_EQ(format(2), format(4)) << "within a greater view";
}

TEST(LoadedScene, MotionAndReferencesChangeFormats) {
    const auto formats = [](std::string_view channels, std::string_view more) {
        LoadedScene loaded(gltf::test::FromText(
            R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0},{"mesh":0},{"children":[3]},{"mesh":0}],
            "meshes":[{"primitives":[{"attributes":{}}]}],
            "accessors":[{"componentType":5126,"count":1,"type":"SCALAR"},{"componentType":5126,"count":1,"type":"VEC3"}])" +
            std::string(channels.empty()
                            ? ""
                            : R"(,"animations":[{"samplers":[{"input":0,"output":1}],"channels":[)") +
            std::string(channels) + std::string(channels.empty() ? "" : "]}]") + std::string(more) + "}"));
        const auto format = [&](std::size_t node) {
            return static_cast<vl::zr::Mesh*>(loaded.Node(node)->m_pObject)->m_nFormat;
        };
        return std::pair(format(0) == format(1), format(0) == format(3));
    };
    EXPECT_EQ(formats("", ""), std::pair(true, true));
    EXPECT_EQ(formats(R"({"sampler":0,"target":{"node":2,"path":"scale"}})", ""), std::pair(true, false));
    EXPECT_EQ(
        formats(
            R"({"sampler":0,"target":{"node":0,"path":"scale"}},{"sampler":0,"target":{"node":1,"path":"scale"}})",
            ""),
        std::pair(false, false));
    EXPECT_EQ(formats("", R"(,"skins":[{"joints":[0]}])"), std::pair(false, false));
}

TEST(LoadedScene, EveryPrimitiveModeBecomesTrianglesOrLines) {
    const auto lists = [](int mode) {
        LoadedScene loaded(gltf::test::FromText(
            R"({"asset":{"version":"2.0"},"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0},"mode":)" +
            std::to_string(mode) + R"(}]}],"accessors":[{"componentType":5126,"count":5,"type":"VEC3"}]})"));
        const auto* mesh = static_cast<vl::zr::Mesh*>(loaded.Node(0)->m_pObject);
        std::string text;
        for (unsigned i = 0; i < mesh->m_nFaces; ++i)
            for (int k = 0; k < 3; ++k) text += std::to_string(mesh->m_ppFaces[i][k]) + (k == 2 ? " " : "");
        for (unsigned i = 0; i < mesh->m_nSecondary; ++i)
            text += std::to_string(mesh->m_ppSecondary[i][0]) + "-" +
                    std::to_string(mesh->m_ppSecondary[i][1]) + " ";
        return text;
    };
    EXPECT_EQ(lists(0), "");
    EXPECT_EQ(lists(1), "0-1 2-3 ");
    EXPECT_EQ(lists(2), "0-1 1-2 2-3 3-4 4-0 ");
    EXPECT_EQ(lists(3), "0-1 1-2 2-3 3-4 ");
    EXPECT_EQ(lists(4), "012 ");
    EXPECT_EQ(lists(5), "012 132 234 ");
    EXPECT_EQ(lists(6), "120 230 340 ");
}

TEST(LoadedScene, ReferencedElementsAreKept) {
    LoadedScene loaded(Changed({{R"({"sampler": 0, "target": {"node": 1, "path": "translation"}})",
                                 R"({"sampler": 0, "target": {"node": 2, "path": "translation"}})"},
                                {R"({"light": 0}}})", R"({"light": 0}}}, {"name": "loose"})"},
                                {R"("children": [1, 2])", R"("children": [1, 2, 3])"},
                                {R"("nodes": [0, 3, 4])", R"("nodes": [0, 4])"},
                                {R"({"name": "camera", "camera": 0},)", ""}}));
    EXPECT_EQ(loaded.Node(3)->m_pObject, nullptr);

    // A material that only the mesh of another scene uses is not listed; one that nothing uses is.
    LoadedScene plain(gltf::test::Sample());
    EXPECT_EQ(plain.Material(0), nullptr);
    EXPECT_EQ(plain.Scene().m_pMaterials->m_nCount, 2);
    LoadedScene named(gltf::test::Sample(), {{}, [](const gltf::Json& element) -> std::string {
                                                 const gltf::Json* name = element.Find("name");
                                                 const bool isIt =
                                                     name != nullptr && name->String() == "camera";
                                                 return isIt ? "wanted" : "";
                                             }});
    bool found = false;
    for (const KeptElement& kept : named.Kept())
        found |= kept.kind == Kind::kNode && kept.index == 3 && kept.reason == "wanted";
    EXPECT_TRUE(found);
}

TEST(WriteBack, NothingChangedChangesNothing) {
    const std::string before = gltf::WriteJson(gltf::test::Sample().Root(), false);
    for (const bool whole : {false, true}) {
        SceneOptions options;
        options.whole = whole;
        LoadedScene loaded(gltf::test::Sample(), options);
        EXPECT_EQ(gltf::WriteJson(std::move(loaded).WriteBack().Root(), false), before);
    }
}

// An index that cannot be followed would name another element afterwards.
TEST(WriteBack, RefusesToRenumberOpaqueReferences) {
    const auto removeFirst = [](std::string_view extension, bool force) {
        SceneOptions options;
        options.force = force;
        LoadedScene loaded(
            gltf::test::FromText(Join(
                R"({"asset":{"version":"2.0"},"nodes":[{"name":"a"},{"name":"b"}],"extensions":{"X_pose":)",
                extension, "}}")),
            options);
        loaded.Node(0)->Delete(0);
        return std::move(loaded).WriteBack().Elements(Kind::kNode).size();
    };
    EXPECT_THROW(removeFirst(R"({"node":1})", false), gltf::Error);
    EXPECT_THROW(removeFirst(R"({"target":"/nodes/1/translation"})", false), gltf::Error);
    EXPECT_EQ(removeFirst(R"({"meshIndex":1})", false), 1U);
    EXPECT_EQ(removeFirst(R"({"node":1})", true), 1U);
}

TEST(WriteBack, RemovalsReachTheDocument) {
    LoadedScene loaded(gltf::test::Sample());
    loaded.Node(2)->Delete(0);
    loaded.Node(1)->GetMetadata(false)->Clear();
    loaded.Scene().RemoveMaterial(loaded.Material(2));
    EXPECT_TRUE(loaded.Scene().DeleteAnimation(loaded.Animation(0)));
    gltf::Document written = std::move(loaded).WriteBack();
    const std::string text = gltf::WriteJson(written.Root(), false);
    EXPECT_EQ(text.find("\"light\""), std::string::npos);
    EXPECT_EQ(text.find("\"big\""), std::string::npos);
    EXPECT_EQ(text.find("\"sheen\""), std::string::npos);
    EXPECT_EQ(written.Root().Find("animations"), nullptr);
    EXPECT_NO_THROW(
        gltf::Document::FromBytes(BytesOf(gltf::test::Glb(text, gltf::test::SampleBin())), "x.glb"));
}

TEST(WriteBack, ReferencesFollowMergedMaterials) {
    LoadedScene loaded(Changed(
        {{R"({"name": "sheen", "extensions": {"KHR_materials_sheen": {"sheenColorTexture": {"index": 1}}}})",
          R"({"name": "again", "pbrMetallicRoughness": {"baseColorTexture": {"index": 2}}})"},
         {R"({"source": 0}])", R"({"source": 0}, {"sampler": 0, "source": 0, "name": "same"}])"}}));
    EXPECT_EQ(loaded.Scene().MergeEqualMaterials(), 1);
    gltf::Document written = std::move(loaded).WriteBack();
    EXPECT_EQ(written.Elements(Kind::kMaterial).size(), 2U);
    const gltf::Json& primitive = written.Elements(Kind::kMesh)[0].Find("primitives")->Items()[0];
    EXPECT_EQ(
        gltf::WriteJson(*primitive.Find("extensions"), false),
        R"({"KHR_materials_variants":{"mappings":[{"material":1,"variants":[0]},{"material":1,"variants":[1]}]}})");
}

TEST(WriteBack, ChangedAndNewKeysAreStored) {
    LoadedScene loaded(gltf::test::Sample());
    kernix::SceneModel& scene = loaded.Scene();
    auto* controller = static_cast<kernix::TransformControllerModel*>(loaded.Node(1)->GetController(99));
    controller->RetimeTrack(2, 1, controller->GetTrack(loaded.Animation(0)));
    auto* added = static_cast<kernix::AnimationModel*>(scene.CreateAnimation(u"new"));
    kernix::TransformTrack* track = controller->AddTransformTrack(added);
    track->AddScale(0.5F)->SetValue({1, 2, 3});
    scene.CreateAnimation(u"empty");
    gltf::Document written = std::move(loaded).WriteBack();
    gltf::CollectGarbage(written, gltf::kDataKinds, false);

    const gltf::test::TemporaryFolder folder;
    written.Save(folder / "out.glb");
    LoadedScene again(gltf::Document::Load(folder / "out.glb"));
    ASSERT_EQ(again.Document().Elements(Kind::kAnimation).size(), 2U);
    EXPECT_EQ(again.Animation(1)->m_name, u"new");
    EXPECT_EQ(again.Scene().GetEndTime(again.Animation(0)), 3.0F);
    auto* read = static_cast<kernix::TransformControllerModel*>(again.Node(1)->GetController(99));
    const Curve moved = KeysOf(*read->Resolve(read->GetTrack(again.Animation(0))), vl::zr::kKeyPosition);
    EXPECT_EQ(moved.times, (std::vector<float>{1, 3}));
    EXPECT_EQ(moved.values, (std::vector<float>{0, 0, 0, 2, 0, 0}));
    const Curve scaled = KeysOf(*read->Resolve(read->GetTrack(again.Animation(1))), vl::zr::kKeyScale);
    EXPECT_EQ(scaled.values, (std::vector<float>{1, 2, 3}));
}

TEST(Curves, EqualTimesAndValuesAreStoredOnce) {
    gltf::Document document = gltf::test::Sample();
    const gltf::Json& stored = document.Elements(Kind::kAnimation)[0].Find("samplers")->Items()[0];
    const std::size_t input = gltf::IndexMember(stored, "input"),
                      output = gltf::IndexMember(stored, "output");
    const std::size_t accessors = document.Elements(Kind::kAccessor).size();
    Curve known = ReadCurve(document, stored), other = known;
    known.interpolation = vl::zr::kInterpolationStep;
    other.values.back() += 1;

    CurveWriter writer(document);
    const auto added = [&](const Curve& curve, std::string_view type) {
        const std::size_t sampler = writer.Append(0, curve, type);
        return document.Elements(Kind::kAnimation)[0].Find("samplers")->Items()[sampler];
    };
    const gltf::Json first = added(known, "VEC3");
    EXPECT_EQ(gltf::IndexMember(first, "input"), input);
    EXPECT_EQ(gltf::IndexMember(first, "output"), output);
    EXPECT_EQ(document.Elements(Kind::kAccessor).size(), accessors);

    EXPECT_EQ(gltf::IndexMember(added(other, "VEC3"), "output"), accessors);
    EXPECT_EQ(gltf::IndexMember(added(other, "VEC3"), "output"), accessors);
    const Curve times{vl::zr::kInterpolationLinear, other.values, other.values};
    const gltf::Json weights = added(times, "SCALAR");
    EXPECT_EQ(gltf::IndexMember(weights, "input"), accessors + 1) << "times need bounds";
    EXPECT_EQ(gltf::IndexMember(weights, "output"), accessors + 2) << "of another type";
    EXPECT_EQ(gltf::ReadFloats(document, accessors + 2), other.values);
    EXPECT_EQ(gltf::ReadFloats(document, accessors), other.values);
    const auto views = document.Elements(Kind::kBufferView);
    EXPECT_EQ(gltf::IndexMember(document.Elements(Kind::kAccessor)[accessors + 2], "bufferView"),
              views.size() - 1);
    EXPECT_EQ(gltf::IndexMember(views.back(), "byteLength"), 3 * other.values.size() * sizeof(float));
}

TEST(Curves, MixedKeysBecomeLinearOnTheCurve) {
    kernix::SceneModel* scene = new kernix::SceneModel;
    const auto owner = vl::Ref<kernix::SceneModel>::Adopt(scene);
    kernix::TransformTrack* track =
        scene->AddNode(nullptr, "n")->AddTransformController()->AddTransformTrack(scene->AddAnimation(u"a"));
    PutKeys(*track, vl::zr::kKeyPosition,
            {vl::zr::kInterpolationCubic, {0, 1}, {0, 0, 0, 0, 0, 0, 9, 0, 0, -5, 0, 0, 1, 2, 0, 0, 0, 0}});
    PutKeys(*track, vl::zr::kKeyPosition, {vl::zr::kInterpolationStep, {2}, {5, 5, 5}});
    PutKeys(*track, vl::zr::kKeyPosition, {vl::zr::kInterpolationLinear, {3, 4}, {6, 6, 6, 7, 7, 7}});
    const Curve curve = KeysOf(*track, vl::zr::kKeyPosition);
    EXPECT_EQ(curve.interpolation, vl::zr::kInterpolationLinear);
    const auto linear = [&](float time) {
        std::size_t i = 1;
        while (i + 1 < curve.times.size() && curve.times[i] < time) ++i;
        const double from = curve.times[i - 1], to = curve.times[i];
        return curve.values[3 * i - 3] +
               (curve.values[3 * i] - curve.values[3 * i - 3]) * (time - from) / (to - from);
    };
    for (int i = 0; i <= 400; ++i) {
        const float time = static_cast<float>(i) / 100;
        EXPECT_NEAR(linear(time), track->Evaluate(time, {}).translation[0], 2e-4) << time;
    }
    EXPECT_LT(curve.times.size(), 2000U);
    for (std::size_t i = 1; i < curve.times.size(); ++i) EXPECT_LT(curve.times[i - 1], curve.times[i]);
}

TEST(ZrScene, LayersViewportsAndAimsRoundTrip) {
    const char* const kText = R"({"asset":{"version":"2.0"},"extensionsUsed":["ZR_scene"],
        "nodes":[{"name":"cam","camera":0,"extensions":{"ZR_scene":{"target":1}}},{"name":"aim"},{"name":"gone"},
                 {"name":"note","extensions":{"ZR_scene":{"note":true,"pivot":[1,2,3]}}}],
        "cameras":[{"type":"perspective","perspective":{"yfov":1,"znear":1}}],
        "accessors":[{"componentType":5126,"count":1,"type":"SCALAR"},{"componentType":5126,"count":1,"type":"VEC3"}],
        "animations":[{"name":"a","samplers":[{"input":0,"output":1}],"channels":[{"sampler":0,"target":{"node":1,"path":"scale"}}]},
                      {"name":"b","samplers":[{"input":0,"output":1}],"channels":[{"sampler":0,"target":{"node":1,"path":"scale"}}]}],
        "extensions":{"ZR_scene":{"layers":[{"name":"one","nodes":[2]},{"name":"two","nodes":[0,1]}],
          "viewports":[{"name":"plan","kind":1,"layer":0},{"name":"view","kind":2,"layer":1,"animations":[1]}]}}})";
    LoadedScene loaded(gltf::test::FromText(kText));
    kernix::SceneModel& scene = loaded.Scene();
    EXPECT_EQ(static_cast<kernix::CameraModel*>(loaded.Node(0)->m_pObject)->GetTargetNode(), loaded.Node(1));
    EXPECT_EQ(loaded.Node(3)->m_pObject->GetType(), vl::zr::kTypeNote);
    vl::Vector3<float> pivot;
    static_cast<vl::zr::TransformController*>(loaded.Node(3)->GetController(99))->GetOffset(&pivot);
    EXPECT_EQ(pivot, (vl::Vector3<float>{1, 2, 3}));
    ASSERT_EQ(scene.Viewports().size(), 2U);
    EXPECT_EQ(scene.Viewports()[1]->m_pAnimationReferences->m_nCount, 1);

    loaded.Node(2)->Delete(0);
    scene.DeleteAnimation(loaded.Animation(0));
    scene.RemoveViewport(scene.Viewports()[0].Get(), 1);
    scene.RemoveLayer(static_cast<vl::zr::Layer*>(scene.m_pLayers->GetAt(0)));
    const gltf::Document written = std::move(loaded).WriteBack();
    EXPECT_EQ(
        gltf::WriteJson(*written.Root().Find("extensions"), false),
        R"({"ZR_scene":{"layers":[{"name":"two","nodes":[0,1]}],"viewports":[{"name":"view","kind":2,"layer":0,"animations":[0]}]}})");
    EXPECT_NO_THROW(gltf::test::FromText(gltf::WriteJson(written.Root(), false)));
}

}  // namespace
}  // namespace zr
