// SPDX-License-Identifier: MIT
#include "app/operations/export/record_keys.h"

#include <algorithm>

namespace zr {
namespace {

using kernix::TransformTrack;

template <typename Key, typename Put>
Curve ToCurve(vl::Array* track, std::size_t width, Put put) {
    const vl::ArrayOf<Key*> keys(track);
    Curve curve;
    if (keys.IsEmpty()) return curve;
    const auto count = static_cast<std::size_t>(keys.Count());
    curve.times.reserve(count);
    curve.values.resize(count * width);
    float* value = curve.values.data();
    const Key* last = nullptr;
    for (const Key* key : keys) {
        curve.times.push_back(key->fTime);
        put(*key, value);
        value += width;
        last = key;
    }
    curve.interpolation = static_cast<vl::zr::KeyInterpolation>(last->fParams[0]);
    return curve;
}

template <typename Key>
void PutVector(const Key& key, float* value) {
    value[0] = key.vValue.x;
    value[1] = key.vValue.y;
    value[2] = key.vValue.z;
}

void PutQuaternion(const ExportRotationKey& key, float* value) {
    value[0] = key.qValue.x;
    value[1] = key.qValue.y;
    value[2] = key.qValue.z;
    value[3] = key.qValue.w;
}

Curve KeysOf(const ExportNode& record, int keyType) {
    const std::size_t width = WidthOf(keyType);
    if (keyType == vl::zr::kKeyPosition)
        return ToCurve<ExportPositionKey>(record.pPosKeys, width, PutVector<ExportPositionKey>);
    if (keyType == vl::zr::kKeyScale)
        return ToCurve<ExportScaleKey>(record.pScaleKeys, width, PutVector<ExportScaleKey>);
    return ToCurve<ExportRotationKey>(record.pRotKeys, width, PutQuaternion);
}

using RecordCurves = std::array<Curve, 3>;

bool HasKeys(const RecordCurves& curves) {
    return std::any_of(curves.begin(), curves.end(), [](const Curve& curve) { return !curve.IsEmpty(); });
}

RecordCurves KeysOf(const ExportNode& record) {
    return {KeysOf(record, kKeyTypes[0]), KeysOf(record, kKeyTypes[1]), KeysOf(record, kKeyTypes[2])};
}

// Whether the record's keys are those of the track, apart from the mapping of time.
bool IsUnchanged(const Curve& exported, const Curve& source, std::size_t width, vl::tk::Serializer& tool) {
    if (exported.times.size() != source.times.size()) return false;
    for (std::size_t i = 0; i < exported.times.size(); ++i) {
        if (exported.times[i] != tool.MapTime(source.times[i])) return false;
        if (!std::equal(source.Value(i), source.Value(i) + width, exported.values.data() + i * width))
            return false;
    }
    return true;
}

// A motion that the tools do not extract (a single rotation key) is a pose: it becomes a key with the
// transform of the record.
Curve PoseCurve(int keyType, const vl::Matrix4<double>& local, float time) {
    vl::AffineParts parts;
    local.AffineDecompose(parts);
    Curve curve;
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

// The new curves of a track; nothing if all keys stay unchanged.
std::optional<TrackCurves> Replacement(const ExportNode& record, const TransformTrack& track,
                                       vl::tk::Serializer& tool, const ExportOptions& options) {
    RecordCurves curves;
    if (ReportsKeys(record, options)) curves = KeysOf(record);
    const Curve* sources[3];
    bool unchanged[3];
    for (std::size_t i = 0; i < 3; ++i) {
        sources[i] = &track.Packed(kKeyTypes[i])->Get();
        unchanged[i] = IsUnchanged(curves[i], *sources[i], WidthOf(kKeyTypes[i]), tool);
    }
    TrackCurves replaced;
    if (std::all_of(std::begin(unchanged), std::end(unchanged), [](bool same) { return same; })) {
        if (!MapsTime(tool)) return std::nullopt;
        for (std::size_t i = 0; i < 3; ++i) {
            replaced[i] = *sources[i];
            replaced[i]->Retime(tool.m_fTimeScale, tool.m_fTimeOffset);
        }
        return replaced;
    }
    if (!HasKeys(curves) && !options.Has(vl::tk::kGroupKeysOnly)) {
        for (std::size_t i = 0; i < 3; ++i) {
            if (sources[i]->IsEmpty()) continue;
            curves[i] = PoseCurve(kKeyTypes[i], record.mLocal, tool.GetStartTime());
            unchanged[i] = IsUnchanged(curves[i], *sources[i], WidthOf(kKeyTypes[i]), tool);
        }
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (unchanged[i] && !MapsTime(tool)) continue;
        if (options.keepsCurves && sources[i]->interpolation != vl::zr::kInterpolationLinear) continue;
        if (curves[i].IsCubic()) curves[i].interpolation = vl::zr::kInterpolationLinear;
        const bool isFolded = record.pParent == nullptr && !tool.m_mScene.IsIdentity(0);
        if (isFolded && kKeyTypes[i] == vl::zr::kKeyRotation) KeepWays(curves[i]);
        MakeAscending(curves[i]);
        replaced[i] = std::move(curves[i]);
    }
    return replaced;
}

}  // namespace

void CollectKeys(const Tool& tool, const kernix::AnimationModel& animation, const ExportOptions& options,
                 ReplacedKeys& replaced, std::vector<AddedKeys>& added) {
    std::size_t index = 0;
    for (const ExportNode* record : AllRecords(tool)) {
        const std::size_t at = index++;
        if (record->pController == nullptr) {
            if (!ReportsKeys(*record, options)) continue;
            RecordCurves curves = KeysOf(*record);
            for (Curve& curve : curves) MakeAscending(curve);
            if (HasKeys(curves)) added.push_back({at, &animation, std::move(curves)});
            continue;
        }
        vl::zr::Track* track = record->pController->GetTrack(const_cast<kernix::AnimationModel*>(&animation));
        if (track == nullptr) continue;
        if (auto curves = Replacement(*record, static_cast<TransformTrack&>(*track), *tool, options))
            replaced[track] = std::move(*curves);
    }
}

}  // namespace zr
