// SPDX-License-Identifier: MIT
// Places cameras and lights where the host shows them, which is not always where their nodes are.
#include <optional>
#include <vector>

#include "host/controller.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/followers.h"
#include "module/keyframe/key_resample.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"
#include "module/keyframe/rotation_keys.h"
#include "module/keyframe/target_times.h"
#include "module/keyframe/timetable.h"

namespace {

using zrt::AimedObject;
using zrt::Follower;

template <typename Key>
Key* KeyAt(vl::Array* track, int index) {
    return track->IsValidIndex(index) ? vl::FromWord<Key*>(track->GetAt(index)) : nullptr;
}

// Prepends `shown` to the transform of the record's keys at the index.
void PlaceKey(ExportNode& record, int index, const vl::Matrix4<double>& shown) {
    auto* rotation = KeyAt<ExportRotationKey>(record.pRotKeys, index);
    auto* position = KeyAt<ExportPositionKey>(record.pPosKeys, index);
    const auto* scale = KeyAt<ExportScaleKey>(record.pScaleKeys, index);
    const vl::Vector3<float> s = scale != nullptr ? scale->vValue : record.vScale;
    vl::Matrix4<double> m;
    m.SetScale({s.x, s.y, s.z});
    m.Rotate(rotation->qValue);
    m.Offset(position != nullptr ? position->vValue : record.vPosition);
    m.SetMul(shown, m);
    vl::AffineParts parts;
    m.AffineDecompose(parts);
    rotation->qValue = parts.q;
    if (position != nullptr) position->vValue = parts.t;
}

// Whether the record's keys came as steps, which contain no orientation.
bool CameAsSteps(const ExportNode& record) {
    if (record.pController == nullptr || record.pRotKeys == nullptr) return false;
    auto* first =
        static_cast<vl::zr::RotationKey*>(record.pController->GetKey(vl::zr::kKeyRotation, 0, nullptr));
    return first != nullptr && first->GetRotationType() == vl::zr::kRotationAngleAxis;
}

zrt::RotationKeys TakeKeys(vl::Array*& track) {
    zrt::RotationKeys keys;
    for (const ExportRotationKey* key : vl::ArrayOf<ExportRotationKey*>(track)) keys.push_back(*key);
    zrt::DestroyTrack<ExportRotationKey>(track);
    return keys;
}

void PutKeys(vl::Array*& track, const zrt::RotationKeys& keys) {
    for (const ExportRotationKey& key : keys) *zrt::AddKey<ExportRotationKey>(track) = key;
}

// Computes the orientations that the steps lead to, adding keys within long steps. above: the rotation folded
// into the record's keys.
void AddOrientations(ExportNode& record, const vl::Quaternion& above) {
    zrt::RotationKeys keys = zrt::OrientationsFromSteps(TakeKeys(record.pRotKeys));
    for (ExportRotationKey& key : keys) key.qValue = key.qValue * above;
    PutKeys(record.pRotKeys, keys);
}

void AddSteps(ExportNode& record) {
    zrt::RotationKeys keys = TakeKeys(record.pRotKeys);
    zrt::AddSteps(keys);
    PutKeys(record.pRotKeys, keys);
}

void PlaceRest(ExportNode& record, const vl::Matrix4<double>& shown) {
    record.mLocal.SetMul(shown, record.mLocal);
    vl::AffineParts parts;
    record.mLocal.AffineDecompose(parts);
    record.vPosition = parts.t;
    record.qRotation = parts.q;
}

// A record whose object may be shown away from its node.
struct Placement {
    ExportNode* record;
    AimedObject object;
    vl::Matrix4<double> shown;            // into the node's space
    std::optional<std::size_t> follower;  // only an object with a target turns relative to its node
};

class Placer {
public:
    explicit Placer(ZR_TK& tool) : m_tool(tool) {}

    void Add(ExportNode* record, const AimedObject& object) {
        m_placements.push_back({record, object, object.Shown(record->pNode), {}});
    }

