// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "app/operations/export/pose_pairs.h"
#include "app/operations/export/value_check.h"
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

class Checker {
public:
    Checker(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips)
        : m_loaded(loaded), m_clips(clips), m_poses(loaded, records, options, clips) {}

    std::size_t RecordCount() const { return m_poses.RecordCount(); }

    // Compares at most `budget` transforms of the animation, though some of every one.
    void Compare(const PlayedAnimation& played, const ReplacedKeys& replaced,
                 const std::vector<AddedKeys>& added, std::size_t budget, MotionReport& report) {
        const std::vector<PosePairs::Pair>& pairs = m_poses.Pairs();
        if (pairs.empty()) return;
        const std::vector<float> keyTimes = m_poses.Play(*played.animation, replaced, added, 4 * kMostTimes);
        const std::size_t most = std::clamp(budget / pairs.size(), kFewestTimes, kMostTimes);
        const Clip clip = m_clips.Of(*played.animation);
        const std::vector<float> times = Times(clip, keyTimes, most);
        const std::size_t atOnce = std::clamp<std::size_t>(budget / times.size(), 1, pairs.size());
        const Worst worst = CompareAt(times, atOnce, played, clip);
        if (!report.node.empty() && !(worst.deviation > report.deviation)) return;
        report.deviation = std::max(worst.deviation, 0.0);
        report.time = double{worst.time};
        report.node = m_loaded.NameOf(*pairs[worst.pair].model);
        report.animation = kernix::ToUtf8(played.animation->m_name);
    }

    // Diagonal of the box that holds the nodes that were compared.
    double Size() const { return std::hypot(m_box.Extent(0), m_box.Extent(1), m_box.Extent(2)); }

private:
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
        const std::vector<PosePairs::Pair>& pairs = m_poses.Pairs();
        std::vector<Part> parts(count);
        const auto run = [&](std::size_t index) {
            Part& part = parts[index];
            PoseTree::Walk before(m_poses.Before()), after(m_poses.After());
            for (std::size_t i = index; i < times.size(); i += count) {
                before.Go(times[i]);
                after.Go(clip.Map(times[i]) * played.timeScale + played.timeOffset);
                for (std::size_t k = 0; k < atOnce; ++k) {
                    const std::size_t pair = (m_nextPair + i * atOnce + k) % pairs.size();
                    const Affine shown = m_poses.Shown(before, pairs[pair]);
                    part.box.Add(shown.rows[3]);
                    part.Add(DistanceBetween(after.World(pairs[pair].record), shown), i, pair);
                }
            }
        };
        std::vector<std::jthread> threads;
        for (std::size_t index = 1; index < count; ++index) threads.emplace_back(run, index);
        run(0);
        threads.clear();
        m_nextPair = (m_nextPair + times.size() * atOnce) % pairs.size();
        Part all;
        for (const Part& part : parts) all.Add(part);
        m_box.Add(all.box);
        return {all.deviation, times[all.time], all.pair};
    }

    const LoadedScene& m_loaded;
    const Clips& m_clips;
    PosePairs m_poses;
    std::size_t m_nextPair = 0;
    Box m_box;
};

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
