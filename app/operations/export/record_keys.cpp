// SPDX-License-Identifier: MIT
#include "app/operations/export/record_keys.h"

#include <cmath>
#include <limits>
#include <unordered_set>

#include "app/scene/curves.h"

namespace zr {
namespace {

using kernix::TransformTrack;

Curve ToCurve(vl::Array* positions, const ExportPositionKey*) {
    Curve curve;
    for (auto* key : vl::ArrayOf<ExportPositionKey*>(positions)) {
        curve.times.push_back(key->fTime);
        curve.values.insert(curve.values.end(), {key->vValue.x, key->vValue.y, key->vValue.z});
        curve.interpolation = static_cast<vl::zr::KeyInterpolation>(key->fParams[0]);
    }
    return curve;
}

Curve ToCurve(vl::Array* scales, const ExportScaleKey*) {
    Curve curve;
    for (auto* key : vl::ArrayOf<ExportScaleKey*>(scales)) {
        curve.times.push_back(key->fTime);
        curve.values.insert(curve.values.end(), {key->vValue.x, key->vValue.y, key->vValue.z});
        curve.interpolation = static_cast<vl::zr::KeyInterpolation>(key->fParams[0]);
    }
    return curve;
}

Curve ToCurve(vl::Array* rotations, const ExportRotationKey*) {
    Curve curve;
    for (auto* key : vl::ArrayOf<ExportRotationKey*>(rotations)) {
        curve.times.push_back(key->fTime);
        curve.values.insert(curve.values.end(), {key->qValue.x, key->qValue.y, key->qValue.z, key->qValue.w});
        curve.interpolation = static_cast<vl::zr::KeyInterpolation>(key->fParams[0]);
    }
    return curve;
}

// The keys of a record's track; nothing where the record has none of the type.
Curve KeysOf(const ExportNode& record, int keyType) {
    switch (keyType) {
        case vl::zr::kKeyPosition:
            return ToCurve(record.pPosKeys, static_cast<ExportPositionKey*>(nullptr));
        case vl::zr::kKeyScale:
            return ToCurve(record.pScaleKeys, static_cast<ExportScaleKey*>(nullptr));
        default:
            return ToCurve(record.pRotKeys, static_cast<ExportRotationKey*>(nullptr));
    }
}

// Keys that share a time, or that mapping brought together, go on by the smallest step that a float can make.
void MakeAscending(Curve& curve) {
    for (std::size_t i = 1; i < curve.times.size(); ++i) {
        if (curve.times[i] > curve.times[i - 1]) continue;
        curve.times[i] = std::nextafter(curve.times[i - 1], std::numeric_limits<float>::infinity());
    }
}

// Whether the record's keys are the track's, with the time mapped.
bool IsUnchanged(const Curve& exported, const TransformTrack& track, int keyType, vl::tk::Serializer& tool) {
    if (static_cast<int>(exported.times.size()) != track.Count(keyType)) return false;
    const std::size_t width = keyType == vl::zr::kKeyRotation ? 4 : 3;
    for (std::size_t i = 0; i < exported.times.size(); ++i) {
        const vl::zr::Key* key = track.Get(keyType, static_cast<int>(i));
        if (exported.times[i] != tool.MapTime(key->m_fTime)) return false;
        const float* value = exported.values.data() + i * width;
        if (keyType == vl::zr::kKeyRotation) {
            vl::Quaternion q;
            track.Rotations()[i]->GetQuaternion(&q);
            if (!(q == vl::Quaternion(value[0], value[1], value[2], value[3]))) return false;
        } else {
            const auto& v =
                keyType == vl::zr::kKeyPosition ? track.Positions()[i]->m_value : track.Scales()[i]->m_value;
            if (!(v == vl::Vector3<float>{value[0], value[1], value[2]})) return false;
        }
    }
    return true;
}

// A motion that the tools do not extract (one rotation key alone) is a pose: it stays, where the record
// stands.
Curve PoseCurve(const TransformTrack& track, int keyType, const vl::Matrix4<double>& local, float time) {
    Curve curve;
    if (track.Count(keyType) == 0) return curve;
    vl::AffineParts parts;
    local.AffineDecompose(parts);
    curve.times = {time};
    switch (keyType) {
        case vl::zr::kKeyPosition:
            curve.values = {parts.t.x, parts.t.y, parts.t.z};
            break;
        case vl::zr::kKeyScale:
            curve.values = {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f};
            break;
        default:
            curve.values = {parts.q.x, parts.q.y, parts.q.z, parts.q.w};
            break;
    }
    return curve;
}

void TakeBackRecord(const ExportNode& record, TransformTrack& track, vl::tk::Serializer& tool,
                    const ExportOptions& options) {
    constexpr int kTypes[] = {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale};
    Curve curves[3];
    bool hasKeys = false;
    bool unchanged = true;
    for (std::size_t i = 0; i < 3; ++i) {
        curves[i] = KeysOf(record, kTypes[i]);
        hasKeys = hasKeys || !curves[i].times.empty();
        unchanged = unchanged && IsUnchanged(curves[i], track, kTypes[i], tool);
    }
    if (unchanged) return track.Retime(tool.m_fTimeScale, tool.m_fTimeOffset);
    if (!hasKeys && !options.Has(vl::tk::kGroupKeysOnly)) {
        for (std::size_t i = 0; i < 3; ++i) {
            curves[i] = PoseCurve(track, kTypes[i], record.mLocal, tool.GetStartTime());
        }
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (IsUnchanged(curves[i], track, kTypes[i], tool) && !MapsTime(tool)) continue;
        if (curves[i].interpolation == vl::zr::kInterpolationCubic)
            curves[i].interpolation = vl::zr::kInterpolationLinear;
        MakeAscending(curves[i]);
        ReplaceKeys(track, kTypes[i], curves[i]);
    }
}

}  // namespace

Curve RecordCurve(const ExportNode& record, int keyType) {
    Curve curve = KeysOf(record, keyType);
    MakeAscending(curve);
    return curve;
}

void TakeBackKeys(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation,
                  const ExportOptions& options) {
    std::unordered_set<const vl::zr::Track*> done;
    for (ExportNode* record : AllRecords(tool)) {
        auto* controller = static_cast<kernix::TransformControllerModel*>(record->pController);
        if (controller == nullptr) continue;
        auto* track = static_cast<TransformTrack*>(controller->Tracks().Find(&animation));
        if (track == nullptr || !done.insert(track).second) continue;
        TakeBackRecord(*record, *track, *tool, options);
    }
    for (vl::zr::Track* track : animation.Tracks()) {
        const bool isTransform = dynamic_cast<TransformTrack*>(track) != nullptr;
        if (!isTransform && MapsTime(*tool)) track->Retime(tool->m_fTimeScale, tool->m_fTimeOffset);
    }
    scene.TransformsChanged();
}

}  // namespace zr
