// SPDX-License-Identifier: MIT
// Places cameras and lights where the host shows them, which is not always where their nodes are.
#include <algorithm>
#include <iterator>
#include <vector>

#include "module/keyframe/aimed_object.h"
#include "module/keyframe/key_resample.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

using zrt::AimedObject;

// Radians by which the orientation between two keys may differ from the one that is shown.
constexpr float kAimTolerance = 0.001f;

// Where the arc between two keys is compared with what is shown. Not the middle, where the two meet when an
// object passes straight ahead.
constexpr float kProbe = 0.3f;

// How often the time between two keys is halved at most.
constexpr int kMaxHalvings = 6;

// How an object is shown at a time.
struct Sample {
    float time;
    vl::Matrix4<double> shown;  // into the node's space
    vl::Quaternion world;       // orientation in the world
};

Sample Look(zrt::SceneTime& sceneTime, vl::zr::Node* node, const AimedObject& object, float time) {
    sceneTime.Set(time);
    Sample sample{time, object.Shown(node), {}};
    vl::Matrix4<double> world;
    node->GetWorldMatrix(&world, 0);
    world.SetMul(sample.shown, world);
    sample.world = vl::Quaternion(world);
    return sample;
}

float AngleBetween(vl::Quaternion a, const vl::Quaternion& b) {
    a.Invert();
    return vl::AngleAxis(a * b).angle;
}

// What is aimed at passes by an object on no arc that two keys of its orientation describe: samples between
// the given times, as many as the arc needs.
std::vector<Sample> LookAlong(vl::zr::Scene* scene, vl::zr::Node* node, const AimedObject& object,
                              const std::vector<float>& times) {
    zrt::SceneTime sceneTime(scene);
    std::vector<Sample> samples;
    for (const float time : times) {
        std::vector<Sample> ahead{Look(sceneTime, node, object, time)};  // the next one last
        std::vector<int> halvings{0};
        while (!ahead.empty()) {
            if (!samples.empty() && halvings.back() < kMaxHalvings) {
                const Sample& from = samples.back();
                const Sample& to = ahead.back();
                const auto between = [&](float fraction) {
                    return Look(sceneTime, node, object, from.time + (to.time - from.time) * fraction);
                };
                const vl::Quaternion arc(kProbe, from.world, to.world, 0);
                if (AngleBetween(between(kProbe).world, arc) > kAimTolerance) {
                    ahead.push_back(between(0.5f));
                    ++halvings.back();
                    halvings.push_back(halvings.back());
                    continue;
                }
            }
            samples.push_back(ahead.back());
            ahead.pop_back();
            halvings.pop_back();
        }
    }
    return samples;
}

std::vector<float> Union(const std::vector<float>& a, const std::vector<float>& b) {
    std::vector<float> both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    both.erase(std::unique(both.begin(), both.end()), both.end());
    return both;
}

template <typename Key>
Key* KeyAt(vl::Array* track, int index) {
    return track->IsValidIndex(index) ? vl::FromWord<Key*>(track->GetAt(index)) : nullptr;
}

// First shown, then the transform of the keys at each time. shownAt(time): into the node's space.
template <typename ShownAt>
void PlaceKeys(ExportNode& record, ShownAt shownAt) {
    for (int i = 0; i < record.pRotKeys->m_nCount; ++i) {
        auto* rotation = KeyAt<ExportRotationKey>(record.pRotKeys, i);
        auto* position = KeyAt<ExportPositionKey>(record.pPosKeys, i);
        const auto* scale = KeyAt<ExportScaleKey>(record.pScaleKeys, i);
        const vl::Vector3<float> s = scale != nullptr ? scale->vValue : record.vScale;
        vl::Matrix4<double> m;
        m.SetScale({s.x, s.y, s.z});
        m.Rotate(rotation->qValue);
        m.Offset(position != nullptr ? position->vValue : record.vPosition);
        m.SetMul(shownAt(rotation->fTime), m);
        vl::AffineParts parts;
        m.AffineDecompose(parts);
        rotation->qValue = parts.q;
        if (position != nullptr) position->vValue = parts.t;
    }
}

bool IsIdentity(const Sample& sample) {
    return sample.shown.IsIdentity(0);
}

void PlaceByMatrix(ZR_TK& tool, ExportNode& record, const AimedObject& object) {
    vl::zr::Node* node = record.pNode;
    const vl::Matrix4<double> shown = object.Shown(node);

    // Only an object with a target turns against its node.
    std::vector<Sample> samples;
    if (vl::zr::Node* target = object.TargetNode();
        target != nullptr && tool.m_bAnimated && (tool.m_dwExportFlags & vl::tk::kExtractKeys) != 0) {
        const std::vector<float> times =
            Union(zrt::KeyTimes(&record, true), zrt::KeyTimes(tool.FindNodeRecord(target), true));
        samples = LookAlong(tool.m_pScene, node, object, times);
    }
    if (shown.IsIdentity(0) && std::all_of(samples.begin(), samples.end(), IsIdentity)) return;

    const bool turns = std::any_of(samples.begin(), samples.end(),
                                   [&shown](const Sample& sample) { return !sample.shown.Equal(shown, 0); });
    const auto several = [](const vl::Array* track) { return track != nullptr && track->m_nCount > 1; };
    if (turns || several(record.pRotKeys) || several(record.pPosKeys)) {
        // The values at rest that fill a missing track are those before this pass: the keys are placed next.
        std::vector<float> times = zrt::KeyTimesFromZero(&record, false);
        if (turns) {
            std::vector<float> aims;
            for (const Sample& sample : samples) aims.push_back(sample.time);
            times = Union(times, aims);
        }
        zrt::ResampleRecord(times, record);
        if (turns) {
            zrt::SceneTime sceneTime(tool.m_pScene);
            PlaceKeys(record, [&](float time) {
                sceneTime.Set(time);
                return object.Shown(node);
            });
        } else {
            PlaceKeys(record, [&shown](float) { return shown; });
        }
    }

    record.mLocal.SetMul(shown, record.mLocal);
    vl::AffineParts parts;
    record.mLocal.AffineDecompose(parts);
    record.vPosition = parts.t;
    record.qRotation = parts.q;
}

void PlaceByPosition(ExportNode& record, const AimedObject& object) {
    if (object.Position() == vl::Vector3<float>()) return;
    const vl::Vector3<float> moved = record.mLocal.VectorTransform(object.Position());
    record.vPosition.x += moved.x;
    record.vPosition.y += moved.y;
    record.vPosition.z += moved.z;
}

}  // namespace

void ZR_TK::OrientationPass() {
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        vl::zr::Node* node = record->pNode;
        if (node == nullptr || node->m_pObject == nullptr || (record->dwFlags & NF_GEOMETRY) == 0) continue;
        AimedObject object = AimedObject::CameraOf(node);
        if (!object) object = AimedObject::LightOf(node);
        if (!object) continue;
        if ((m_dwExportFlags & vl::tk::kAllChoices) != 0) {
            PlaceByMatrix(*this, *record, object);
        } else {
            PlaceByPosition(*record, object);
        }
    }
}
