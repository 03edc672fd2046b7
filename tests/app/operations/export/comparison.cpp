// SPDX-License-Identifier: MIT
#include "tests/app/operations/export/comparison.h"

#include <gtest/gtest.h>

#include <cmath>

#include "gltf/accessor.h"

namespace zr::test {
namespace {

using M = vl::Matrix4<double>;

M World(kernix::NodeModel* node) {
    M m;
    node->GetWorldMatrix(&m, 0);
    return m;
}

// Where the host shows the node's object.
M ObjectWorld(kernix::NodeModel* node) {
    M world = World(node);
    if (node->m_pObjectOffset != nullptr) world.SetMul(*node->m_pObjectOffset, world);
    auto* controller =
        static_cast<kernix::TransformControllerModel*>(node->GetController(vl::zr::kControllerTransform));
    if (controller == nullptr || (controller->m_dwFlags & vl::zr::kControllerPivotGroup) != 0) return world;
    const vl::Vector3<float>& pivot = controller->m_offset;
    M shown;
    shown.SetTranslate({-double{pivot.x}, -double{pivot.y}, -double{pivot.z}});
    shown.Transform(world);
    return shown;
}

// The node with a node's object in the exported scene: itself, or a new one below it.
template <typename Object>
kernix::NodeModel* Carrier(const LoadedScene& exported, kernix::NodeModel* node, std::size_t oldCount) {
    std::vector<kernix::NodeModel*> open = {node};
    while (!open.empty()) {
        kernix::NodeModel* model = open.back();
        open.pop_back();
        if (dynamic_cast<Object*>(model->m_pObject) != nullptr) return model;
        for (vl::zr::Node* child = model->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
            if (*exported.IndexOf(child) >= oldCount) {
                open.push_back(static_cast<kernix::NodeModel*>(child));
            }
        }
    }
    return nullptr;
}

M Exchange() {
    M m;
    m.m[0][0] = m.m[1][2] = m.m[2][1] = m.m[3][3] = 1;
    return m;
}

M Mirror() {
    M m;
    m.m[0][0] = -1;
    m.m[1][1] = m.m[2][2] = m.m[3][3] = 1;
    return m;
}

// The matrices by which the joints in the scene move points of the mesh.
std::vector<M> SkinMatrices(LoadedScene& scene, std::size_t index) {
    const gltf::Json& skin = scene.Document().Elements(gltf::Kind::kSkin)[index];
    std::vector<float> binds;
    if (skin.Find("inverseBindMatrices") != nullptr) {
        binds = gltf::ReadFloats(scene.Document(), gltf::IndexMember(skin, "inverseBindMatrices"));
    }
    std::vector<M> matrices;
    const auto joints = skin.Find("joints")->Items();
    for (std::size_t joint = 0; joint < joints.size(); ++joint) {
        kernix::NodeModel* node = scene.Node(static_cast<std::size_t>(*joints[joint].Index()));
        if (node == nullptr) continue;
        M m;
        m.IdentityMatrix();
        for (std::size_t i = 0; i < 16 && !binds.empty(); ++i) {
            m.m[i / 4][i % 4] = double{binds[16 * joint + i]};
        }
        m.Transform(World(node));
        matrices.push_back(m);
    }
    return matrices;
}

}  // namespace

Comparison::Comparison(LoadedScene& before, LoadedScene& after, const ExportOptions& options)
    : m_before(before),
      m_after(after),
      m_sceneMatrix(options.sceneMatrix),
      m_flipped(options.Has(vl::tk::kFlipAxes)),
      m_oldCount(before.Document().Elements(gltf::Kind::kNode).size()) {}

vl::Matrix4<double> Comparison::Moved(M m) const {
    m.Transform(m_sceneMatrix);
    if (m_flipped) m.Transform(Exchange());
    return m;
}

void Comparison::Compare(const M& actual, const M& expected, const char* what, int index) {
    for (std::size_t i = 0; i < 16; ++i) {
        const double difference = std::fabs(actual.m[i / 4][i % 4] - expected.m[i / 4][i % 4]);
        if (!(difference > m_greatest) && !std::isnan(difference)) continue;
        m_greatest = difference;
        m_place = m_where + ", " + what + " " + std::to_string(index);
    }
}

// Compares where the host shows it, looking along -Z with Y up. Where axes are exchanged, the result is the
// mirror image, apart from left and right.
template <typename Object>
void Comparison::CompareAimed(kernix::NodeModel* node, kernix::NodeModel* exported, const char* what) {
    auto* object = dynamic_cast<Object*>(node->m_pObject);
    if (object == nullptr) return;
    const auto index = static_cast<int>(*m_before.IndexOf(node));
    kernix::NodeModel* carrier = Carrier<Object>(m_after, exported, m_oldCount);
    ASSERT_NE(carrier, nullptr) << m_where << ", " << what << " " << index;
    const auto shown = [](Object& aimed, kernix::NodeModel* at) {
        M m;
        aimed.GetObjectMatrix(at, &m);
        m.Invert();
        m.Transform(ObjectWorld(at));
        return m;
    };
    M expected = Moved(shown(*object, node));
    if (m_flipped) expected.SetMul(Mirror(), expected);
    Compare(shown(*dynamic_cast<Object*>(carrier->m_pObject), carrier), expected, what, index);
}

void Comparison::Run(const std::string& where) {
    m_where = where;
    for (auto* plain : vl::ArrayOf<vl::zr::Node*>(m_before.Scene().m_pNodes)) {
        auto* node = static_cast<kernix::NodeModel*>(plain);
        const auto index = static_cast<int>(*m_before.IndexOf(node));
        kernix::NodeModel* exported = m_after.Node(*m_before.IndexOf(node));
        ASSERT_NE(exported, nullptr) << where << ", node " << index;
        const bool hasMesh = dynamic_cast<vl::zr::Mesh*>(node->m_pObject) != nullptr;
        // A node whose object moved to a new node may have become the pivot of that.
        if (!hasMesh || dynamic_cast<vl::zr::Mesh*>(exported->m_pObject) != nullptr) {
            M frame = Moved(World(node));
            if (m_flipped) frame.SetMul(Exchange(), frame);
            Compare(World(exported), frame, "node", index);
        }
        if (hasMesh) {
            kernix::NodeModel* carrier = Carrier<vl::zr::Mesh>(m_after, exported, m_oldCount);
            ASSERT_NE(carrier, nullptr) << where << ", mesh of node " << index;
            Compare(ObjectWorld(carrier), Moved(ObjectWorld(node)), "mesh of node", index);
        }
        CompareAimed<vl::zr::Camera>(node, exported, "camera of node");
        CompareAimed<vl::zr::Light>(node, exported, "light of node");
    }
    CompareSkins();
}

void Comparison::CompareSkins() {
    for (std::size_t i = 0; i < m_before.Document().Elements(gltf::Kind::kSkin).size(); ++i) {
        const std::vector<M> before = SkinMatrices(m_before, i), after = SkinMatrices(m_after, i);
        ASSERT_EQ(before.size(), after.size()) << m_where << ", skin " << i;
        for (std::size_t joint = 0; joint < before.size(); ++joint) {
            Compare(after[joint], Moved(before[joint]), "joint of skin", static_cast<int>(i));
        }
    }
}

}  // namespace zr::test
