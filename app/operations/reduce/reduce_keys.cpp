// SPDX-License-Identifier: MIT
#include "app/operations/reduce/reduce_keys.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <optional>
#include <utility>
#include <vector>

#include "app/operations/reduce/motion.h"
#include "app/operations/reduce/straight_curve.h"
#include "app/operations/reduce/thin_track.h"
#include "base/parallel.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/collect.h"

namespace zr {
namespace {

using compare::KeyCurve;
using compare::kNone;
using compare::Path;
using gltf::Json;
using gltf::Kind;
using reduce::Keys;
using reduce::Motion;
using reduce::Stray;
using reduce::Track;

// Measured errors stay this far below the tolerance: between the measured times something may stray a little
// farther.
constexpr double kMargin = 0.995;
// A measurement that plays more transforms than this is not worth its time.
constexpr std::size_t kGreatestCost = 40'000'000;

Keys KeysOf(const KeyCurve& curve) {
    return {{curve.Times().begin(), curve.Times().end()}, {curve.Values().begin(), curve.Values().end()}};
}

std::size_t KeyCount(const KeyCurve& curve) {
    return curve.Times().size();
}

bool IsSame(const KeyCurve& a, const KeyCurve& b) {
    return std::ranges::equal(a.Times(), b.Times()) && std::ranges::equal(a.Values(), b.Values());
}

// The same curve within a tolerance; unchanged where no key can be dropped. straight: the curve without cubic
// pieces.
KeyCurve Thinned(const KeyCurve& curve, const KeyCurve& straight, bool isRotation, double tolerance) {
    if (!straight.IsLinear() || !(tolerance > 0)) return curve;
    Keys thin = isRotation ? ThinnedRotations(KeysOf(straight), tolerance)
                           : ThinnedVectors(KeysOf(straight), straight.Width(), tolerance);
    if (thin.times.size() >= KeyCount(curve)) return curve;
    return {std::move(thin.times), std::move(thin.values), curve.Width()};
}

// Finds how much of the tolerance each moving node may use.
class Shares {
public:
    Shares(const Motion& motion, std::vector<Track>& tracks, const ReduceTolerance& tolerance)
        : m_motion(motion), m_tracks(tracks), m_tolerance(tolerance), m_shares(motion.Movers().size(), 1.0) {
        for (const Track& track : tracks) {
            const KeyCurve& passed = track.channel->curve;
            m_passed.emplace_back();
            if (KeyCount(passed) < KeyCount(*track.original))
                m_passed.back() = reduce::Straightened(passed, track.channel->path == Path::kRotation);
        }
    }

    // Thins the tracks as far as the motion, played, allows; the strays of the motion's watches.
    std::vector<Stray> Settle() {
        ThinEvenly();
        if (m_best.empty()) {
            // The pass before may have put things off too far.
            ForgetPassed();
            ThinEvenly();
        }
        if (m_best.empty()) KeepAll();
        Adapt();
        Refine();
        for (std::size_t i = 0; i < m_tracks.size(); ++i) m_tracks[i].reduced = m_best[i];
        return m_bestStrays;
    }

    // Thins the tracks by the bound alone, which knows of no keys but those that are taken here.
    void SettleUnplayed() {
        ForgetPassed();
        ThinAll();
    }

private:
    static constexpr int kEvenRounds = 16;
    static constexpr int kGreatestRounds = 64;  // while nothing is within the tolerance
    static constexpr int kAdaptingRounds = 40;
    static constexpr int kIdleRounds = 8;  // without a gain, after which the search ends
    // Transforms that the search for the last keys may evaluate.
    static constexpr std::size_t kRefiningCost = 4'000'000;
    static constexpr double kGreatestShare = 1024;

    double Use(const Stray& stray) const {
        double use = m_tolerance.length > 0 ? stray.length / m_tolerance.length : stray.length > 0 ? 1e9 : 0;
        if (m_tolerance.angle > 0) use = std::max(use, stray.angle / m_tolerance.angle);
        return use / kMargin;
    }
    bool IsWithin(const std::vector<Stray>& strays) const {
        return std::all_of(strays.begin(), strays.end(), [&](const Stray& stray) { return Use(stray) <= 1; });
    }

