// SPDX-License-Identifier: MIT
#include "app/operations/export/clip.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "app/scene/animations_of.h"
#include "app/scene/curve_cut.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// A key within this fraction of a frame counts as being on the frame, since times are rounded.
constexpr double kFrameSlack = 1e-3;
constexpr double kMostKeys = 2e7;  // of a sampled scene

// The times at which a clip is sampled, in the time of the result.
std::vector<float> Frames(const Clip& clip, double frameRate) {
    const float start = clip.Map(clip.from), end = clip.Map(clip.to);
    const double count = std::ceil((double{end} - start) * frameRate - kFrameSlack);
    std::vector<float> frames{start};
    for (double frame = 1; frame < count; ++frame) {
        const auto time = static_cast<float>(start + frame / frameRate);
        if (time > frames.back() && time < end) frames.push_back(time);
    }
    if (end > start) frames.push_back(end);
    return frames;
}

void Retime(Curve& curve, const Clip& clip) {
    for (float& time : curve.times) time = clip.Map(time);
    MakeAscending(curve);
    if (!curve.IsCubic()) return;
    const std::size_t stride = curve.Stride(), width = curve.Width();
    for (std::size_t i = 0; i < curve.values.size(); ++i) {
        if (i % stride / width != 1) curve.values[i] = static_cast<float>(curve.values[i] * clip.speed);
    }
}

// Makes the curve of a clip from a curve of the scene: samples it at the frame rate or, if that is 0, cuts it
// and keeps its keys.
class Clipper {
public:
    Clipper(const Clip& clip, float start, float end, double frameRate) : m_clip(clip) {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        m_from = clip.from > start ? clip.from : -kInfinity;
        m_to = clip.to < end ? clip.to : kInfinity;
        if (frameRate == 0) return;
        m_frames = Frames(clip, frameRate);
        for (const float frame : m_frames) m_shown.push_back(clip.Unmap(double{frame}));
        m_shown.front() = clip.from;
        m_shown.back() = clip.to;
        m_slack = kFrameSlack / frameRate * clip.speed;
    }

    Curve Clipped(const Curve& source, bool isRotation) const {
        if (!m_frames.empty() && source.times.size() > 1) {
            Curve sampled = SampledAt(source, m_shown, m_slack, isRotation);
            sampled.times = m_frames;
            return sampled;
        }
        Curve curve = Cut(source, m_from, m_to, isRotation);
        Retime(curve, m_clip);
        return curve;
    }

private:
    const Clip m_clip;
    float m_from, m_to;           // infinite: not cut
    std::vector<float> m_frames;  // in the time of the result; empty: not sampled
    std::vector<float> m_shown;   // the same times in the scene's time
    double m_slack = 0;           // seconds of the scene's time
};

}  // namespace

Clips::Clips(kernix::SceneModel& scene, const ClipOptions& options) : m_scene(scene) {
    if (!options.MovesKeys()) return;
    Measure(options);
    for (const kernix::AnimationModel* animation : AnimationsOf(scene)) {
        if (m_clips.count(animation) != 0) ClipTracks(*animation, options);
    }
    if (options.frameRate != 0) scene.SetFrameRate(static_cast<float>(options.frameRate));
    scene.TransformsChanged();
}

void Clips::Measure(const ClipOptions& options) {
    double keys = 0;
    for (kernix::AnimationModel* animation : AnimationsOf(m_scene)) {
        const auto& tracks = animation->Tracks();
        const bool moves = std::any_of(tracks.begin(), tracks.end(),
                                       [](vl::zr::Track* track) { return track->GetKeyCount() != 0; });
        if (!moves) continue;
        const float start = m_scene.GetStartTime(animation), end = m_scene.GetEndTime(animation);
        Clip clip{std::max(options.from, start), std::min(options.to, end), 0, options.speed};
        if (start == end) clip.from = clip.to = start;  // a pose counts wherever it is
        if (start < end && clip.from >= clip.to)
            throw std::runtime_error(Join("animation \"", kernix::ToUtf8(animation->m_name), "\" runs from ",
                                          Short(start), " to ", Short(end),
                                          " s: nothing of it is left (--from, --to)"));
        if (options.startsAtZero) clip.origin = double{clip.from};
        m_clips[animation] = clip;
        const double length = (double{clip.to} - clip.from) / options.speed;
        keys += (length * options.frameRate + 1) * static_cast<double>(tracks.size());
    }
    if (options.frameRate != 0 && keys > kMostKeys)
        throw std::runtime_error(Join("sampling would create about ", Short(keys), " keys (--fps)"));
}

void Clips::ClipTracks(const kernix::AnimationModel& animation, const ClipOptions& options) {
    auto* played = const_cast<kernix::AnimationModel*>(&animation);
    const Clipper clipper(m_clips.at(&animation), m_scene.GetStartTime(played), m_scene.GetEndTime(played),
                          options.frameRate);
    for (vl::zr::Track* plain : animation.Tracks()) {
        if (plain->GetKeyCount() == 0) continue;
        auto& sources = m_sources[plain];
        const auto clip = [&](kernix::StoredCurve& source, bool isRotation) {
            kernix::StoredCurve clipped(clipper.Clipped(source.Get(), isRotation));
            source.Unload();
            return clipped;
        };
        if (auto* sampled = dynamic_cast<kernix::SampledTrack*>(plain)) {
            sources[0] = sampled->TakeCurve();
            sampled->SetCurve(clip(sources[0], false));
            continue;
        }
        auto& track = static_cast<kernix::TransformTrack&>(*plain);
        for (std::size_t place = 0; place < sources.size(); ++place) {
            const int keyType = kKeyTypes[place];
            if (track.Count(keyType) == 0) continue;
            sources[place] = track.TakeCurve(keyType);
            track.SetCurve(keyType, clip(sources[place], keyType == vl::zr::kKeyRotation));
        }
    }
}

Clip Clips::Of(const kernix::AnimationModel& animation) const {
    const auto found = m_clips.find(&animation);
    if (found != m_clips.end()) return found->second;
    auto* played = const_cast<kernix::AnimationModel*>(&animation);
    return {m_scene.GetStartTime(played), m_scene.GetEndTime(played), 0, 1};
}

const Curve& Clips::Source(const vl::zr::Track& track, std::size_t place) const {
    const auto found = m_sources.find(&track);
    if (found != m_sources.end()) return found->second[place].Get();
    if (const auto* sampled = dynamic_cast<const kernix::SampledTrack*>(&track)) return sampled->GetCurve();
    return static_cast<const kernix::TransformTrack&>(track).Packed(kKeyTypes[place])->Get();
}

void Clips::Unload(const kernix::AnimationModel& animation) const {
    for (vl::zr::Track* track : animation.Tracks()) {
        if (const auto found = m_sources.find(track); found != m_sources.end())
            for (const kernix::StoredCurve& source : found->second) source.Unload();
        if (auto* transform = dynamic_cast<kernix::TransformTrack*>(track)) transform->Unload();
    }
}

}  // namespace zr
