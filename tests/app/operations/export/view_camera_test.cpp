// SPDX-License-Identifier: MIT
// The host's own camera in the exported file.
#include <gtest/gtest.h>

#include <cmath>

#include "app/operations/export/export_scene.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using M = vl::Matrix4<double>;
using gltf::Kind;

constexpr double kQuarterTurn = 1.5707963267948966;

LoadedScene AfterExport(LoadedScene loaded, const ExportOptions& options) {
    Host& host = test::TheHost();
    gltf::Document document = ExportScene(host, std::move(loaded), options, [](double) {}).document;
    const gltf::test::TemporaryFolder folder;
    document.Save(folder / "out.glb");
    return LoadedScene(gltf::Document::Load(folder / "out.glb"));
}

LoadedScene Windmill() {
    return LoadedScene(gltf::Document::Load(std::filesystem::path(ZR_EXAMPLES) / "windmill.gltf"));
}

// A mesh of 100 units whose only joint shrinks it to one unit, far from its node.
LoadedScene Skinned() {
    return LoadedScene(
        gltf::Document::FromBytes(BytesOf(gltf::test::Glb(
                                      R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1]}],
        "nodes": [{"mesh": 0, "skin": 0, "translation": [900, 0, 0]}, {"scale": [0.01, 0.01, 0.01]}],
        "skins": [{"joints": [1]}], "buffers": [{"byteLength": 36}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [100, 100, 0]}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}]})",
                                      gltf::test::Floats({0, 0, 0, 100, 0, 0, 0, 100, 0}))),
                                  "skinned.glb"));
}

ExportOptions WithCamera(std::uint32_t flags = 0) {
    ExportOptions options;
    options.exportFlags |= vl::tk::kExportSystemCamera | flags;
    return options;
}

M World(kernix::NodeModel& node) {
    M world;
    node.GetWorldMatrix(&world, 1);
    return world;
}

// The camera of the exported scene, with its view volume.
class View {
public:
    explicit View(LoadedScene& scene) {
        const auto nodes = scene.Document().Elements(Kind::kNode);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const gltf::Json* camera = nodes[i].Find("camera");
            if (camera == nullptr || gltf::IndexMember(nodes[i], "camera") + 1 !=
                                         scene.Document().Elements(Kind::kCamera).size()) {
                continue;
            }
            m_place = World(*scene.Node(i));
            vl::AffineParts parts;
            m_place.AffineDecompose(parts);
            m_toCamera.SetRotate(parts.q);  // near and far planes do not scale with the node
            m_toCamera.MoveTo(parts.t);
            m_toCamera.Invert();
            m_lens = scene.Document().Elements(Kind::kCamera).back().Find("perspective");
        }
    }

    bool IsThere() const { return m_lens != nullptr; }
    double Lens(std::string_view name) const { return m_lens->Find(name)->Number(); }
    vl::Vector3<double> Position() const { return {m_place.m[3][0], m_place.m[3][1], m_place.m[3][2]}; }
    double Up() const { return m_place.m[1][1]; }

    bool Sees(const vl::Vector3<double>& point) const {
        const vl::Vector3<double> p = m_toCamera.PointTransform(point);
        const double edge = -p.z * std::tan(Lens("yfov") / 2);
        return -p.z > Lens("znear") && -p.z < Lens("zfar") && std::fabs(p.x) < edge && std::fabs(p.y) < edge;
    }

private:
    M m_place, m_toCamera;
    const gltf::Json* m_lens = nullptr;
};

TEST(ViewCamera, SeesEveryVertexOfTheExportedScene) {
    for (const std::uint32_t flags :
         {std::uint32_t{0}, std::uint32_t{vl::tk::kGeometrySplit}, std::uint32_t{vl::tk::kFlipAxes},
          std::uint32_t{vl::tk::kGroupingRoot}}) {
        for (const double scale : {1.0, 100.0}) {
            ExportOptions options = WithCamera(flags);
            options.sceneMatrix.Scale(vl::Vector3<double>{scale, scale, scale});
            if (scale != 1) options.sceneMatrix.RotateX(kQuarterTurn);
            LoadedScene after = AfterExport(Windmill(), options);
            const View view(after);
            ASSERT_TRUE(view.IsThere());
            int vertices = 0;
            for (auto* plain : vl::ArrayOf<vl::zr::Node*>(after.Scene().m_pNodes)) {
                const auto* mesh = dynamic_cast<vl::zr::Mesh*>(plain->m_pObject);
                if (mesh == nullptr) continue;
                const M world = World(static_cast<kernix::NodeModel&>(*plain));
                for (std::uint32_t i = 0; i < mesh->m_nVertices; ++i, ++vertices) {
                    const float* p = mesh->m_pPositions + std::size_t{3} * i;
                    ASSERT_TRUE(view.Sees(world.PointTransform(vl::Vector3<double>{p[0], p[1], p[2]})))
                        << "vertex " << i << " of " << static_cast<kernix::NodeModel*>(plain)->GetNameText();
                }
            }
            EXPECT_GT(vertices, 100);
        }
    }
}

TEST(ViewCamera, StandsUprightWhereSkinsAreShown) {
    LoadedScene after = AfterExport(Skinned(), WithCamera());
    const View view(after);
    ASSERT_TRUE(view.IsThere());
    for (const auto& point : {vl::Vector3<double>{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})
        EXPECT_TRUE(view.Sees(point));
    const vl::Vector3<double> position = view.Position();
    EXPECT_LT(std::hypot(position.x, position.y, position.z), 4);
    EXPECT_GT(position.z, 1);
    EXPECT_GT(view.Up(), 0.9);
}

TEST(ViewCamera, IsExportedOnlyIfItAndCamerasAreRequested) {
    ExportOptions options = WithCamera();
    options.exportFlags &= ~std::uint32_t{vl::tk::kExportCameras};
    LoadedScene without = AfterExport(Windmill(), options);
    options.exportFlags &= ~std::uint32_t{vl::tk::kExportSystemCamera};
    LoadedScene plain = AfterExport(Windmill(), options);
    EXPECT_TRUE(gltf::EqualJson(without.Document().Root(), plain.Document().Root()));

    LoadedScene empty(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{}], "scene": 0})"));
    LoadedScene alone = AfterExport(std::move(empty), WithCamera());
    const View view(alone);
    ASSERT_TRUE(view.IsThere());
    EXPECT_TRUE(view.Sees({0, 0, 0}));
    EXPECT_EQ(alone.Scene().m_pNodes->m_nCount, 1);
}

}  // namespace
}  // namespace zr
