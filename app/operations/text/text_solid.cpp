// SPDX-License-Identifier: MIT
#include "app/operations/text/text_solid.h"

#include <numeric>
#include <unordered_map>

namespace zr {
namespace {

using Corners = std::vector<std::uint32_t>;  // three for each triangle

std::size_t NextCorner(std::size_t corner) {
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}

// The flat mesh as corners of triangles, with the neighbour at each edge. An edge is identified by the corner
// where it starts.
class FlatMesh {
public:
    explicit FlatMesh(const TextGeometry& geometry) {
        for (const LetterTriangle& t : geometry.triangles) {
            // Rounding of coordinates may have reduced a triangle to an edge.
            if (t.i0 == t.i1 || t.i1 == t.i2 || t.i2 == t.i0) continue;
            for (const int i : {t.i0, t.i1, t.i2}) m_corners.push_back(static_cast<std::uint32_t>(i));
        }
        for (std::size_t c = 0; c < m_corners.size(); ++c)
            m_edges[Key(m_corners[c], m_corners[NextCorner(c)])] = c;
    }

    std::size_t Size() const { return m_corners.size(); }
    std::uint32_t At(std::size_t corner) const { return m_corners[corner]; }

    // The opposite edge, of the neighbouring triangle; Size() on the boundary.
    std::size_t Opposite(std::size_t corner) const {
        const auto found = m_edges.find(Key(m_corners[NextCorner(corner)], m_corners[corner]));
        return found != m_edges.end() ? found->second : Size();
    }

private:
    static std::uint64_t Key(std::uint32_t from, std::uint32_t to) { return std::uint64_t{from} << 32 | to; }

    Corners m_corners;
    std::unordered_map<std::uint64_t, std::size_t> m_edges;
};

// Gives corners the same number if their triangles are connected around a point by shared edges.
class CornerNumbers {
public:
    explicit CornerNumbers(const FlatMesh& mesh) : m_parents(mesh.Size()) {
        std::iota(m_parents.begin(), m_parents.end(), std::size_t{0});
        for (std::size_t c = 0; c < mesh.Size(); ++c) {
            const std::size_t opposite = mesh.Opposite(c);
            if (opposite == mesh.Size()) continue;
            m_parents[Root(c)] = Root(NextCorner(opposite));
            m_parents[Root(NextCorner(c))] = Root(opposite);
        }
    }

    std::size_t Root(std::size_t corner) {
        while (m_parents[corner] != corner) corner = m_parents[corner] = m_parents[m_parents[corner]];
        return corner;
    }

private:
    std::vector<std::size_t> m_parents;
};

}  // namespace

void AddDepth(TextGeometry& geometry, float depth) {
    const FlatMesh mesh(geometry);
    CornerNumbers numbers(mesh);
    // The front has even vertices; the back vertex behind each of them is the next one.
    std::vector<TextGeometry::Point> points;
    std::unordered_map<std::size_t, int> fronts;
    std::vector<int> front(mesh.Size());
    for (std::size_t c = 0; c < mesh.Size(); ++c) {
        const auto [at, isNew] = fronts.try_emplace(numbers.Root(c), static_cast<int>(points.size()));
        front[c] = at->second;
        if (!isNew) continue;
        const TextGeometry::Point& p = geometry.points[mesh.At(c)];
        points.push_back({p.x, p.y, depth});
        points.push_back({p.x, p.y, 0});
    }
    std::vector<LetterTriangle> triangles;
    for (std::size_t c = 0; c < mesh.Size(); c += 3) {
        triangles.push_back({front[c], front[c + 1], front[c + 2]});
        triangles.push_back({front[c + 2] + 1, front[c + 1] + 1, front[c] + 1});
    }
    for (std::size_t c = 0; c < mesh.Size(); ++c) {
        if (mesh.Opposite(c) != mesh.Size()) continue;
        const int a = front[c];
        const int b = front[NextCorner(c)];
        triangles.push_back({a + 1, b + 1, b});
        triangles.push_back({a + 1, b, a});
    }
    geometry.points = std::move(points);
    geometry.triangles = std::move(triangles);
    geometry.isSolid = true;
}

}  // namespace zr