    // Remembers the tracks when they are within the tolerance and have fewer keys than any before.
    bool Keep(const std::vector<Stray>& strays) {
        if (!IsWithin(strays)) return false;
        std::size_t keys = 0;
        for (const Track& track : m_tracks) keys += KeyCount(track.reduced);
        if (!m_best.empty() && keys >= m_bestKeys) return false;
        m_bestKeys = keys;
        m_best.clear();
        for (const Track& track : m_tracks) m_best.push_back(track.reduced);
        m_bestShares = m_shares;
        m_bestStrays = strays;
        return true;
    }

    void ForgetPassed() { std::fill(m_passed.begin(), m_passed.end(), std::nullopt); }

    void ThinAll() {
        for (std::size_t mover = 0; mover < m_shares.size(); ++mover) Thin(mover);
    }

    // The greatest share that all may have alike. The bound itself, a share of 1, holds but for scales that
    // were reduced above other nodes.
    void ThinEvenly() {
        double low = 0, high = kGreatestShare;
        for (int round = 0; round < (m_best.empty() ? kGreatestRounds : kEvenRounds); ++round) {
            const double share = low > 0 ? std::sqrt(low * high) : std::min(1.0, high / 2);
            std::fill(m_shares.begin(), m_shares.end(), share);
            ThinAll();
            const std::vector<Stray> strays = m_motion.Measure();
            Keep(strays);
            (IsWithin(strays) ? low : high) = share;
        }
    }

    // Where even the least change strays too far, or farther than can be told: the curves as they are.
    void KeepAll() {
        std::fill(m_shares.begin(), m_shares.end(), 0);
        for (Track& track : m_tracks) {
            track.reduced = *track.original;
            m_bestKeys += KeyCount(track.reduced);
            m_best.push_back(track.reduced);
        }
        m_bestShares = m_shares;
        m_bestStrays = m_motion.Measure();
    }

    // Movers that make something stray too far give up some of their share; others get more.
    void Adapt() {
        Restore();
        for (int round = 0, idle = 0; round < kAdaptingRounds && idle < kIdleRounds; ++round) {
            const std::vector<Stray> strays = round == 0 ? m_bestStrays : m_motion.Measure();
            idle = Keep(strays) ? 0 : idle + 1;
            std::vector<double> use(m_shares.size(), 0);
            for (std::size_t watch = 0; watch < strays.size(); ++watch) {
                for (const std::size_t mover : m_motion.Watches()[watch].movers)
                    use[mover] = std::max(use[mover], Use(strays[watch]));
            }
            // Steps that shrink from round to round let the shares come to rest.
            const int slowness = 1 + round / 6;
            const double pace = 1.0 / slowness;
            for (std::size_t mover = 0; mover < m_shares.size(); ++mover) {
                const double wanted = use[mover] > 0 ? std::clamp(0.99 / use[mover], 0.25, 4.0) : 4.0;
                m_shares[mover] = std::min(m_shares[mover] * std::pow(wanted, pace), kGreatestShare);
                Thin(mover);
            }
        }
    }

    // Gives one mover after the other more, where that saves keys and still holds.
    void Refine() {
        std::size_t left = kRefiningCost;
        Restore();
        for (const double factor : {2.0, 1.4, 1.15}) {
            for (std::size_t mover = 0; mover < m_shares.size(); ++mover) {
                const std::size_t before = Keys(mover);
                m_shares[mover] *= factor;
                Thin(mover);
                if (Keys(mover) < before) {
                    if (m_motion.Cost() > left) return;
                    left -= m_motion.Cost();
                    if (Keep(m_motion.Measure())) continue;
                }
                m_shares[mover] = m_bestShares[mover];
                for (const std::size_t track : m_motion.Movers()[mover].tracks)
                    m_tracks[track].reduced = m_best[track];
            }
        }
    }

    std::size_t Keys(std::size_t mover) const {
        std::size_t keys = 0;
        for (const std::size_t track : m_motion.Movers()[mover].tracks)
            keys += KeyCount(m_tracks[track].reduced);
        return keys;
    }

    // Back to the best that held.
    void Restore() {
        m_shares = m_bestShares;
        for (std::size_t i = 0; i < m_tracks.size(); ++i) m_tracks[i].reduced = m_best[i];
    }

