// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "app/operations/export/clip.h"
#include "app/operations/export/poses.h"
#include "app/operations/export/sampled_keys.h"
#include "app/operations/export/tool_run.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Two trees of poses: the scene as it was before it was cut into clips, and the records with the new keys.
// Pairs tell which nodes of the two are to stand at the same place.
class PosePairs {
public:
    // How a camera or light is placed in its node's space: where, and what it looks at (none: ahead).
    struct Aim {
        std::uint32_t target;  // in Before()
        vl::Vector3<float> position;
    };
    // A node and the record that stands for it.
    struct Pair {
        const kernix::NodeModel* model;
        std::uint32_t node;    // in Before()
        std::uint32_t record;  // in After()
        std::optional<Aim> aim;
    };

    // All must outlive it.
    PosePairs(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips);

    const PoseTree& Before() const { return m_before; }
    const PoseTree& After() const { return m_after; }
    std::size_t RecordCount() const { return m_records.size(); }
    const std::vector<Pair>& Pairs() const { return m_pairs; }

    // Sets both trees in motion. added: by the place of the record among all. Returns the times of the
    // scene's keys in the animation, mostTimes of them at most, evenly chosen.
    std::vector<float> Play(const kernix::AnimationModel& animation, const ReplacedKeys& replaced,
                            const std::vector<AddedKeys>& added, std::size_t mostTimes);

    // Where the scene shows what is on the pair's node, as the export's axes have it.
    Affine Shown(PoseTree::Walk& before, const Pair& pair) const;

private:
    struct Record {
        const ExportNode* record;
        std::uint32_t pose = PoseTree::kNone;  // none outside the tree
    };
    // What a transform controller moves.
    struct Moved {
        kernix::NodeModel* node;
        std::uint32_t pose;
        const Record* record = nullptr;
    };

    void AddNodes();
    void AddRecords(const Tool& tool);
    void AddPairs();
    std::optional<Aim> AimOf(const ExportNode& record) const;
    void PlayRecord(const Record& own, PoseTree::Motion motion);

    kernix::SceneModel& m_scene;
    const ExportOptions& m_options;
    const Clips& m_clips;
    PoseTree m_before;
    PoseTree m_after;
    const std::uint32_t m_sceneRoot;
    std::vector<std::uint32_t> m_nodePoses;  // by the node's number
    std::unordered_map<const kernix::TrackList*, Moved> m_moved;
    std::vector<Record> m_records;  // all
    std::vector<Pair> m_pairs;
};

}  // namespace zr
