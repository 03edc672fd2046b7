// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_contacts.h"

#include <algorithm>
#include <numeric>

namespace zr {
namespace {

GridPoint operator-(GridPoint a, GridPoint b) {
    return {a.x - b.x, a.y - b.y};
}

std::int64_t Cross(GridPoint a, GridPoint b) {
    return a.x * b.y - a.y * b.x;
}
std::int64_t Dot(GridPoint a, GridPoint b) {
    return a.x * b.x + a.y * b.y;
}
int Sign(std::int64_t value) {
    return (value > 0) - (value < 0);
}

// Work for pairs of edges that reach the same place from left to right, which filling does once more.
constexpr std::size_t kMostPairs = std::size_t{1} << 26;
// Corners of the contours that cross, and of crossings: what unites them goes over all for each.
constexpr std::size_t kMostCorners = std::size_t{1} << 14;

struct Edge {
    GridPoint before;  // the point before `a` on the contour
    GridPoint a;
    GridPoint b;
    int loop;

    std::int64_t MinX() const { return std::min(a.x, b.x); }
    std::int64_t MaxX() const { return std::max(a.x, b.x); }
    std::int64_t MinY() const { return std::min(a.y, b.y); }
    std::int64_t MaxY() const { return std::max(a.y, b.y); }
    int SideOf(GridPoint p) const { return Sign(Cross(b - a, p - a)); }
};

// Whether q points strictly into the sector that r1 sweeps when it turns counter-clockwise to r2.
bool IsInSector(GridPoint r1, GridPoint r2, GridPoint q) {
    const std::int64_t turn = Cross(r1, r2);
    if (turn > 0) return Cross(r1, q) > 0 && Cross(q, r2) > 0;
    if (turn < 0) return !(Cross(r2, q) >= 0 && Cross(q, r1) >= 0);
    return Dot(r1, r2) < 0 && Cross(r1, q) > 0;
}

bool IsAlong(GridPoint r, GridPoint q) {
    return Cross(r, q) == 0 && Dot(r, q) > 0;
}

// Whether the path q1 - p - q2 passes the path r1 - p - r2 from one side to the other; the arguments are
// directions seen from p. Paths that share a direction overlap, which the edges themselves show.
bool PassesThrough(GridPoint r1, GridPoint r2, GridPoint q1, GridPoint q2) {
    if (IsAlong(r1, q1) || IsAlong(r2, q1) || IsAlong(r1, q2) || IsAlong(r2, q2)) return false;
    return IsInSector(r1, r2, q1) != IsInSector(r1, r2, q2);
}

bool IsInside(GridPoint p, const Edge& e) {
    return p != e.a && p != e.b && p.x >= e.MinX() && p.x <= e.MaxX() && p.y >= e.MinY() && p.y <= e.MaxY() &&
           e.SideOf(p) == 0;
}

// A common point is judged where it is the start of an edge, so that each pair of paths through it counts
// once.
bool MeetAndPass(const Edge& e, const Edge& f) {
    const GridPoint p = e.a;
    if (p == f.a) return PassesThrough(e.before - p, e.b - p, f.before - p, f.b - p);
    return IsInside(p, f) && PassesThrough(f.a - p, f.b - p, e.before - p, e.b - p);
}

bool AreCrossing(const Edge& e, const Edge& f) {
    const int e1 = e.SideOf(f.a);
    const int e2 = e.SideOf(f.b);
    if (e1 * e2 > 0) return false;
    const int f1 = f.SideOf(e.a);
    const int f2 = f.SideOf(e.b);
    if (f1 * f2 > 0) return false;
    if (e1 * e2 < 0 && f1 * f2 < 0) return true;
    if (e1 == 0 && e2 == 0) {
        const bool overlapX = std::min(e.MaxX(), f.MaxX()) > std::max(e.MinX(), f.MinX());
        const bool overlapY = std::min(e.MaxY(), f.MaxY()) > std::max(e.MinY(), f.MinY());
        if (overlapX || overlapY) return true;
    }
    return MeetAndPass(e, f) || (e.a != f.a && MeetAndPass(f, e));
}

int Root(std::vector<int>& parents, int loop) {
    while (parents[loop] != loop) loop = parents[loop] = parents[parents[loop]];
    return loop;
}

std::vector<Edge> SortedEdges(const std::vector<GridLoop>& loops) {
    std::vector<Edge> edges;
    for (std::size_t l = 0; l < loops.size(); ++l) {
        const GridLoop& loop = loops[l];
        const std::size_t n = loop.size();
        for (std::size_t i = 0; i < n; ++i) {
            edges.push_back({loop[(i + n - 1) % n], loop[i], loop[(i + 1) % n], static_cast<int>(l)});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& e, const Edge& f) { return e.MinX() < f.MinX(); });
    return edges;
}

}  // namespace

std::vector<int> CrossingGroups(const std::vector<GridLoop>& loops) {
    std::vector<int> parents(loops.size());
    std::iota(parents.begin(), parents.end(), 0);
    std::vector<char> crosses(loops.size(), 0);

    // Sweeps the edges by their left ends: an edge meets only those that reach as far as its own.
    const std::vector<Edge> edges = SortedEdges(loops);
    std::vector<const Edge*> open;
    std::size_t pairs = 0, corners = 0;
    const auto cross = [&](int loop) {
        if (crosses[loop] == 0) corners += loops[loop].size();
        crosses[loop] = 1;
    };
    for (const Edge& e : edges) {
        std::size_t kept = 0;
        for (const Edge* f : open) {
            if (f->MaxX() < e.MinX()) continue;
            open[kept++] = f;
            if (f->MaxY() < e.MinY() || e.MaxY() < f->MinY() || !AreCrossing(e, *f)) continue;
            cross(e.loop);
            cross(f->loop);
            corners += 2;
            const int a = Root(parents, e.loop);
            const int b = Root(parents, f->loop);
            parents[std::max(a, b)] = std::min(a, b);
        }
        if ((pairs += open.size()) > kMostPairs || corners > kMostCorners) throw TooIntricate();
        open.resize(kept);
        open.push_back(&e);
    }

    std::vector<int> groups(loops.size(), kApart);
    for (std::size_t l = 0; l < loops.size(); ++l) {
        if (crosses[l]) groups[l] = Root(parents, static_cast<int>(l));
    }
    return groups;
}

}  // namespace zr