    void Thin(std::size_t number) {
        const Motion::Mover& mover = m_motion.Movers()[number];
        const double parts = static_cast<double>(mover.depth * mover.tracks.size());
        const double length = m_shares[number] * m_tolerance.length / (parts * mover.above);
        const double angle = m_shares[number] * m_tolerance.angle / parts;
        const double reach = mover.reach;
        for (const std::size_t place : mover.tracks) {
            const Path path = m_tracks[place].channel->path;
            double most = length;
            if (path == Path::kScale && reach > 0) most = length / reach;
            if (path == Path::kRotation) {
                // A turn moves a point by twice the sine of half its angle, times its distance.
                const double sine = reach > 0 ? length / (2 * mover.scale * reach) : 1;
                most = sine < 1 ? 2 * std::asin(sine) : std::numbers::pi;
                if (mover.direction) most = std::min(most, angle);
            }
            ThinTrack(place, most);
        }
    }

    // From the original, or from what a pass before left of it where that takes fewer keys.
    void ThinTrack(std::size_t place, double tolerance) {
        Track& track = m_tracks[place];
        const bool isRotation = track.channel->path == Path::kRotation;
        track.reduced = Thinned(*track.original, track.straight, isRotation, tolerance);
        if (!m_passed[place]) return;
        KeyCurve passed = Thinned(track.channel->curve, *m_passed[place], isRotation, tolerance);
        if (KeyCount(passed) < KeyCount(track.reduced)) track.reduced = std::move(passed);
    }

    const Motion& m_motion;
    std::vector<Track>& m_tracks;
    std::vector<std::optional<KeyCurve>> m_passed;  // track by track, without cubic pieces
    const ReduceTolerance& m_tolerance;
    std::vector<double> m_shares;
    std::vector<KeyCurve> m_best;
    std::vector<double> m_bestShares;
    std::vector<Stray> m_bestStrays;
    std::size_t m_bestKeys = 0;
};

class Reducer {
public:
    Reducer(gltf::Document& document, const ReduceOptions& options)
        : m_document(document),
          m_options(options),
          m_evaluator(document),
          m_watched(reduce::WatchedPoints(m_evaluator)) {}

    ReduceReport Run() {
        const std::vector<compare::Animation>& animations = m_evaluator.Animations();
        std::vector<Reduced> reduced(animations.size());
        std::mutex mutex;
        std::size_t done = 0;
        ParallelFor(animations.size(), m_options.jobs, [&](std::size_t animation) {
            reduced[animation] = Reduce(animation);
            const std::lock_guard lock(mutex);
            m_options.progress(static_cast<double>(++done) / static_cast<double>(animations.size()));
        });
        for (std::size_t animation = 0; animation < animations.size(); ++animation) {
            Note(animations[animation], reduced[animation]);
            Write(animation, reduced[animation].curves);
        }
        gltf::CollectGarbage(m_document, {Kind::kAccessor, Kind::kBufferView, Kind::kBuffer}, false);
        return m_report;
    }

private:
    struct Reduced {
        std::map<std::size_t, KeyCurve> curves;  // by channel
        std::size_t keysBefore = 0;
        double length = 0;
        double angle = 0;
        std::size_t node = kNone;
        double time = 0;
        bool isBound = false;
    };

    std::vector<Track> TracksOf(std::size_t number) const {
        std::map<std::pair<std::size_t, Path>, const KeyCurve*> originals;
        if (number < m_options.originals.size()) {
            for (const compare::Channel& channel : m_options.originals[number].channels)
                originals.emplace(std::pair(channel.node, channel.path), &channel.curve);
        }
        std::vector<Track> tracks;
        for (const compare::Channel& channel : m_evaluator.Animations()[number].channels) {
            if (channel.path > Path::kScale) continue;
            const auto found = originals.find({channel.node, channel.path});
            const KeyCurve& original = found != originals.end() ? *found->second : channel.curve;
            tracks.push_back({&channel, &original,
                              reduce::Straightened(original, channel.path == Path::kRotation),
                              channel.curve});
        }
        return tracks;
    }

    Reduced Reduce(std::size_t number) const {
        const ReduceTolerance& tolerance = m_options.tolerance;
        Reduced reduced;
        for (const compare::Channel& channel : m_evaluator.Animations()[number].channels) {
            if (channel.path <= Path::kScale) continue;
            reduced.keysBefore += KeyCount(channel.curve);
            const KeyCurve straight = reduce::Straightened(channel.curve, false);
            reduced.curves.emplace(channel.index, Thinned(channel.curve, straight, false, tolerance.value));
        }
        std::vector<Track> tracks = TracksOf(number);
        for (const Track& track : tracks) reduced.keysBefore += KeyCount(*track.original);
        if (!tracks.empty()) ReduceTracks(tracks, reduced);
        for (Track& track : tracks) reduced.curves.emplace(track.channel->index, std::move(track.reduced));
        return reduced;
    }

