// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <thread>
#include <unordered_map>

#include "app/operations/export/poses.h"
#include "app/operations/export/record_rest.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// Of an animation.
constexpr std::size_t kFewestTimes = 16;
constexpr std::size_t kMostTimes = 400;

// Below this many comparisons, one thread is done before another one has started.
constexpr std::size_t kWorthAThread = 20000;
constexpr std::size_t kMostThreads = 4;  // each has the transforms of a whole scene

// How many transforms are compared in all. Quick: a comparison takes some 150 ns, an export several
// microseconds for each record and half a one for each key.
std::size_t SampleBudget(MotionCheck check, std::size_t records, std::size_t keys, std::size_t animations) {
    if (check == MotionCheck::kThorough) return 4000000 * animations;
    return std::max<std::size_t>(3 * records + keys / 4, 10000);
}

// How a camera or light is placed in its node's space: where, and what it looks at (none: ahead).
struct Aim {
    std::uint32_t target;
    vl::Vector3<float> position;
};

// A node and the record that stands for it.
struct Pair {
    const kernix::NodeModel* model;
    std::uint32_t node;
    std::uint32_t record;
    std::optional<Aim> aim;
};

class Box {
public:
    void Add(const double (&point)[3]) {
        for (int i = 0; i < 3; ++i) {
            m_low[i] = std::min(m_low[i], point[i]);
            m_high[i] = std::max(m_high[i], point[i]);
        }
    }
    void Add(const Box& other) {
        if (other.Extent(0) < 0) return;
        Add(other.m_low);
        Add(other.m_high);
    }
    double Extent(int axis) const { return m_high[axis] - m_low[axis]; }

private:
    static constexpr double kFar = std::numeric_limits<double>::infinity();
    double m_low[3] = {kFar, kFar, kFar};
    double m_high[3] = {-kFar, -kFar, -kFar};
};

struct Worst {
    double deviation;
    float time;
    std::size_t pair;
};

// The findings of one thread. The result does not depend on the number of threads: of equal deviations the
// first counts.
struct Part {
    double deviation = -1;  // nothing compared
    std::size_t time = 0;
    std::size_t pair = 0;
    Box box;

    void Add(double found, std::size_t atTime, std::size_t atPair) {
        if (found > deviation || (found == deviation && atTime < time))
            deviation = found, time = atTime, pair = atPair;
    }
    void Add(const Part& other) {
        Add(other.deviation, other.time, other.pair);
        box.Add(other.box);
    }
};

// The pivot that stays on the record and carries everything on its node.
vl::Vector3<float> HungPivot(const ExportNode& record) {
    const bool hangs =
        record.pController != nullptr && (record.pController->m_dwFlags & vl::zr::kControllerPivotGroup) != 0;
    return hangs ? record.vPivot : vl::Vector3<float>();
}

class Checker {
public:
    Checker(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips)
        : m_loaded(loaded), m_scene(loaded.Scene()), m_options(options), m_clips(clips) {
        AddNodes();
        AddRecords(records);
        AddPairs();
    }

    std::size_t RecordCount() const { return m_records.size(); }

    // Compares at most `budget` transforms of the animation, though some of every one.
    void Compare(const PlayedAnimation& played, const ReplacedKeys& replaced,
                 const std::vector<AddedKeys>& added, std::size_t budget, MotionReport& report) {
        if (m_pairs.empty()) return;
        const std::vector<float> keyTimes = Move(*played.animation, replaced, added);
        const std::size_t most = std::clamp(budget / m_pairs.size(), kFewestTimes, kMostTimes);
        const Clip clip = m_clips.Of(*played.animation);
        const std::vector<float> times = Times(clip, keyTimes, most);
        const std::size_t atOnce = std::clamp<std::size_t>(budget / times.size(), 1, m_pairs.size());
        const Worst worst = CompareAt(times, atOnce, played, clip);
        if (!report.node.empty() && !(worst.deviation > report.deviation)) return;
        report.deviation = std::max(worst.deviation, 0.0);
        report.time = double{worst.time};
        report.node = m_loaded.NameOf(*m_pairs[worst.pair].model);
        report.animation = kernix::ToUtf8(played.animation->m_name);
    }

    // Diagonal of the box that holds the nodes that were compared.
    double Size() const { return std::hypot(m_box.Extent(0), m_box.Extent(1), m_box.Extent(2)); }

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

