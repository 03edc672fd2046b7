// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"
#include "app/operations/compare/evaluator.h"

namespace zr::compare {

// What a channel drives, in terms of both documents.
struct Goal {
    Path path = Path::kPointer;
    std::size_t nodeA = kNone, nodeB = kNone;
    std::string pointerA, pointerB;

    auto operator<=>(const Goal&) const = default;
    // "/nodes/3/rotation", in the first document.
    std::string Place() const;
};

// Compares the curves of one animation of each document, goal by goal, at every key of either and at three
// times between neighbouring keys, so that any changed key is found. A side without a curve keeps its rest
// value.
class TrackComparison {
public:
    // Returns the goal of a channel; nothing if the other document lacks it.
    using GoalOf = std::function<std::optional<Goal>(const Channel& channel)>;
    // Receives the greatest difference of weights or of a pointer, and its time.
    using OnValue = std::function<void(const Goal& goal, double amount, double time)>;

    // Both evaluators must be at rest. Differences are ranked in units of the tolerance.
    TrackComparison(const Evaluator& a, const Evaluator& b, const Tolerance& tolerance)
        : m_a(a), m_b(b), m_tolerance(tolerance) {}

    void Run(const Animation& a, const Animation& b, const GoalOf& goalOfA, const GoalOf& goalOfB,
             const OnValue& onValue);

    // Ascending times at which to compare whole scenes: every key, the times at which tracks differ most, and
    // `few` times spread evenly over both animations. If these are more than `affordable`, at most `few` of
    // them.
    std::vector<double> Times(std::size_t affordable, std::size_t few);

private:
    struct Worst {
        double rank;
        double time;
    };

    void Compare(const Goal& goal, const Channel* a, const Channel* b, const OnValue& onValue);
    std::vector<double> Still(const Evaluator& evaluator, const Goal& goal, bool isA) const;
    double Rank(Path path, const std::vector<double>& a, const std::vector<double>& b) const;

    const Evaluator& m_a;
    const Evaluator& m_b;
    const Tolerance m_tolerance;
    double m_start = 0, m_end = 0;
    std::vector<Worst> m_worst;  // one for each goal that differs
    std::vector<double> m_keyTimes;
};

}  // namespace zr::compare
