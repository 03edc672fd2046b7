// SPDX-License-Identifier: MIT
#include "app/operations/animations/merge_animations.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>
#include <utility>

#include "app/operations/animations/joined_curve.h"
#include "app/operations/animations/rest_value.h"
#include "app/scene/curves.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

using kernix::TransformTrack;
using Value = std::vector<float>;

// The track's value at a time, as a curve stores it.
Value ValueAt(const TransformTrack& track, int keyType, float time, const kernix::Pose& rest) {
    const TransformTrack::Sample sample = track.Evaluate(time, rest);
    if (keyType == vl::zr::kKeyRotation) {
        const vl::Quaternion q = sample.rotation.ToQuaternion();
        return {q.x, q.y, q.z, q.w};
    }
    const double* v = keyType == vl::zr::kKeyPosition ? sample.translation : sample.scale;
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

// A source's copy and its time range, in seconds.
struct Source {
    kernix::AnimationModel* copy;
    float start = 0;
    float end = 0;
    bool givesWay = false;  // has zero length, so the next source replaces it at once
};

class Merge {
public:
    Merge(Host& host, LoadedScene& loaded, const Animations& sources, const MergeOptions& options)
        : m_host(host), m_loaded(loaded), m_scene(loaded.Scene()), m_sources(sources), m_options(options) {}

    // A merge that fails leaves no copies behind.
    MergeReport Run() {
        try {
            return RunAll();
        } catch (...) {
            for (const Source& source : m_copies) m_scene.DeleteAnimation(source.copy);
            throw;
        }
    }

private:
    MergeReport RunAll() {
        m_report.dropped = SkippedChannels(m_loaded, m_sources);
        CopySources();
        if (m_options.inSequence) ShiftCopies();
        ForEachController(m_loaded, [this](vl::zr::Controller& controller, const std::string& holder) {
            if (controller.IsTypeOf(vl::zr::kTypeTransformController)) return;
            JoinSampled(static_cast<kernix::SampledControllerModel&>(controller), holder);
        });
        for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(m_scene.m_pNodes))
            PrepareNode(static_cast<kernix::NodeModel&>(*node));

        const auto words = vl::Ref<vl::Array>::AdoptNew(m_host.CreateArray());
        vl::ArrayOf<vl::zr::Animation*> list(words.Get());
        for (const Source& source : m_copies) list.Add(source.copy);
        const auto manager = m_host.Create<zr_ANIM_MANAGER>(kTypeAnimManager);
        auto* result = static_cast<kernix::AnimationModel*>(
            manager->MergeAnimations(nullptr, words.Get(), true, m_options.keyFlags));
        m_copies.clear();
        if (result == nullptr || !HasKeys(*result)) {
            if (result != nullptr) m_scene.DeleteAnimation(result);
            throw std::runtime_error("the merged animation would move nothing: no source has keys to merge");
        }
        if (!m_options.name.empty()) result->m_name = kernix::ToUtf16(m_options.name);
        m_report.result = result;
        if (m_options.removeSources) {
            FollowInViewports(m_scene, m_sources, {result});
            m_report.held = RemoveAnimations(m_host, m_loaded, m_sources);
        }
        return std::move(m_report);
    }

    void CopySources() {
        for (kernix::AnimationModel* source : m_sources)
            m_copies.push_back({m_scene.AddAnimation(source->m_name)});
        ForEachController(m_loaded, [this](vl::zr::Controller& controller, const std::string&) {
            for (std::size_t i = 0; i < m_sources.size(); ++i) {
                vl::zr::Track* track = controller.GetTrack(m_sources[i]);
                if (track != nullptr) CopyTrack(controller, track, controller, m_copies[i].copy);
            }
        });
    }

    // Moves each copy to begin where the one before it ends.
    void ShiftCopies() {
        float next = 0;
        for (std::size_t i = 0; i < m_copies.size(); ++i) {
            Source& source = m_copies[i];
            if (!HasKeys(*source.copy))
                throw std::runtime_error(
                    Join("animation ", Quoted(*source.copy), " has no keys to put in sequence"));
            source.start = m_scene.GetStartTime(source.copy);
            if (i > 0) {
                const float offset = OffsetTo(source.start, next);
                ForEachController(m_loaded, [&](vl::zr::Controller& controller, const std::string&) {
                    vl::zr::Track* track = controller.GetTrack(source.copy);
                    if (track != nullptr) controller.RetimeTrack(1, offset, track);
                });
                source.start = m_scene.GetStartTime(source.copy);
            }
            source.end = m_scene.GetEndTime(source.copy);
            RequireDistinctTimes(i);
            source.givesWay = m_options.gap == 0 && i + 1 < m_copies.size() && source.end == source.start;
            if (source.givesWay) m_report.unseen.push_back(Quoted(*source.copy));
            next = static_cast<float>(double{source.end} + m_options.gap);
        }
    }

    // Far from 0, floats are coarse and the times of keys may coincide.
    void RequireDistinctTimes(std::size_t i) const {
        bool isDistinct = std::isfinite(m_copies[i].end);
        ForEachController(m_loaded, [&](vl::zr::Controller& controller, const std::string&) {
            vl::zr::Track* source = controller.GetTrack(m_sources[i]);
            vl::zr::Track* copy = controller.GetTrack(m_copies[i].copy);
            if (source != nullptr && copy != nullptr)
                isDistinct = isDistinct && AreAsDistinct(controller, *source, *copy);
        });
        if (!isDistinct) {
            throw std::runtime_error(
                Join("animation ", Quoted(*m_copies[i].copy),
                     " would lose keys: this late in the sequence, their times coincide"));
        }
    }

    static bool AreAsDistinct(vl::zr::Controller& controller, const vl::zr::Track& source,
                              const vl::zr::Track& copy) {
        const auto areAsDistinct = [](int count, auto sourceTime, auto copyTime) {
            for (int k = 1; k < count; ++k) {
                if (copyTime(k) == copyTime(k - 1) && sourceTime(k) != sourceTime(k - 1)) return false;
            }
            return true;
        };
        if (!controller.IsTypeOf(vl::zr::kTypeTransformController)) {
            const auto& from = static_cast<const kernix::SampledTrack&>(source).GetCurve().times;
            const auto& to = static_cast<const kernix::SampledTrack&>(copy).GetCurve().times;
            return areAsDistinct(
                static_cast<int>(from.size()), [&](int k) { return from[static_cast<std::size_t>(k)]; },
                [&](int k) { return to[static_cast<std::size_t>(k)]; });
        }
        const auto& from = static_cast<const TransformTrack&>(source);
        const auto& to = static_cast<const TransformTrack&>(copy);
        return std::all_of(std::begin(kKeyTypes), std::end(kKeyTypes), [&](int keyType) {
            return areAsDistinct(
                from.Count(keyType), [&](int k) { return from.TimeOf(keyType, k); },
                [&](int k) { return to.TimeOf(keyType, k); });
        });
    }

    // Rounding must not move the first key before the end of the preceding source, or it would play too
    // early.
    static float OffsetTo(float from, float to) {
        float offset = to - from;
        for (float goal = to; from + offset < to; offset = goal - from)
            goal = std::nextafter(goal, std::numeric_limits<float>::infinity());
        return offset;
    }

    // The merge uses the first track unchanged, so that track gets the keys of all.
    void JoinSampled(kernix::SampledControllerModel& controller, const std::string& holder) {
        std::vector<kernix::SampledTrack*> tracks;
        std::vector<Stretch> stretches;
        std::vector<const Curve*> curves;
        for (const Source& source : m_copies) {
            auto* track = static_cast<kernix::SampledTrack*>(controller.GetTrack(source.copy));
            if (track != nullptr && (source.givesWay || track->GetKeyCount() == 0)) {
                track->SetCurve({});
                track = nullptr;
            }
            tracks.push_back(track);
            const Curve* curve = track != nullptr ? &track->GetCurve() : nullptr;
            if (!source.givesWay) stretches.push_back({curve, source.start});
            if (curve != nullptr) curves.push_back(curve);
        }
        if (curves.empty()) return;
        kernix::SampledTrack& first = **std::ranges::find_if(tracks, std::identity());
        if (m_options.inSequence) {
            const auto rest =
                RestValue(m_loaded.Document(), controller.GetTarget(), first.GetCurve().Width());
            if (!rest && curves.size() < stretches.size())
                m_report.restless.push_back(Join(controller.GetTarget(), " of ", holder));
            first.SetCurve(kernix::StoredCurve(InSequence(stretches, rest)));
        } else if (auto joined = Joined(curves)) {
            first.SetCurve(kernix::StoredCurve(std::move(*joined)));
        } else {
            NoteDropped(controller, holder, tracks);
        }
    }

    void NoteDropped(const kernix::SampledControllerModel& controller, const std::string& holder,
                     const std::vector<kernix::SampledTrack*>& tracks) {
        bool isFirst = true;
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            if (tracks[i] == nullptr) continue;
            if (!isFirst)
                m_report.dropped.push_back(
                    Join(controller.GetTarget(), " of ", holder, " in ", Quoted(*m_sources[i])));
            isFirst = false;
        }
    }

    void PrepareNode(kernix::NodeModel& node) {
        auto* controller =
            static_cast<kernix::TransformControllerModel*>(node.GetController(vl::zr::kControllerTransform));
        if (controller == nullptr) return;
        std::vector<TransformTrack*> tracks;
        for (const Source& source : m_copies) {
            auto* track = static_cast<TransformTrack*>(controller->GetTrack(source.copy));
            // The source's keys coincide with those of its neighbours; the merge would move them after these.
            if (source.givesWay && track != nullptr)
                for (const int keyType : kKeyTypes) track->Clear(keyType);
            tracks.push_back(track);
        }
        bool overlaps = false;
        for (const auto& [keyType, flag] : kAnimMergeKinds) {
            if ((m_options.keyFlags & flag) == 0) continue;
            const auto hasKeys = [keyType = keyType](const TransformTrack* track) {
                return track != nullptr && track->Count(keyType) != 0;
            };
            const auto holders = std::count_if(tracks.begin(), tracks.end(), hasKeys);
            if (holders == 0) continue;
            if (m_options.inSequence || holders > 1) {
                for (TransformTrack* track : tracks)
                    if (hasKeys(track)) Bake(*track, keyType);
            }
            if (m_options.inSequence) {
                FillStretches(*controller, tracks, keyType, node.GetRestPose());
            } else if (holders > 1) {
                overlaps = overlaps || Overlap(tracks, keyType);
            }
            // The merge converts rotations to matrices and back, which loses the direction of a half turn.
            if (keyType == vl::zr::kKeyRotation && (m_options.inSequence || holders > 1)) {
                for (TransformTrack* track : tracks)
                    if (track != nullptr) controller->NormalizeRotationKeys(track, 0);
            }
        }
        if (overlaps) m_report.overlapping.push_back(HolderName(m_loaded, node));
    }

    // Merged keys have no slopes: cubic curves are baked.
    static void Bake(TransformTrack& track, int keyType) {
        if (HasSlopes(track, keyType))
            track.SetCurve(keyType, kernix::StoredCurve(BakedKeys(track, keyType)));
    }

    static bool HasSlopes(const TransformTrack& track, int keyType) {
        if (const kernix::StoredCurve* packed = track.Packed(keyType)) return packed->Get().IsCubic();
        for (int i = 0; i < track.Count(keyType); ++i) {
            if (track.Get(keyType, i)->Passes(vl::zr::kInterpolationCubic)) return true;
        }
        return false;
    }

    static bool Overlap(const std::vector<TransformTrack*>& tracks, int keyType) {
        std::vector<std::pair<float, float>> ranges;
        for (const TransformTrack* track : tracks) {
            const int count = track != nullptr ? track->Count(keyType) : 0;
            if (count != 0) ranges.emplace_back(track->TimeOf(keyType, 0), track->TimeOf(keyType, count - 1));
        }
        std::sort(ranges.begin(), ranges.end());
        float end = ranges.front().second;
        for (std::size_t i = 1; i < ranges.size(); ++i) {
            if (ranges[i].first < end || ranges[i].first == ranges[i - 1].first) return true;
            end = std::max(end, ranges[i].second);
        }
        return false;
    }

    // Adds keys that hold the node's pose where a source's keys begin late, end early or are missing;
    // otherwise the node would drift towards the pose of the neighbouring source.
    void FillStretches(kernix::TransformControllerModel& controller, std::vector<TransformTrack*>& tracks,
                       int keyType, const kernix::Pose& rest) const {
        // Of the preceding source.
        TransformTrack* ended = nullptr;
        Value last;
        float end = 0;
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            const Source& source = m_copies[i];
            if (source.givesWay) continue;
            if (tracks[i] == nullptr) tracks[i] = controller.AddTransformTrack(source.copy);
            TransformTrack& track = *tracks[i];
            if (track.Count(keyType) == 0)
                AddKey(track, keyType, source.start, ValueAt(track, keyType, 0, rest));
            const Value first = ValueAt(track, keyType, track.TimeOf(keyType, 0), rest);
            Value own = ValueAt(track, keyType, track.TimeOf(keyType, track.Count(keyType) - 1), rest);
            if (ended != nullptr && last != first) {
                // Through a pause, the merge itself holds vectors but interpolates rotations.
                const float hold = keyType == vl::zr::kKeyRotation ? source.start : end;
                if (ended->TimeOf(keyType, ended->Count(keyType) - 1) < hold)
                    AddKey(*ended, keyType, hold, last);
                if (track.TimeOf(keyType, 0) > source.start) AddKey(track, keyType, source.start, first);
            }
            ended = &track;
            last = std::move(own);
            end = source.end;
        }
    }

    static void AddKey(TransformTrack& track, int keyType, float time, const Value& value) {
        PutKeys(track, keyType, {vl::zr::kInterpolationLinear, {time}, value});
    }

    Host& m_host;
    LoadedScene& m_loaded;
    kernix::SceneModel& m_scene;
    const Animations& m_sources;
    const MergeOptions& m_options;
    std::vector<Source> m_copies;
    MergeReport m_report;
};

}  // namespace

MergeReport MergeAnimations(Host& host, LoadedScene& loaded, const Animations& sources,
                            const MergeOptions& options) {
    return Merge(host, loaded, sources, options).Run();
}

}  // namespace zr