    void AddNodes() {
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
    void AddRecords(const Tool& tool) {
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
    void AddPairs() {
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

    std::optional<Aim> AimOf(const ExportNode& record) const {
        vl::Matrix4<double> shown;
        if (!PlacesObject(record, m_options, shown)) return std::nullopt;
        const vl::zr::Node* target = nullptr;
        if (auto* camera = dynamic_cast<vl::zr::Camera*>(record.pNode->m_pObject)) {
            target = camera->GetTargetNode();
        } else if (auto* light = dynamic_cast<vl::zr::Light*>(record.pNode->m_pObject)) {
            target = light->GetTargetNode();
        }
        const vl::Vector3<float> position{static_cast<float>(shown.m[3][0]),
                                          static_cast<float>(shown.m[3][1]),
                                          static_cast<float>(shown.m[3][2])};
        if (target != nullptr)
            return Aim{m_nodePoses[static_cast<const kernix::NodeModel*>(target)->GetNumber()], position};
        if (shown.IsIdentity(0)) return std::nullopt;
        return Aim{PoseTree::kNone, position};
    }

    // Sets both trees in motion; some of the times of the keys.
    std::vector<float> Move(const kernix::AnimationModel& animation, const ReplacedKeys& replaced,
                            const std::vector<AddedKeys>& added) {
        m_before.StopAll();
        m_after.StopAll();
        std::size_t keys = 0;
        for (vl::zr::Track* track : animation.Tracks())
            keys += static_cast<std::size_t>(track->GetKeyCount());
        const std::size_t step = keys / (4 * kMostTimes) + 1;
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
                after.SetCurve(i, made != replaced.end() && made->second[i]
                                      ? *made->second[i]
                                      : track.Packed(kKeyTypes[i])->Get());
                for (; next < source.times.size(); next += step) times.push_back(source.times[next]);
                next -= source.times.size();
            }
            const Moved& moved = found->second;
            auto* controller = static_cast<kernix::TransformControllerModel*>(
                moved.node->GetController(vl::zr::kControllerTransform));
            before.rest = moved.node->GetRestPose();
            if ((controller->m_dwFlags & vl::zr::kControllerPivotGroup) != 0)
                before.pivot = controller->m_offset;
            m_before.Move(moved.pose, before);
            if (moved.record != nullptr) MoveRecord(*moved.record, after);
        }
        for (const AddedKeys& more : added) {
            if (more.animation != &animation) continue;
            PoseTree::Motion after;
            for (std::size_t i = 0; i < 3; ++i) after.SetCurve(i, more.curves[i]);
            MoveRecord(m_records[more.node], after);
        }
        return times;
    }

    void MoveRecord(const Record& own, PoseTree::Motion motion) {
        if (own.pose == PoseTree::kNone) return;
        vl::AffineParts parts;
        RestLocal(*own.record, m_options).AffineDecompose(parts);
        motion.pivot = HungPivot(*own.record);
        motion.rest = {parts.t, parts.q, {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f}};
        m_after.Move(own.pose, motion);
    }

    // Evenly spaced times, and those of the keys, where dropping keys shows most.
    static std::vector<float> Times(const Clip& clip, std::vector<float> keys, std::size_t most) {
        std::erase_if(keys, [&](float time) { return time < clip.from || time > clip.to; });
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
        const std::size_t even = std::max<std::size_t>(most / 2, 2);
        std::vector<float> times;
        for (std::size_t i = 0; i < even; ++i)
            times.push_back(clip.from +
                            (clip.to - clip.from) * static_cast<float>(i) / static_cast<float>(even - 1));
        const std::size_t step = keys.size() / even + 1;
        for (std::size_t i = 0; i < keys.size(); i += step) times.push_back(keys[i]);
        return times;
    }

    // At each time, the pairs that follow those of the time before.
    Worst CompareAt(const std::vector<float>& times, std::size_t atOnce, const PlayedAnimation& played,
                    const Clip& clip) {
        const std::size_t hardware = std::max(std::thread::hardware_concurrency(), 1U);
        const std::size_t count = std::clamp<std::size_t>(times.size() * atOnce / kWorthAThread, 1,
                                                          std::min(hardware, kMostThreads));
        std::vector<Part> parts(count);
        const auto run = [&](std::size_t index) {
            Part& part = parts[index];
            PoseTree::Walk before(m_before), after(m_after);
            for (std::size_t i = index; i < times.size(); i += count) {
                before.Go(times[i]);
                after.Go(clip.Map(times[i]) * played.timeScale + played.timeOffset);
                for (std::size_t k = 0; k < atOnce; ++k) {
                    const std::size_t pair = (m_nextPair + i * atOnce + k) % m_pairs.size();
                    part.Add(Deviation(before, after, m_pairs[pair], part.box), i, pair);
                }
            }
        };
        std::vector<std::jthread> threads;
        for (std::size_t index = 1; index < count; ++index) threads.emplace_back(run, index);
        run(0);
        threads.clear();
        m_nextPair = (m_nextPair + times.size() * atOnce) % m_pairs.size();
        Part all;
        for (const Part& part : parts) all.Add(part);
        m_box.Add(all.box);
        return {all.deviation, times[all.time], all.pair};
    }

    double Deviation(PoseTree::Walk& before, PoseTree::Walk& after, const Pair& pair, Box& box) const {
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
        box.Add(shown.rows[3]);
        return DistanceBetween(after.World(pair.record), shown);
    }

    // The point of the world in the space.
    static vl::Vector3<double> PointIn(const Affine& space, const double (&point)[3]) {
        vl::Matrix4<double> inverse = space.ToMatrix();
        inverse.Invert();
        return inverse.PointTransform(vl::Vector3<double>{point[0], point[1], point[2]});
    }

    const LoadedScene& m_loaded;
    kernix::SceneModel& m_scene;
    const ExportOptions& m_options;
    const Clips& m_clips;
    PoseTree m_before;
    PoseTree m_after;
    const std::uint32_t m_sceneRoot = m_before.Add(PoseTree::kNone, Affine::From(m_options.sceneMatrix));
    std::vector<std::uint32_t> m_nodePoses;  // by the node's number
    std::unordered_map<const kernix::TrackList*, Moved> m_moved;
    std::vector<Record> m_records;  // all
    std::vector<Pair> m_pairs;
    std::size_t m_nextPair = 0;
    Box m_box;
};

// Curves of numbers, halfway between keys and halfway to the ends of the clip, where steps do not jump.
void CheckValues(const PlayedAnimation& played, const Clips& clips, const ValueFactors& factors,
                 const ReplacedKeys& replaced, MotionReport& report) {
    constexpr std::size_t kMostPieces = 100;
    const Clip clip = clips.Of(*played.animation);
    for (vl::zr::Track* track : played.animation->Tracks()) {
        const auto* sampled = dynamic_cast<kernix::SampledTrack*>(track);
        if (sampled == nullptr) continue;
        const auto found = replaced.find(track);
        const bool isReplaced = found != replaced.end() && found->second[0];
        const Curve& before = clips.Source(*track, 0);
        const Curve& after = isReplaced ? *found->second[0] : sampled->GetCurve();
        if (&after == &before) continue;
        if (before.IsEmpty() || after.IsEmpty()) continue;
        const auto [low, high] = std::minmax_element(before.values.begin(), before.values.end());
        const double factor = factors.Of(*track);
        const double range = factor * (double{*high} - *low);
        if (!(range > 0)) continue;
        std::vector<double> a(before.Width()), b(after.Width());
        const auto look = [&](float from, float to) {
            const float time = from + (to - from) / 2;
            if (!(from < to) || time < clip.from || time > clip.to) return;
            kernix::EvaluateNumbers(before, time, a.data());
            kernix::EvaluateNumbers(after, clip.Map(time) * played.timeScale + played.timeOffset, b.data());
            for (std::size_t k = 0; k < a.size(); ++k) {
                const double deviation = std::abs(factor * a[k] - b[k]) / range;
                if (!(deviation > report.valueDeviation)) continue;
                report.valueDeviation = deviation;
                report.valueTime = double{time};
                report.value = kernix::ToUtf8(played.animation->m_name);
            }
        };
        look(clip.from, before.times.front());
        look(before.times.back(), clip.to);
        const std::size_t step = before.times.size() / kMostPieces + 1;
        for (std::size_t i = 1; i < before.times.size(); i += step)
            look(before.times[i - 1], before.times[i]);
    }
}

}  // namespace

void CheckMotion(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips,
                 const std::vector<PlayedAnimation>& animations, const ReplacedKeys& replaced,
                 const std::vector<AddedKeys>& added, MotionReport& report) {
    report.check = options.check;
    if (options.check == MotionCheck::kOff || animations.empty() || !options.Has(vl::tk::kExtractKeys))
        return;
    Checker checker(loaded, records, options, clips);
    const ValueFactors factors(loaded, options);
    const std::size_t budget =
        SampleBudget(options.check, checker.RecordCount(), report.keysBefore, animations.size());
    for (const PlayedAnimation& played : animations) {
        checker.Compare(played, replaced, added, budget / animations.size(), report);
        CheckValues(played, clips, factors, replaced, report);
        clips.Unload(*played.animation);
    }
    report.size = std::max(checker.Size(), 1.0);
}

}  // namespace zr
