// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_flips.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace zr {
namespace {

// Height over longest edge below which a triangle counts as flat: about ten times the rounding error of
// outlines in single precision.
constexpr double kFlat = 1e-6;

double SquaredLength(const TessPoint& a, const TessPoint& b) {
    const double dx = b.at[0] - a.at[0];
    const double dy = b.at[1] - a.at[1];
    return dx * dx + dy * dy;
}

// Height over longest edge; negative when the corners are clockwise.
double Height(const TessPoint& a, const TessPoint& b, const TessPoint& c) {
    const double area = (b.at[0] - a.at[0]) * (c.at[1] - a.at[1]) - (b.at[1] - a.at[1]) * (c.at[0] - a.at[0]);
    const double longest = std::max({SquaredLength(a, b), SquaredLength(b, c), SquaredLength(c, a)});
    return longest > 0 ? area / longest : 0;
}

using DirectedEdge = std::pair<const TessPoint*, const TessPoint*>;

struct EdgeHash {
    std::size_t operator()(const DirectedEdge& edge) const {
        const std::hash<const TessPoint*> hash;
        return hash(edge.first) * 0x9E3779B97F4A7C15u ^ hash(edge.second);
    }
};

class Flipper {
public:
    explicit Flipper(std::vector<TessPoint*>& corners) : m_corners(corners) {}

    void Run() {
        for (std::size_t t = 0; t < m_corners.size(); t += 3) {
            if (IsFlat(t)) m_flat.push_back(t);
        }
        if (m_flat.empty()) return;
        for (std::size_t t = 0; t < m_corners.size(); t += 3) Register(t);
        while (!m_flat.empty()) {
            const std::size_t t = m_flat.back();
            m_flat.pop_back();
            if (IsFlat(t)) Flip(t);
        }
    }

private:
    bool IsFlat(std::size_t t) const {
        return Height(*m_corners[t], *m_corners[t + 1], *m_corners[t + 2]) < kFlat;
    }

    void Register(std::size_t t) {
        for (std::size_t i = 0; i < 3; ++i) m_owners[{m_corners[t + i], m_corners[t + (i + 1) % 3]}] = t;
    }

    void Set(std::size_t t, TessPoint* a, TessPoint* b, TessPoint* c) {
        m_corners[t] = a;
        m_corners[t + 1] = b;
        m_corners[t + 2] = c;
        Register(t);
    }

    void Flip(std::size_t t) {
        std::size_t apex = 0;
        double longest = -1;
        for (std::size_t i = 0; i < 3; ++i) {
            const double length = SquaredLength(*m_corners[t + (i + 1) % 3], *m_corners[t + (i + 2) % 3]);
            if (length > longest) {
                longest = length;
                apex = i;
            }
        }
        TessPoint* const b = m_corners[t + apex];
        TessPoint* const c = m_corners[t + (apex + 1) % 3];
        TessPoint* const a = m_corners[t + (apex + 2) % 3];
        const auto neighbour = m_owners.find({a, c});
        if (neighbour == m_owners.end()) return;
        const std::size_t u = neighbour->second;
        std::size_t far = u;
        while (m_corners[far] == a || m_corners[far] == c) ++far;
        TessPoint* const d = m_corners[far];
        if (std::min(Height(*b, *c, *d), Height(*b, *d, *a)) <= std::max(Height(*b, *c, *a), 0.0)) return;

        m_owners.erase({a, c});
        m_owners.erase({c, a});
        Set(t, b, c, d);
        Set(u, b, d, a);
        // Flips that these two blocked may be possible now.
        for (const DirectedEdge& outer : {DirectedEdge{c, b}, {d, c}, {b, a}, {a, d}}) {
            const auto beside = m_owners.find(outer);
            if (beside != m_owners.end()) m_flat.push_back(beside->second);
        }
        m_flat.push_back(t);
        m_flat.push_back(u);
    }

    std::vector<TessPoint*>& m_corners;
    std::unordered_map<DirectedEdge, std::size_t, EdgeHash> m_owners;
    std::vector<std::size_t> m_flat;
};

}  // namespace

void FlipFlatTriangles(std::vector<TessPoint*>& corners) {
    Flipper(corners).Run();
}

}  // namespace zr
