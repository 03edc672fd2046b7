// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_unite.h"

#include <algorithm>
#include <polyclipping/clipper.hpp>

namespace zr {
namespace {

using ClipperLib::Clipper;

// Outlines of the region that a set of contours fills.
class Union {
public:
    void Add(const GridLoop& loop) {
        ClipperLib::Path path;
        for (const GridPoint p : loop) path.emplace_back(p.x, p.y);
        m_clipper.AddPath(path, ClipperLib::ptSubject, true);
    }

    void AppendTo(std::vector<GridLoop>& loops, ClipperLib::PolyFillType filling) {
        ClipperLib::Paths paths;
        m_clipper.Execute(ClipperLib::ctUnion, paths, filling);
        for (const ClipperLib::Path& path : paths) {
            GridLoop& loop = loops.emplace_back();
            for (const ClipperLib::IntPoint p : path) loop.push_back({p.X, p.Y});
        }
    }

private:
    Clipper m_clipper{ClipperLib::ioStrictlySimple};
};

bool AnyCrosses(const std::vector<int>& groups) {
    return std::any_of(groups.begin(), groups.end(), [](int group) { return group != kApart; });
}

// New corners are rounded to the grid, slightly off the crossing edges, which may make edges cross again.
// Each repair leaves smaller crossings; no sensible outline reaches this bound.
constexpr int kMostRepairs = 4;

}  // namespace

bool UniteCrossing(std::vector<GridLoop>& loops) {
    const std::vector<int> groups = CrossingGroups(loops);
    if (!AnyCrosses(groups)) return false;
    std::vector<GridLoop> result;
    for (std::size_t first = 0; first < loops.size(); ++first) {
        if (groups[first] == kApart) result.push_back(loops[first]);
        if (groups[first] != static_cast<int>(first)) continue;
        Union group;
        for (std::size_t i = first; i < loops.size(); ++i) {
            if (groups[i] == groups[first]) group.Add(loops[i]);
        }
        group.AppendTo(result, ClipperLib::pftNonZero);
    }
    for (int repair = 0; repair < kMostRepairs && AnyCrosses(CrossingGroups(result)); ++repair) {
        Union all;
        for (const GridLoop& loop : result) all.Add(loop);
        result.clear();
        all.AppendTo(result, ClipperLib::pftEvenOdd);
    }
    loops = std::move(result);
    return true;
}

}  // namespace zr
