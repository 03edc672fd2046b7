// SPDX-License-Identifier: MIT
// key_error GIVEN OTHER: prints the number of keys of the other scene and how far it strays from the given
// one: the greatest error of any drawn point, in scene units, and of any camera, light or loose end, in
// radians. Nodes and animations are matched by name.
//
// key_error GIVEN --hierarchical LENGTH: the same for the given scene reduced by hierarchical decimation:
// every track by the rule of Ramer, Douglas and Peucker ("An iterative procedure for the polygonal
// approximation of plane curves", 1972; Douglas and Peucker 1973), a joint's tolerance the least of those
// below it, rotation and scale errors measured at the farthest point below the joint.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "app/operations/compare/evaluator.h"
#include "app/operations/reduce/motion.h"
#include "app/operations/reduce/watched_points.h"

namespace {

using namespace zr;
using compare::Affine;
using compare::Animation;
using compare::Channel;
using compare::Evaluator;
using compare::KeyCurve;
using compare::Path;
using compare::Vec3;

struct Measured {
    std::size_t keys = 0;
    double length = 0;
    double angle = 0;
};

std::size_t CountKeys(const Evaluator& evaluator) {
    std::size_t keys = 0;
    for (const Animation& animation : evaluator.Animations())
        for (const Channel& channel : animation.channels) keys += channel.curve.Times().size();
    return keys;
}

// The index in b for each name in a: the n-th occurrence of the same name for the n-th; the same index if the
// name is empty or not found.
std::vector<std::size_t> Partners(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    std::map<std::string, std::vector<std::size_t>> places;
    for (std::size_t i = b.size(); i-- > 0;) places[b[i]].push_back(i);
    std::vector<std::size_t> partners;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::vector<std::size_t>& left = places[a[i]];
        const bool isFound = !a[i].empty() && !left.empty();
        partners.push_back(isFound ? left.back() : i);
        if (isFound) left.pop_back();
    }
    return partners;
}

std::vector<std::string> NodeNames(const gltf::Document& document) {
    std::vector<std::string> names;
    for (const gltf::Json& node : document.Elements(gltf::Kind::kNode)) {
        const gltf::Json* name = node.Find("name");
        names.emplace_back(name != nullptr ? name->String() : "");
    }
    return names;
}

std::vector<std::string> AnimationNames(const Evaluator& evaluator) {
    std::vector<std::string> names;
    for (const Animation& animation : evaluator.Animations()) names.push_back(animation.name);
    return names;
}

double AngleBetween(const Affine& a, const Affine& b) {
    double squares = 0;
    for (const Vec3& off : {Unit(a.x) - Unit(b.x), Unit(a.y) - Unit(b.y), Unit(a.z) - Unit(b.z)})
        squares += Dot(off, off);
    return 2 * std::asin(std::min(1.0, std::sqrt(squares / 8)));
}

Measured Compare(const gltf::Document& a, const gltf::Document& b) {
    Evaluator given(a), other(b);
    Measured error{CountKeys(other)};
    const std::vector<reduce::Watched> watched = reduce::WatchedPoints(given);
    std::vector<std::array<std::size_t, 2>> pairs;
    const std::vector<std::size_t> nodes = Partners(NodeNames(a), NodeNames(b));
    for (std::size_t node = 0; node < given.Nodes(); ++node)
        if (!watched[node].IsEmpty() && nodes[node] < other.Nodes()) pairs.push_back({node, nodes[node]});
    const std::vector<std::size_t> animations = Partners(AnimationNames(given), AnimationNames(other));
    for (std::size_t animation = 0; animation < animations.size(); ++animation) {
        const Animation& moved = given.Animations()[animation];
        const std::size_t partner = animations[animation];
        if (partner >= other.Animations().size()) continue;
        std::vector<double> keys;
        for (const Channel& channel : moved.channels)
            keys.insert(keys.end(), channel.curve.Times().begin(), channel.curve.Times().end());
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            for (int part = 0; part < (i + 1 < keys.size() ? 4 : 1); ++part) {
                const double time = part == 0 ? keys[i] : keys[i] + (keys[i + 1] - keys[i]) * part / 4;
                given.SetTime(animation, time);
                other.SetTime(partner, time);
                for (const auto& [node, match] : pairs) {
                    const Affine& from = given.World(node);
                    const Affine& to = other.World(match);
                    for (const Vec3& point : watched[node].points)
                        error.length = std::max(error.length, Length(from.Point(point) - to.Point(point)));
                    if (watched[node].direction) error.angle = std::max(error.angle, AngleBetween(from, to));
                }
            }
        }
    }
    return error;
}

// Keeps the key farthest from the line between the nearest kept ones on either side, until none is farther
// than the tolerance.
class Decimation {
public:
    Decimation(const Channel& channel, double factor, bool isChord)
        : m_curve(channel.curve),
          m_isRotation(channel.path == Path::kRotation),
          m_factor(factor),
          m_isChord(isChord) {}

