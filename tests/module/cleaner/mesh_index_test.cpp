// SPDX-License-Identifier: MIT
#include "module/cleaner/mesh_index.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "host/ref.h"
#include "tests/module/cleaner/plain_operations.h"

namespace {

// A mesh whose arrays can be filled, removed and changed one by one.
class TestMesh : public vl::zr::Mesh {
public:
    // A square of two triangles and a line across it.
    TestMesh() {
        positions = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
        faces = {{0, 1, 2}, {0, 2, 3}};
        attributes = {5, 6};
        lines = {{0, 2}};
        Update();
    }

    void Update() {
        m_pPositions = positions.data();
        m_nVertices = static_cast<std::uint32_t>(positions.size() / 3);
        m_nFaces = static_cast<std::uint32_t>(faces.size());
        m_nSecondary = static_cast<std::uint32_t>(lines.size());
        facePointers.clear();
        for (const auto& face : faces) facePointers.push_back(face.data());
        linePointers.clear();
        for (const auto& line : lines) linePointers.push_back(line.data());
        m_ppFaces = facePointers.data();
        m_ppSecondary = linePointers.data();
        m_pFaceAttributes = attributes.data();
    }

    bool IsKindOf(int kind) override { return kind == vl::zr::kKindRenderable; }
    int GetType() override { return vl::zr::kTypeObject; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }
    int CountMaterialUses(vl::zr::Material*, int) override { return 0; }

    std::vector<float> positions;
    std::vector<std::vector<std::uint32_t>> faces;
    std::vector<std::uint32_t> attributes;
    std::vector<std::vector<std::uint32_t>> lines;
    std::vector<std::uint16_t> counts;
    std::vector<const std::uint32_t*> facePointers;
    std::vector<const std::uint32_t*> linePointers;
};

// A node that has only a place.
class TestNode : public vl::zr::Node {
public:
    TestNode() { world.IdentityMatrix(); }
    vl::VarMap* GetMetadata(bool) override { return nullptr; }
    void GetName(char*, int) override {}
    void GetNameW(char16_t*, int) override {}
    void GetDescription(char*, int) override {}
    vl::zr::Controller* GetController(int) override { return nullptr; }
    void GetLocalMatrix(vl::Matrix4<double>* m, int) override { *m = world; }
    void GetWorldMatrix(vl::Matrix4<double>* m, int) override {
        *m = world;
        ++matrixReads;
    }
    void Delete(int) override {}
    vl::zr::Object3D* GetObjectOfKind(int) override { return m_pObject; }

