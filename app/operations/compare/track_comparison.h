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

// What a channel drives, in either document.
struct Goal {
    Path path = Path::kPointer;
    std::size_t nodeA = kNone, nodeB = kNone;
    std::string pointerA, pointerB;

    auto operator<=>(const Goal&) const = default;
    // "/nodes/3/rotation", in the first document.
    std::string Place() const;
};

// Compares the curves of one animation of each document, goal by goal, at every key of either and three times
// between any two: a key that was changed is found wherever it stands. A side without a curve holds still.
class TrackComparison {
public:
    // Translates channels of either document; nothing for what the other document does not have.
    using GoalOf = std::function<std::optional<Goal>(const Channel& channel)>;
    // The greatest difference of weights or of a pointer.
    using OnValue = std::function<void(const Goal& goal, double amount, double time)>;

    // Both evaluators stand at rest. Differences are ranked in units of the tolerance.
    TrackComparison(const Evaluator& a, const Evaluator& b, const Tolerance& tolerance)
        : m_a(a), m_b(b), m_tolerance(tolerance) {}

    void Run(const Animation& a, const Animation& b, const GoalOf& goalOfA, const GoalOf& goalOfB,
             const OnValue& onValue);

    // Ascending times at which the whole is to be looked at: those of every key, those at which tracks differ
    // most and some that are spread evenly over both animations. Where these are more than can be afforded,
    // `few` of them at most.
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