    KeyCurve Run(double tolerance) const {
        const auto times = m_curve.Times();
        if (!m_curve.IsLinear() || times.size() < 3) return m_curve;
        std::vector<bool> keep(times.size(), false);
        keep.front() = keep.back() = true;
        std::vector<std::array<std::size_t, 2>> open{{0, times.size() - 1}};
        while (!open.empty()) {
            const auto [from, to] = open.back();
            open.pop_back();
            double worst = tolerance;
            std::size_t at = 0;
            for (std::size_t key = from + 1; key < to; ++key) {
                const double error = ErrorAt(key, from, to);
                if (error <= worst) continue;
                worst = error;
                at = key;
            }
            if (at == 0) continue;
            keep[at] = true;
            open.push_back({from, at});
            open.push_back({at, to});
        }
        std::vector<float> newTimes, values;
        for (std::size_t key = 0; key < times.size(); ++key) {
            if (!keep[key]) continue;
            newTimes.push_back(times[key]);
            const auto value = m_curve.Values().subspan(key * m_curve.Width(), m_curve.Width());
            values.insert(values.end(), value.begin(), value.end());
        }
        return {std::move(newTimes), std::move(values), m_curve.Width()};
    }

private:
    double ErrorAt(std::size_t key, std::size_t from, std::size_t to) const {
        const std::size_t width = m_curve.Width();
        const auto value = [&](std::size_t i) { return m_curve.Values().subspan(i * width, width); };
        std::vector<float> times{m_curve.Times()[from], m_curve.Times()[to]}, ends;
        ends.insert(ends.end(), value(from).begin(), value(from).end());
        ends.insert(ends.end(), value(to).begin(), value(to).end());
        std::array<double, 4> on{};
        KeyCurve(times, ends, width)
            .At(static_cast<double>(m_curve.Times()[key]), m_isRotation, std::span(on).first(width));
        double square = 0, cosine = 0;
        for (std::size_t i = 0; i < width; ++i) {
            const auto given = static_cast<double>(value(key)[i]);
            square += (on[i] - given) * (on[i] - given);
            cosine += on[i] * given;
        }
        if (!m_isChord) return std::sqrt(square) * m_factor;
        const double half = std::acos(std::min(1.0, std::abs(cosine)));
        return 2 * std::sin(half) * m_factor;
    }

    const KeyCurve& m_curve;
    const bool m_isRotation;
    const double m_factor;
    const bool m_isChord;
};

// Searches for the tolerance that brings the measured error to the wished one.
Measured Hierarchical(const gltf::Document& document, double wished) {
    const Evaluator evaluator(document);
    const std::vector<reduce::Watched> watched = reduce::WatchedPoints(evaluator);
    Measured best;
    for (const Animation& animation : evaluator.Animations()) {
        std::vector<reduce::Track> tracks;
        std::size_t others = 0;
        for (const Channel& channel : animation.channels) {
            if (channel.path <= Path::kScale) {
                tracks.push_back({&channel, &channel.curve, channel.curve, channel.curve});
            } else {
                others += channel.curve.Times().size();
            }
        }
        const reduce::Motion motion(evaluator, watched, tracks);
        const auto reduceBy = [&](double tolerance) {
            std::size_t keys = others;
            for (const auto& mover : motion.Movers()) {
                for (const std::size_t place : mover.tracks) {
                    reduce::Track& track = tracks[place];
                    const bool turns = track.channel->path == Path::kRotation;
                    const double factor = track.channel->path == Path::kTranslation ? mover.above
                                          : mover.reach > 0 ? mover.above * mover.reach
                                                            : 1.0;
                    track.reduced = Decimation(*track.channel, factor, turns).Run(tolerance);
                    keys += track.reduced.Times().size();
                }
            }
            return keys;
        };
        double low = 0, high = 64 * wished;
        std::size_t keys = reduceBy(0);
        double length = 0, angle = 0;
        for (int round = 0; round < 24; ++round) {
            const double middle = round == 0 ? high : (low + high) / 2;
            const std::size_t now = reduceBy(middle);
            double worst = 0, turned = 0;
            for (const reduce::Stray& stray : motion.Measure()) {
                worst = std::max(worst, stray.length);
                turned = std::max(turned, stray.angle);
            }
            if (worst > wished) {
                high = middle;
                continue;
            }
            low = middle;
            if (now <= keys) keys = now, length = worst, angle = turned;
            if (round == 0) break;
        }
        best.keys += keys;
        best.length = std::max(best.length, length);
        best.angle = std::max(best.angle, angle);
    }
    return best;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Measured error;
        if (argc == 3) {
            error = Compare(gltf::Document::Load(argv[1]), gltf::Document::Load(argv[2]));
        } else if (argc == 4 && argv[2] == std::string("--hierarchical")) {
            error = Hierarchical(gltf::Document::Load(argv[1]), std::strtod(argv[3], nullptr));
        } else {
            std::fprintf(stderr, "usage: key_error GIVEN OTHER | key_error GIVEN --hierarchical LENGTH\n");
            return 2;
        }
        std::printf("%zu %.9g %.9g\n", error.keys, error.length, error.angle);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "key_error: %s\n", failure.what());
        return 1;
    }
    return 0;
}
