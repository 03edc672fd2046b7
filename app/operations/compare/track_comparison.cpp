// SPDX-License-Identifier: MIT
#include "app/operations/compare/track_comparison.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "app/operations/compare/value_difference.h"
#include "base/text.h"

namespace zr::compare {
namespace {

std::vector<double> At(const Channel& channel, double time) {
    std::vector<double> value(channel.curve.Width());
    channel.curve.At(time, channel.path == Path::kRotation, value);
    return value;
}

// Slightly after a time: exactly at a key, a step and the steepest possible ramp differ, but only for an
// invisible instant.
double JustAfter(double time) {
    return time + 1e-6 * std::max(1.0, std::abs(time));
}

std::string_view NameOf(Path path) {
    switch (path) {
        case Path::kTranslation:
            return "translation";
        case Path::kRotation:
            return "rotation";
        case Path::kScale:
            return "scale";
        default:
            return "weights";
    }
}

}  // namespace

std::string Goal::Place() const {
    return path == Path::kPointer ? pointerA : Join("/nodes/", nodeA, "/", NameOf(path));
}

void TrackComparison::Run(const Animation& a, const Animation& b, const GoalOf& goalOfA,
                          const GoalOf& goalOfB, const OnValue& onValue) {
    m_start = std::min(a.start, b.start);
    m_end = std::max(a.end, b.end);
    std::map<Goal, std::pair<const Channel*, const Channel*>> goals;
    for (const Channel& channel : a.channels)
        if (const auto goal = goalOfA(channel)) goals[*goal].first = &channel;
    for (const Channel& channel : b.channels)
        if (const auto goal = goalOfB(channel)) goals[*goal].second = &channel;
    for (const auto& [goal, channels] : goals) Compare(goal, channels.first, channels.second, onValue);
    std::sort(m_keyTimes.begin(), m_keyTimes.end());
    m_keyTimes.erase(std::unique(m_keyTimes.begin(), m_keyTimes.end()), m_keyTimes.end());
}

void TrackComparison::Compare(const Goal& goal, const Channel* a, const Channel* b, const OnValue& onValue) {
    std::vector<double> times;
    for (const Channel* channel : {a, b})
        if (channel != nullptr)
            for (const float time : channel->curve.Times()) times.push_back(static_cast<double>(time));
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    m_keyTimes.insert(m_keyTimes.end(), times.begin(), times.end());

    const std::vector<double> stillA = a == nullptr ? Still(m_a, goal, true) : std::vector<double>();
    const std::vector<double> stillB = b == nullptr ? Still(m_b, goal, false) : std::vector<double>();
    Worst worst{0, 0};
    double amount = 0, amountTime = 0;
    const auto look = [&](double time) {
        const std::vector<double> x = a != nullptr ? At(*a, time) : stillA;
        const std::vector<double> y = b != nullptr ? At(*b, time) : stillB;
        const double rank = Rank(goal.path, x, y);
        if (rank > worst.rank) worst = {rank, time};
        if (goal.path != Path::kWeights && goal.path != Path::kPointer) return;
        double difference = x.size() == y.size() ? 0 : 1;
        for (std::size_t i = 0; i < std::min(x.size(), y.size()); ++i)
            difference = std::max(difference, ValueDifference(x[i], y[i]));
        if (difference > amount) amount = difference, amountTime = time;
    };
    for (std::size_t i = 0; i < times.size(); ++i) {
        look(JustAfter(times[i]));
        if (i + 1 == times.size()) break;
        if (times[i + 1] <= JustAfter(times[i])) continue;
        for (const double part : {0.25, 0.5, 0.75}) look(times[i] + part * (times[i + 1] - times[i]));
    }
    if (worst.rank > 0) m_worst.push_back(worst);
    if (amount > 0) onValue(goal, amount, amountTime);
}

std::vector<double> TrackComparison::Still(const Evaluator& evaluator, const Goal& goal, bool isA) const {
    if (goal.path == Path::kPointer)
        return evaluator.Value(isA ? goal.pointerA : goal.pointerB).value_or(std::vector<double>());
    const std::size_t node = isA ? goal.nodeA : goal.nodeB;
    if (goal.path == Path::kWeights) return evaluator.Weights(node);
    const Trs& parts = evaluator.RestParts(node);
    if (goal.path == Path::kRotation) return {parts.rotation.begin(), parts.rotation.end()};
    const auto& numbers = goal.path == Path::kScale ? parts.scale : parts.translation;
    return {numbers.begin(), numbers.end()};
}

double TrackComparison::Rank(Path path, const std::vector<double>& a, const std::vector<double>& b) const {
    if (a.size() != b.size()) return HUGE_VAL;
    double squares = 0, dot = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        squares += (a[i] - b[i]) * (a[i] - b[i]);
        dot += a[i] * b[i];
    }
    switch (path) {
        case Path::kTranslation:
            return std::sqrt(squares) / m_tolerance.length;
        case Path::kRotation: {
            // A quaternion and its negative are the same rotation.
            const double other = squares + 4 * dot;
            return 2 * std::sqrt(std::max(0.0, std::min(squares, other))) / m_tolerance.angle;
        }
        case Path::kScale:
            return std::sqrt(squares) / m_tolerance.angle;
        default:
            return std::sqrt(squares) / m_tolerance.value;
    }
}

std::vector<double> TrackComparison::Times(std::size_t affordable, std::size_t few) {
    std::size_t worst = m_worst.size(), even = few, keys = m_keyTimes.size();
    if (worst + even + keys > affordable) {
        few = std::min(few, affordable);
        worst = std::min(worst, std::max<std::size_t>(few / 2, 1));
        even = std::max<std::size_t>(few / 4, 1);
        keys = std::min(keys, few / 4);
    }
    std::vector<double> times;
    std::sort(m_worst.begin(), m_worst.end(), [](const Worst& x, const Worst& y) { return x.rank > y.rank; });
    for (std::size_t i = 0; i < worst; ++i) times.push_back(m_worst[i].time);
    const auto spread = [&](std::size_t count, auto at) {
        for (std::size_t i = 0; i < count; ++i)
            times.push_back(at(count > 1 ? static_cast<double>(i) / static_cast<double>(count - 1) : 0.0));
    };
    spread(even, [&](double part) { return JustAfter(m_start + part * (m_end - m_start)); });
    spread(keys, [&](double part) {
        return JustAfter(m_keyTimes[static_cast<std::size_t>(
            std::llround(part * static_cast<double>(m_keyTimes.size() - 1)))]);
    });
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

}  // namespace zr::compare
