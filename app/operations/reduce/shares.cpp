// SPDX-License-Identifier: MIT
#include "app/operations/reduce/shares.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

#include "app/operations/reduce/straight_curve.h"
#include "app/operations/reduce/thinned_curve.h"

namespace zr::reduce {

using compare::KeyCurve;
using compare::Path;

namespace {

// Measured errors stay this far below the tolerance: between the measured times something may stray a little
// farther.
constexpr double kMargin = 0.995;

// Finds how much of the tolerance each moving node may use.
class Shares {
public:
    Shares(const Motion& motion, std::vector<Track>& tracks, const ReduceTolerance& tolerance)
        : m_motion(motion), m_tracks(tracks), m_tolerance(tolerance), m_shares(motion.Movers().size(), 1.0) {
        for (const Track& track : tracks) {
            const KeyCurve& passed = track.channel->curve;
            m_passed.emplace_back();
            if (passed.KeyCount() < track.original->KeyCount())
                m_passed.back() = Straightened(passed, track.channel->path == Path::kRotation);
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
        for (const Track& track : m_tracks) keys += track.reduced.KeyCount();
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
            m_bestKeys += track.reduced.KeyCount();
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
                double& own = use[m_motion.Watches()[watch].mover];
                own = std::max(own, Use(strays[watch]));
            }
            for (std::size_t mover = use.size(); mover-- > 0;) {
                const std::size_t next = m_motion.Movers()[mover].next;
                if (next != compare::kNone) use[next] = std::max(use[next], use[mover]);
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
            keys += m_tracks[track].reduced.KeyCount();
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
        track.reduced = ThinnedCurve(*track.original, track.straight, isRotation, tolerance);
        if (!m_passed[place]) return;
        KeyCurve passed = ThinnedCurve(track.channel->curve, *m_passed[place], isRotation, tolerance);
        if (passed.KeyCount() < track.reduced.KeyCount()) track.reduced = std::move(passed);
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

}  // namespace

std::vector<Stray> ThinByMotion(const Motion& motion, std::vector<Track>& tracks,
                                const ReduceTolerance& tolerance) {
    return Shares(motion, tracks, tolerance).Settle();
}

void ThinByBound(const Motion& motion, std::vector<Track>& tracks, const ReduceTolerance& tolerance) {
    Shares(motion, tracks, tolerance).SettleUnplayed();
}

}  // namespace zr::reduce