    void Run() {
        if (m_tool.m_bAnimated && (m_tool.m_dwExportFlags & vl::tk::kExtractKeys) != 0) FindFollowers();
        zrt::Timetable table;
        std::vector<const Placement*> displaced;
        std::vector<ExportNode*> placed;  // with their keys
        for (std::size_t i = 0; i < m_placements.size(); ++i) {
            const Placement& placement = m_placements[i];
            const Follower* follower = placement.follower ? &m_followers[*placement.follower] : nullptr;
            const bool isDisplaced =
                !placement.shown.IsIdentity(0) || (follower != nullptr && follower->isDisplaced);
            if (!isDisplaced) continue;
            displaced.push_back(&placement);
            const bool turns = follower != nullptr && follower->turns;
            ExportNode* record = placement.record;
            if (!turns && !HasSeveral(record->pRotKeys) && !HasSeveral(record->pPosKeys)) continue;
            PlaceKeys(i, turns ? follower : nullptr, table);
            placed.push_back(record);
        }
        table.Run(m_tool.m_pScene, [this](std::size_t i, std::size_t key) {
            const Placement& placement = m_placements[i];
            PlaceKey(*placement.record, static_cast<int>(key),
                     placement.object.Shown(placement.record->pNode));
        });
        if (WantsSteps()) {
            for (ExportNode* record : placed) AddSteps(*record);
        }
        // Last, since missing tracks are filled with the values at rest.
        for (const Placement* placement : displaced) PlaceRest(*placement->record, placement->shown);
    }

private:
    static bool HasSeveral(const vl::Array* track) { return track != nullptr && track->m_nCount > 1; }

    bool WantsSteps() const { return (m_tool.m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0; }

    // The rotation of the scene matrix if it is folded into the record's keys.
    vl::Quaternion Folded(const ExportNode& record) const {
        if (record.pParent != nullptr || m_tool.m_mScene.IsIdentity(zrt::kIdentityTolerance)) return {};
        vl::AffineParts parts;
        m_tool.m_mScene.AffineDecompose(parts);
        return parts.q;
    }

    void FindFollowers() {
        zrt::TargetTimes times(m_tool);
        for (Placement& placement : m_placements) {
            vl::zr::Node* target = placement.object.TargetNode();
            if (target == nullptr || !m_tool.MayHaveKeys(*placement.record)) continue;
            placement.follower = m_followers.size();
            m_followers.push_back({placement.record, placement.object,
                                   zrt::Union(times.OfRecord(placement.record), times.Of(target))});
        }
        zrt::Follow(m_tool.m_pScene, m_followers);
    }

    // Resamples the record's keys and places them; those of a follower, which turns, only when the table
    // runs. follower: may be null.
    void PlaceKeys(std::size_t index, const Follower* follower, zrt::Timetable& table) {
        const Placement& placement = m_placements[index];
        ExportNode& record = *placement.record;
        if (WantsSteps() && CameAsSteps(record)) AddOrientations(record, Folded(record));
        std::vector<float> times = zrt::KeyTimesFromZero(&record, false);
        if (follower != nullptr) times = zrt::Union(times, follower->times);
        zrt::ResampleRecord(times, record);
        for (int i = 0; i < record.pRotKeys->m_nCount; ++i) {
            if (follower != nullptr) {
                table.Add(KeyAt<ExportRotationKey>(record.pRotKeys, i)->fTime, index,
                          static_cast<std::size_t>(i));
            } else {
                PlaceKey(record, i, placement.shown);
            }
        }
    }

    ZR_TK& m_tool;
    std::vector<Placement> m_placements;
    std::vector<Follower> m_followers;
};

void PlaceByPosition(ExportNode& record, const AimedObject& object) {
    if (object.Position() == vl::Vector3<float>()) return;
    const vl::Vector3<float> moved = record.mLocal.VectorTransform(object.Position());
    record.vPosition.x += moved.x;
    record.vPosition.y += moved.y;
    record.vPosition.z += moved.z;
}

}  // namespace

void ZR_TK::OrientationPass() {
    Placer placer(*this);
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        vl::zr::Node* node = record->pNode;
        if (node == nullptr || node->m_pObject == nullptr || (record->dwFlags & NF_GEOMETRY) == 0) continue;
        AimedObject object = AimedObject::CameraOf(node);
        if (!object) object = AimedObject::LightOf(node);
        if (!object) continue;
        if ((m_dwExportFlags & vl::tk::kAllChoices) != 0) {
            placer.Add(record, object);
        } else {
            PlaceByPosition(*record, object);
        }
    }
    placer.Run();
}