    void ReduceTracks(std::vector<Track>& tracks, Reduced& reduced) const {
        const ReduceTolerance& tolerance = m_options.tolerance;
        const bool mayStray = tolerance.length > 0 || tolerance.angle > 0;
        const Motion motion(m_evaluator, m_watched, tracks);
        reduced.isBound = mayStray && motion.Cost() > kGreatestCost;
        Shares shares(motion, tracks, tolerance);
        if (reduced.isBound) {
            shares.SettleUnplayed();
            reduced.length = tolerance.length;
            reduced.angle = tolerance.angle;
        } else if (mayStray || motion.Cost() <= kGreatestCost) {
            const std::vector<Stray> strays = mayStray ? shares.Settle() : motion.Measure();
            for (std::size_t watch = 0; watch < strays.size(); ++watch) {
                reduced.angle = std::max(reduced.angle, strays[watch].angle);
                if (strays[watch].length <= reduced.length) continue;
                reduced.length = strays[watch].length;
                reduced.node = motion.Watches()[watch].node;
                reduced.time = strays[watch].lengthTime;
            }
        }
    }

    void Note(const compare::Animation& animation, const Reduced& reduced) {
        m_report.keysBefore += reduced.keysBefore;
        for (const auto& [channel, curve] : reduced.curves) m_report.keysAfter += KeyCount(curve);
        m_report.isBound |= reduced.isBound;
        m_report.angle = std::max(m_report.angle, reduced.angle);
        if (reduced.length <= m_report.length) return;
        m_report.length = reduced.length;
        m_report.animation = animation.name;
        m_report.time = reduced.time;
        if (reduced.node == kNone) return;
        const Json* name = m_document.Elements(Kind::kNode)[reduced.node].Find("name");
        m_report.node = name != nullptr ? std::string(name->String()) : Join("#", reduced.node);
    }

    void Write(std::size_t animation, const std::map<std::size_t, KeyCurve>& reduced) {
        std::map<std::vector<float>, std::size_t> inputs;  // accessors of equal times are one
        for (const compare::Channel& channel : m_evaluator.Animations()[animation].channels) {
            const KeyCurve& curve = reduced.at(channel.index);
            if (IsSame(curve, channel.curve)) continue;
            gltf::JsonTree& tree = m_document.Tree();
            const auto element = [&]() -> Json& { return m_document.Elements(Kind::kAnimation)[animation]; };
            const std::size_t oldSampler =
                gltf::IndexMember(element().Find("channels")->Items()[channel.index], "sampler");
            const Json& old = element().Find("samplers")->Items()[oldSampler];
            const std::string type(m_document.Elements(Kind::kAccessor)[gltf::IndexMember(old, "output")]
                                       .Find("type")
                                       ->String());
            const std::vector<float> times(curve.Times().begin(), curve.Times().end());
            auto input = inputs.find(times);
            if (input == inputs.end()) {
                input =
                    inputs
                        .emplace(times, gltf::AppendFloats(m_document, "SCALAR", gltf::Use::kKeyTimes, times))
                        .first;
            }
            const std::size_t output =
                gltf::AppendFloats(m_document, type, gltf::Use::kKeyValues, curve.Values());
            Json sampler = tree.Clone(element().Find("samplers")->Items()[oldSampler]);
            tree.Member(sampler, "input") = tree.MakeIndex(input->second);
            tree.Member(sampler, "output") = tree.MakeIndex(output);
            if (curve.IsLinear() && !channel.curve.IsLinear()) sampler.EraseMember("interpolation");
            Json& samplers = *element().Find("samplers");
            tree.Append(samplers, sampler);
            tree.Member(element().Find("channels")->Items()[channel.index], "sampler") =
                tree.MakeIndex(samplers.Items().size() - 1);
        }
    }

    gltf::Document& m_document;
    const ReduceOptions& m_options;
    compare::Evaluator m_evaluator;
    std::vector<reduce::Watched> m_watched;
    ReduceReport m_report;
};

}  // namespace

ReduceReport ReduceKeys(gltf::Document& document, const ReduceOptions& options) {
    return Reducer(document, options).Run();
}

}  // namespace zr
