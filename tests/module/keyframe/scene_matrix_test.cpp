// SPDX-License-Identifier: MIT
// The scene matrix in the keys of the top-level records.
#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace scene_kit;
using vl::Quaternion;

// Orientations any two of which are equal or exactly a third, a quarter or half of a turn apart.
std::vector<Quaternion> ExactRotations() {
    std::vector<Quaternion> all;
    for (const float sign : {1.0F, -1.0F}) {
        all.insert(all.end(), {{sign, 0, 0, 0}, {0, sign, 0, 0}, {0, 0, sign, 0}, {0, 0, 0, sign}});
        for (int i = 0; i < 8; ++i) {
            const auto part = [i](int bit) { return (i >> bit & 1) != 0 ? 0.5F : -0.5F; };
            all.emplace_back(part(0), part(1), part(2), sign / 2);
        }
    }
    return all;
}

float Dot(const Quaternion& a, const Quaternion& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

TEST_F(HostTest, HalfTurnsKeepTheirDirectionUnderASceneMatrix) {
    const std::vector<Quaternion> all = ExactRotations();
    std::mt19937 random(7);
    for (const Quaternion& turn : all) {
        const auto scene = Ref<SceneModel>::Adopt(new SceneModel);
        auto* track = scene_kit::Track(*scene, AddMesh(*scene, nullptr));
        std::vector<Quaternion> sources{all[random() % all.size()]};
        while (sources.size() < 40) {
            const Quaternion& next = all[random() % all.size()];
            if (Dot(sources.back(), next) == 0) sources.push_back(next);
        }
        for (std::size_t i = 0; i < sources.size(); ++i)
            track->AddRotation(static_cast<float>(i))->SetQuaternion(sources[i]);
        Matrix sceneMatrix = record_tree::Identity();
        sceneMatrix.Rotate(turn);
        scene->SetSceneMatrix(sceneMatrix);
        const auto tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        tool->m_pScene = scene.Get();
        tool->m_dwExportFlags = vl::tk::kExtractKeys | vl::tk::kKeepAllNodes;
        ASSERT_EQ(tool->Process(0), 1);
        const vl::ArrayOf<ExportRotationKey*> keys(AllRecords(*tool)[0]->pRotKeys);
        ASSERT_EQ(keys.Count(), static_cast<int>(sources.size()));
        for (std::size_t i = 0; i + 1 < sources.size(); ++i) {
            const Quaternion midway(0.5F, keys[static_cast<int>(i)]->qValue,
                                    keys[static_cast<int>(i) + 1]->qValue, 0);
            const Quaternion expected = Quaternion(0.5F, sources[i], sources[i + 1], 0) * turn;
            EXPECT_NEAR(std::abs(Dot(midway, expected)), 1, 1e-5) << i;
        }
    }
}

}  // namespace