    vl::Matrix4<double> world;
    int matrixReads = 0;
};

bool FindOrAdd(zrt::MeshIndex& index, vl::zr::Node* node, vl::zr::Mesh* mesh) {
    return index.FindOrAdd(node, mesh, zrt::ContentHashes().Of(*mesh));
}

TEST(GeometryEqual, ComparesEveryPart) {
    struct Case {
        const char* what;
        std::function<void(TestMesh&)> change;
    };
    const Case cases[] = {
        {"format", [](TestMesh& m) { m.m_nFormat = 1; }},
        {"a coordinate", [](TestMesh& m) { m.positions[11] = 0.5F; }},
        {"the sign of a zero", [](TestMesh& m) { m.positions[0] = -0.0F; }},
        {"fewer vertices", [](TestMesh& m) { m.m_nVertices = 3; }},
        {"a face's index", [](TestMesh& m) { m.faces[1][2] = 1; }},
        {"fewer faces", [](TestMesh& m) { m.m_nFaces = 1; }},
        {"the size of all faces", [](TestMesh& m) { m.m_nFaceSize = 2; }},
        {"the size of one face",
         [](TestMesh& m) {
             m.counts = {3, 2}, m.m_pFaceCounts = m.counts.data();
         }},
        {"no faces", [](TestMesh& m) { m.m_ppFaces = nullptr; }},
        {"a face's attribute", [](TestMesh& m) { m.attributes[1] = 5; }},
        {"no attributes", [](TestMesh& m) { m.m_pFaceAttributes = nullptr; }},
        {"a line's index", [](TestMesh& m) { m.lines[0][1] = 3; }},
        {"fewer lines", [](TestMesh& m) { m.m_nSecondary = 0; }},
        {"the size of all lines", [](TestMesh& m) { m.m_nSecondarySize = 1; }},
        {"no lines", [](TestMesh& m) { m.m_ppSecondary = nullptr; }},
    };
    const TestMesh mesh;
    EXPECT_FALSE(zrt::GeometryEqual(nullptr, &mesh));
    EXPECT_FALSE(zrt::GeometryEqual(&mesh, nullptr));
    for (const Case& c : cases) {
        TestMesh other;
        EXPECT_TRUE(zrt::GeometryEqual(&mesh, &other));
        c.change(other);
        EXPECT_FALSE(zrt::GeometryEqual(&mesh, &other)) << c.what;
        EXPECT_FALSE(zrt::GeometryEqual(&other, &mesh)) << c.what;

        zrt::MeshIndex index;
        TestNode node;
        TestMesh first;
        EXPECT_FALSE(FindOrAdd(index, &node, &first));
        EXPECT_FALSE(FindOrAdd(index, &node, &other)) << c.what;
    }
}

TEST(GeometryEqual, ComparesValuesNotStorage) {
    TestMesh a;
    TestMesh b;
    a.counts = {3, 3};
    a.m_pFaceCounts = a.counts.data();
    EXPECT_TRUE(zrt::GeometryEqual(&a, &b)) << "sizes by value, in an array or one for all";
    a.positions[0] = b.positions[0] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(zrt::GeometryEqual(&a, &b)) << "equal bytes, whatever they encode";
    a.m_ppSecondary = b.m_ppSecondary = nullptr;
    a.m_nSecondarySize = 7;
    EXPECT_TRUE(zrt::GeometryEqual(&a, &b)) << "lists that neither has";

    zrt::MeshIndex index;
    TestNode node;
    EXPECT_FALSE(FindOrAdd(index, &node, &a));
    EXPECT_TRUE(FindOrAdd(index, &node, &b));
}

// Steps of 0.9e-6 in a row: the second repeats the first, the third does not, and the fourth repeats the
// third.
TEST(MeshIndex, ToleranceIsNotTransitive) {
    TestMesh mesh;
    TestNode nodes[4];
    const double places[] = {0, 0.9e-6, 1.8e-6, 2.7e-6};
    const bool found[] = {false, true, false, true};
    zrt::MeshIndex index;
    for (int i = 0; i < 4; ++i) {
        nodes[i].world.m[3][1] = places[i];
        EXPECT_EQ(FindOrAdd(index, &nodes[i], &mesh), found[i]) << i;
    }
}

// Meshes of a few shapes at places close together, at cell borders and far out.
TEST(MeshIndex, AgreesWithALinearSearch) {
    std::mt19937 random(20240601);
    const auto pick = [&](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    std::vector<std::unique_ptr<TestMesh>> shapes;
    for (int i = 0; i < 4; ++i) {
        shapes.push_back(std::make_unique<TestMesh>());
        shapes.back()->positions[0] = static_cast<float>(i / 2);
        shapes.back()->Update();
    }
    const double bases[] = {0, 1, -1, 0.5 / 65536, 1.5 / 4096, 1e5 / 3, -7e9, 1e13, 1e300};
    const double steps[] = {0, 0.4e-6, 0.8e-6, 9.999999974752427e-07, 1.0001e-6, 1e-3, -0.6e-6};

    zrt::MeshIndex index;
    std::vector<std::pair<std::unique_ptr<TestNode>, TestMesh*>> different;
    int repeats = 0;
    for (int i = 0; i < 4000; ++i) {
        auto node = std::make_unique<TestNode>();
        const double base = bases[pick(9)];
        for (int axis = 0; axis < 3; ++axis) {
            if (pick(3) == 0) node->world.m[3][axis] = base + steps[pick(7)];
        }
        if (pick(20) == 0) node->world.m[pick(3)][pick(3)] = base;
        if (pick(4) == 0) node->world.m[pick(3)][pick(3)] += steps[pick(7)] * (pick(2) == 0 ? 1 : -1);
        if (pick(50) == 0) node->world.m[3][0] = std::numeric_limits<double>::quiet_NaN();
        TestMesh* mesh = shapes[static_cast<std::size_t>(pick(4))].get();

        bool expected = false;
        for (const auto& [earlier, shape] : different) {
            expected =
                plain::GeometryEqual(*mesh, *shape) && plain::TransformsEqual(node.get(), earlier.get());
            if (expected) break;
        }
        ASSERT_EQ(FindOrAdd(index, node.get(), mesh), expected) << i;
        repeats += expected ? 1 : 0;
        if (!expected) different.emplace_back(std::move(node), mesh);
    }
    EXPECT_GT(repeats, 500);
    EXPECT_GT(different.size(), 500U);
}

// One shape at many places, also ten micrometres apart; many shapes of one size at one place; one shape
// turned about one place, also by little: in each case a node's transform is read only a few times, however
// many came before.
TEST(MeshIndex, CostDoesNotGrowWithTheNumber) {
    constexpr int kCount = 3000;
    std::vector<TestNode> nodes(kCount);
    std::vector<TestMesh> meshes(kCount);
    const auto reads = [&](const std::function<void(int)>& arrange) {
        zrt::MeshIndex index;
        int total = 0;
        for (int i = 0; i < kCount; ++i) {
            auto& node = nodes[static_cast<std::size_t>(i)];
            node.world.IdentityMatrix();
            arrange(i);
            EXPECT_FALSE(FindOrAdd(index, &node, &meshes[static_cast<std::size_t>(i)]));
        }
        for (auto& node : nodes) total += std::exchange(node.matrixReads, 0);
        return total;
    };
    EXPECT_LT(reads([&](int i) { nodes[static_cast<std::size_t>(i)].world.m[3][2] = i; }), 2 * kCount);
    EXPECT_LT(reads([&](int i) { nodes[static_cast<std::size_t>(i)].world.m[3][2] = i * 1e-5; }), 6 * kCount);
    EXPECT_LT(reads([&](int i) { nodes[static_cast<std::size_t>(i)].world.RotateY(i * 1e-3); }), 4 * kCount);
    EXPECT_LT(reads([&](int i) { nodes[static_cast<std::size_t>(i)].world.RotateY(i * 1e-5); }),
              150 * kCount);
    EXPECT_LT(reads([&](int i) { meshes[static_cast<std::size_t>(i)].positions[4] = static_cast<float>(i); }),
              2 * kCount);
}

}  // namespace
