// SPDX-License-Identifier: MIT
#include "app/operations/export/pose_pairs.h"

#include "app/operations/export/record_rest.h"

namespace zr {
namespace {

// The pivot that stays on the record and carries everything on its node.
vl::Vector3<float> HungPivot(const ExportNode& record) {
    const bool hangs =
        record.pController != nullptr && (record.pController->m_dwFlags & vl::zr::kControllerPivotGroup) != 0;
    return hangs ? record.vPivot : vl::Vector3<float>();
}

// The point of the world in the space.
vl::Vector3<double> PointIn(const Affine& space, const double (&point)[3]) {
    vl::Matrix4<double> inverse = space.ToMatrix();
    inverse.Invert();
    return inverse.PointTransform(vl::Vector3<double>{point[0], point[1], point[2]});
}

}  // namespace

PosePairs::PosePairs(LoadedScene& loaded, const Tool& records, const ExportOptions& options,
                     const Clips& clips)
    : m_scene(loaded.Scene()),
      m_options(options),
      m_clips(clips),
      m_sceneRoot(m_before.Add(PoseTree::kNone, Affine::From(options.sceneMatrix))) {
    AddNodes();
    AddRecords(records);
    AddPairs();
}

void PosePairs::AddNodes() {
    m_nodePoses.resize(m_scene.AllNodes().size(), PoseTree::kNone);
    for (vl::zr::Node* plain : vl::ArrayOf<vl::zr::Node*>(m_scene.m_pNodes)) {
        auto* node = static_cast<kernix::NodeModel*>(plain);
        const kernix::NodeModel* parent = node->GetParent();
        vl::Matrix4<double> local;
        node->GetLocalMatrix(&local, 1);
        const std::uint32_t pose = m_before.Add(
            parent != nullptr ? m_nodePoses[parent->GetNumber()] : m_sceneRoot, Affine::From(local));
        m_nodePoses[node->GetNumber()] = pose;
        if (auto* controller = node->GetController(vl::zr::kControllerTransform))
            m_moved[&static_cast<kernix::TransformControllerModel*>(controller)->Tracks()] = {node, pose};
    }
}

// Parents first, which the list of all records does not guarantee.
void PosePairs::AddRecords(const Tool& tool) {
    std::unordered_map<const ExportNode*, std::size_t> place;
    m_records.reserve(static_cast<std::size_t>(AllRecords(tool).Count()));
    for (const ExportNode* record : AllRecords(tool)) {
        place[record] = m_records.size();
        m_records.push_back({record});
    }
    std::vector<const ExportNode*> open;
    const auto push = [&open](vl::Array* list) {
        const vl::ArrayOf<ExportNode*> view(list);
        for (int i = view.Count(); i-- > 0;) open.push_back(view[i]);
    };
    push(tool->m_pRoots);
    while (!open.empty()) {
        const ExportNode* record = open.back();
        open.pop_back();
        Record& own = m_records[place.at(record)];
        const std::uint32_t parent =
            record->pParent != nullptr ? m_records[place.at(record->pParent)].pose : PoseTree::kNone;
        vl::Matrix4<double> local;
        const vl::Vector3<float> pivot = HungPivot(*record);
        local.SetTranslate({-double{pivot.x}, -double{pivot.y}, -double{pivot.z}});
        local.Transform(RestLocal(*record, m_options));
        own.pose = m_after.Add(parent, Affine::From(local));
        if (record->pController != nullptr) {
            auto* controller = static_cast<kernix::TransformControllerModel*>(record->pController);
            m_moved[&controller->Tracks()].record = &own;
        }
        push(record->pChildren);
    }
}

// The last record of each node that stands for it is compared.
void PosePairs::AddPairs() {
    std::vector<const Record*> last(m_scene.AllNodes().size());  // by the node's number
    const auto lastOf = [&last](const ExportNode& record) -> const Record*& {
        return last[static_cast<const kernix::NodeModel*>(record.pNode)->GetNumber()];
    };
    std::size_t count = 0;
    for (const Record& own : m_records) {
        const ExportNode& record = *own.record;
        const bool stands = record.pSourceNode != nullptr || StandsBelowPivot(record);
        if (own.pose == PoseTree::kNone || record.pNode == nullptr || !stands) continue;
        count += lastOf(record) == nullptr;
        lastOf(record) = &own;
    }
    m_pairs.reserve(count);
    for (const Record& own : m_records) {
        if (own.record->pNode == nullptr || lastOf(*own.record) != &own) continue;
        const auto* model = static_cast<const kernix::NodeModel*>(own.record->pNode);
        m_pairs.push_back({model, m_nodePoses[model->GetNumber()], own.pose, AimOf(*own.record)});
    }
}

std::optional<PosePairs::Aim> PosePairs::AimOf(const ExportNode& record) const {
    vl::Matrix4<double> shown;
    if (!PlacesObject(record, m_options, shown)) return std::nullopt;
    const vl::zr::Node* target = nullptr;
    if (auto* camera = dynamic_cast<vl::zr::Camera*>(record.pNode->m_pObject)) {
        target = camera->GetTargetNode();
    } else if (auto* light = dynamic_cast<vl::zr::Light*>(record.pNode->m_pObject)) {
        target = light->GetTargetNode();
    }
    const vl::Vector3<float> position{static_cast<float>(shown.m[3][0]), static_cast<float>(shown.m[3][1]),
                                      static_cast<float>(shown.m[3][2])};
    if (target != nullptr)
        return Aim{m_nodePoses[static_cast<const kernix::NodeModel*>(target)->GetNumber()], position};
    if (shown.IsIdentity(0)) return std::nullopt;
    return Aim{PoseTree::kNone, position};
}

std::vector<float> PosePairs::Play(const kernix::AnimationModel& animation, const ReplacedKeys& replaced,
                                   const std::vector<AddedKeys>& added, std::size_t mostTimes) {
    m_before.StopAll();
    m_after.StopAll();
    std::size_t keys = 0;
    for (vl::zr::Track* track : animation.Tracks()) keys += static_cast<std::size_t>(track->GetKeyCount());
    const std::size_t step = keys / mostTimes + 1;
    std::size_t next = 0;
    std::vector<float> times;
    for (vl::zr::Track* plain : animation.Tracks()) {
        const auto found = m_moved.find(plain->GetList());
        if (found == m_moved.end()) continue;
        const auto& track = static_cast<const kernix::TransformTrack&>(*plain);
        const auto made = replaced.find(plain);
        PoseTree::Motion before, after;
        for (std::size_t i = 0; i < 3; ++i) {
            const Curve& source = m_clips.Source(track, i);
            before.SetCurve(i, source);
            after.SetCurve(i, made != replaced.end() && made->second[i] ? *made->second[i]
                                                                        : track.Packed(kKeyTypes[i])->Get());
            for (; next < source.times.size(); next += step) times.push_back(source.times[next]);
            next -= source.times.size();
        }
        const Moved& moved = found->second;
        auto* controller = static_cast<kernix::TransformControllerModel*>(
            moved.node->GetController(vl::zr::kControllerTransform));
        before.rest = moved.node->GetRestPose();
        if ((controller->m_dwFlags & vl::zr::kControllerPivotGroup) != 0) before.pivot = controller->m_offset;
        m_before.Move(moved.pose, before);
        if (moved.record != nullptr) PlayRecord(*moved.record, after);
    }
    for (const AddedKeys& more : added) {
        if (more.animation != &animation) continue;
        PoseTree::Motion after;
        for (std::size_t i = 0; i < 3; ++i) after.SetCurve(i, more.curves[i]);
        PlayRecord(m_records[more.node], after);
    }
    return times;
}

void PosePairs::PlayRecord(const Record& own, PoseTree::Motion motion) {
    if (own.pose == PoseTree::kNone) return;
    vl::AffineParts parts;
    RestLocal(*own.record, m_options).AffineDecompose(parts);
    motion.pivot = HungPivot(*own.record);
    motion.rest = {parts.t, parts.q, {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f}};
    m_after.Move(own.pose, motion);
}

Affine PosePairs::Shown(PoseTree::Walk& before, const Pair& pair) const {
    Affine shown = before.World(pair.node);
    if (pair.aim) {
        const vl::Vector3<float>& position = pair.aim->position;
        vl::Matrix4<double> place;
        if (pair.aim->target != PoseTree::kNone) {
            const Affine target = before.World(pair.aim->target);
            place = kernix::LookAt(position, PointIn(shown, target.rows[3]));
        } else {
            place.SetTranslate({position.x, position.y, position.z});
        }
        shown = Affine::From(place).Then(shown);
    }
    if (m_options.Has(vl::tk::kFlipAxes)) shown.Exchange();
    return shown;
}

}  // namespace zr
