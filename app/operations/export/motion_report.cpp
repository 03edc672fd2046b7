// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_map>
#include <vector>

#include "app/operations/export/record_rest.h"
#include "kernix/utf.h"

namespace zr {
namespace {

using Matrix = vl::Matrix4<double>;

// Transforms of records that are compared at most, and times of one animation.
constexpr std::size_t kMaxTransforms = 4000000;
constexpr std::size_t kMaxTimes = 400;

template <typename Key>
int CountOf(vl::Array* track) {
    return vl::ArrayOf<Key*>(track).Count();
}

// The keys on both sides of a time, and where it lies between them.
template <typename Key>
struct Between {
    const Key* a = nullptr;
    const Key* b = nullptr;
    float fraction = 0;

    Between(vl::Array* track, float time) {
        const vl::ArrayOf<Key*> keys(track);
        if (keys.IsEmpty()) return;
        int low = 0;
        for (int high = keys.Count(); low < high;) {
            const int middle = low + (high - low) / 2;
            if (keys[middle]->fTime < time) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        b = keys[std::min(low, keys.Count() - 1)];
        a = keys[std::max(low - 1, 0)];
        if (b->fTime > a->fTime) fraction = std::clamp((time - a->fTime) / (b->fTime - a->fTime), 0.0f, 1.0f);
        if (static_cast<int>(a->fParams[0]) == vl::zr::kInterpolationStep && fraction < 1) fraction = 0;
    }
    explicit operator bool() const { return a != nullptr; }
};

template <typename Key>
vl::Vector3<float> VectorAt(vl::Array* track, float time, const vl::Vector3<float>& rest) {
    const Between<Key> keys(track, time);
    if (!keys) return rest;
    const auto mix = [&](float a, float b) { return a + (b - a) * keys.fraction; };
    const vl::Vector3<float>& a = keys.a->vValue;
    const vl::Vector3<float>& b = keys.b->vValue;
    return {mix(a.x, b.x), mix(a.y, b.y), mix(a.z, b.z)};
}

template <typename Key>
bool IsCubic(vl::Array* track) {
    const vl::ArrayOf<Key*> keys(track);
    return !keys.IsEmpty() && static_cast<int>(keys[0]->fParams[0]) == vl::zr::kInterpolationCubic;
}

// The record's transform relative to its parent, at a time of the scene and the same one of the exported
// range.
Matrix LocalAt(const ExportNode& record, float sceneTime, float time) {
    if (record.pPosKeys == nullptr && record.pRotKeys == nullptr && record.pScaleKeys == nullptr)
        return record.mLocal;
    // Cubic keys that the run leaves as they are keep their curve, of which the record knows no slopes.
    if (IsCubic<ExportPositionKey>(record.pPosKeys) || IsCubic<ExportRotationKey>(record.pRotKeys) ||
        IsCubic<ExportScaleKey>(record.pScaleKeys)) {
        Matrix curve;
        record.pController->EvaluateMatrix(sceneTime, 0, &curve, 0);
        return curve;
    }
    Matrix m;
    m.IdentityMatrix();
    m.Scale(VectorAt<ExportScaleKey>(record.pScaleKeys, time, record.vScale));
    const Between<ExportRotationKey> keys(record.pRotKeys, time);
    m.Rotate(keys ? vl::Quaternion(keys.fraction, keys.a->qValue, keys.b->qValue, 0) : record.qRotation);
    m.Offset(VectorAt<ExportPositionKey>(record.pPosKeys, time, record.vPosition));
    return m;
}

// Whether the record stands where its node's object stood, below a pivot that was split off.
bool StandsForNode(const ExportNode& record) {
    if (record.pSourceNode != nullptr) return true;
    const bool belowStaticPivot = record.pSplit != nullptr && (record.pSplit->dwFlags & NF_STATICPIVOT) != 0;
    const bool belowPivotGroup = (record.dwFlags & NF_PIVOT) != 0 && (record.dwFlags & NF_SPLIT) == 0;
    return belowStaticPivot || belowPivotGroup;
}

// The records to compare, by their place among all; the last of each node that stands for it.
std::vector<std::size_t> Compared(const std::vector<ExportNode*>& records) {
    std::unordered_map<const vl::zr::Node*, std::size_t> last;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (records[i]->pNode != nullptr && StandsForNode(*records[i])) last[records[i]->pNode] = i;
    }
    std::vector<std::size_t> compared;
    for (const auto& [node, index] : last) compared.push_back(index);
    std::sort(compared.begin(), compared.end());
    return compared;
}

double Distance(const Matrix& a, const Matrix& b) {
    double greatest = 0;
    for (int point = 0; point < 4; ++point) {
        double sum = 0;
        for (int i = 0; i < 3; ++i) {
            const double difference =
                (a.m[3][i] - b.m[3][i]) + (point < 3 ? a.m[point][i] - b.m[point][i] : 0.0);
            sum += difference * difference;
        }
        greatest = std::max(greatest, std::sqrt(sum));
    }
    return greatest;
}

// Times at even distances, and those of the keys, which are the ones that dropping keys moves most; of many,
// some.
std::vector<float> ComparedTimes(kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                                 std::size_t most) {
    std::vector<float> keys;
    for (vl::zr::Track* plain : animation.Tracks()) {
        const auto* track = dynamic_cast<kernix::TransformTrack*>(plain);
        if (track == nullptr) continue;
        for (const int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
            for (int i = 0; i < track->Count(type); ++i) keys.push_back(track->Get(type, i)->m_fTime);
        }
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    const float start = scene.GetStartTime(nullptr);
    const float end = scene.GetEndTime(nullptr);
    const std::size_t even = std::max<std::size_t>(most / 2, 2);
    std::vector<float> times;
    for (std::size_t i = 0; i < even; ++i) {
        times.push_back(start + (end - start) * static_cast<float>(i) / static_cast<float>(even - 1));
    }
    const std::size_t step = keys.size() / even + 1;
    for (std::size_t i = 0; i < keys.size(); i += step) times.push_back(keys[i]);
    return times;
}

}  // namespace

std::size_t CountKeys(const kernix::AnimationModel& animation) {
    std::size_t count = 0;
    for (vl::zr::Track* track : animation.Tracks()) {
        const auto* transform = dynamic_cast<kernix::TransformTrack*>(track);
        if (transform == nullptr) continue;
        for (const int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
            count += static_cast<std::size_t>(transform->Count(type));
        }
    }
    return count;
}

void CompareMotion(const Tool& tool, kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                   const ExportOptions& options, MotionReport& report) {
    const vl::ArrayOf<ExportNode*> all = AllRecords(tool);
    const std::vector<ExportNode*> records(all.begin(), all.end());
    std::unordered_map<const ExportNode*, std::size_t> place;
    for (std::size_t i = 0; i < records.size(); ++i) place[records[i]] = i;
    // Parents first, which the list of all records does not promise.
    struct Step {
        const ExportNode* record;
        std::size_t place, parent;
    };
    std::vector<Step> walk;
    for (ExportNode* root : vl::ArrayOf<ExportNode*>(tool->m_pRoots)) walk.push_back({root, place[root], 0});
    for (std::size_t i = 0; i < walk.size(); ++i) {
        for (ExportNode* child : vl::ArrayOf<ExportNode*>(walk[i].record->pChildren))
            walk.push_back({child, place[child], walk[i].place});
    }
    for (const ExportNode* record : records) {
        report.keysAfter += static_cast<std::size_t>(CountOf<ExportPositionKey>(record->pPosKeys) +
                                                     CountOf<ExportRotationKey>(record->pRotKeys) +
                                                     CountOf<ExportScaleKey>(record->pScaleKeys));
    }

    const std::vector<std::size_t> compared = Compared(records);
    if (compared.empty() || !options.Has(vl::tk::kExtractKeys)) return;
    const std::size_t most = std::min(kMaxTransforms / records.size(), kMaxTimes);
    const float before = scene.GetCurrentTime();
    std::vector<Matrix> worlds(records.size());
    for (const float time : ComparedTimes(scene, animation, most)) {
        scene.SetCurrentTime(time, 1);
        for (const Step& step : walk) {
            Matrix& world = worlds[step.place];
            world = LocalAt(*step.record, time, tool->MapTime(time));
            if (step.record->pParent != nullptr) world.Transform(worlds[step.parent]);
        }
        for (const std::size_t index : compared) {
            const ExportNode& record = *records[index];
            Matrix shown;
            record.pNode->GetWorldMatrix(&shown, 0);
            Matrix object;
            if (PlacesObject(record, options, object)) shown.SetMul(object, shown);
            if (options.Has(vl::tk::kFlipAxes)) shown.Flip();
            const double deviation = Distance(worlds[index], shown);
            if (!report.node.empty() && !(deviation > report.deviation)) continue;
            report.deviation = deviation;
            report.time = static_cast<double>(time);
            report.node = static_cast<kernix::NodeModel*>(record.pNode)->GetNameText();
            report.animation = kernix::ToUtf8(animation.m_name);
        }
    }
    scene.SetCurrentTime(before, 1);
}

std::string Describe(const MotionReport& report) {
    std::string text = std::to_string(report.keysBefore) + " keys became " + std::to_string(report.keysAfter);
    if (report.animation.empty() && report.node.empty()) return text;
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%.3g at %.6g s", report.deviation, report.time);
    return text + "; largest deviation " + numbers + ", node \"" + report.node + "\", animation \"" +
           report.animation + "\"";
}

}  // namespace zr
