// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_tessellator.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <utility>

namespace zr {

// The library is C: nothing may be thrown through it.
struct Tessellator::Callbacks {
    static Tessellator& Self(void* user) { return *static_cast<Tessellator*>(user); }

    static void Begin(GLenum, void* user) noexcept {
        Tessellator& self = Self(user);
        try {
            self.m_starts.push_back(self.m_corners.size());
        } catch (const std::bad_alloc&) {
            self.m_failed = true;
        }
    }

    static void Vertex(void* point, void* user) noexcept {
        Tessellator& self = Self(user);
        try {
            self.m_corners.push_back(static_cast<TessPoint*>(point));
        } catch (const std::bad_alloc&) {
            self.m_failed = true;
        }
    }

    static void Combine(GLdouble[3], void* points[4], GLfloat[4], void** out, void* user) noexcept {
        Tessellator& self = Self(user);
        *out = points[0];
        // Points that fall together keep the first one's place; only a crossing makes a new one.
        if (!points[3]) return;
        self.m_crossed = true;
        try {
            *out = self.NewCrossing(static_cast<TessPoint* const*>(static_cast<void*>(points)));
        } catch (const std::bad_alloc&) {
            self.m_failed = true;
        }
    }

    // Asking for edge flags makes the library report single triangles, never strips or fans.
    static void EdgeFlag(GLboolean, void*) noexcept {}

    static void Error(GLenum, void* user) noexcept { Self(user).m_failed = true; }
};

void Tessellator::Deleter::operator()(GLUtesselator* tess) const {
    gluDeleteTess(tess);
}

Tessellator::Tessellator() : m_tess(gluNewTess()) {
    if (!m_tess) throw std::bad_alloc();
    const auto set = [&](GLenum which, auto* callback) {
        gluTessCallback(m_tess.get(), which, reinterpret_cast<_GLUfuncptr>(callback));
    };
    set(GLU_TESS_BEGIN_DATA, &Callbacks::Begin);
    set(GLU_TESS_VERTEX_DATA, &Callbacks::Vertex);
    set(GLU_TESS_COMBINE_DATA, &Callbacks::Combine);
    set(GLU_TESS_EDGE_FLAG_DATA, &Callbacks::EdgeFlag);
    set(GLU_TESS_ERROR_DATA, &Callbacks::Error);
    gluTessNormal(m_tess.get(), 0, 0, 1);
}

void Tessellator::Reset(const double (&origin)[2], const double (&cell)[2]) {
    m_pool.clear();
    m_cells.clear();
    std::copy(std::begin(origin), std::end(origin), m_origin);
    std::copy(std::begin(cell), std::end(cell), m_cell);
}

TessPoint* Tessellator::NewPoint(GridPoint at, const double (&units)[2]) {
    return &m_pool.emplace_back(
        TessPoint{{static_cast<double>(at.x), static_cast<double>(at.y), 0}, {units[0], units[1]}});
}

TessPoint* Tessellator::AtCell(GridPoint at) {
    if (m_cells.empty()) {
        for (TessPoint& point : m_pool)
            m_cells.try_emplace({std::llround(point.at[0]), std::llround(point.at[1])}, &point);
    }
    TessPoint*& point = m_cells[at];
    if (!point) {
        point = NewPoint(at, {m_origin[0] + static_cast<double>(at.x) * m_cell[0],
                              m_origin[1] + static_cast<double>(at.y) * m_cell[1]});
    }
    return point;
}

// Where the lines through two pairs of points cross. The library knows the place too, but weighs it in single
// precision.
TessPoint* Tessellator::NewCrossing(TessPoint* const* ends) {
    using Real = long double;
    const auto at = [&](int point, int axis) { return static_cast<Real>(ends[point]->at[axis]); };
    const Real ux = at(1, 0) - at(0, 0), uy = at(1, 1) - at(0, 1);
    const Real vx = at(3, 0) - at(2, 0), vy = at(3, 1) - at(2, 1);
    const Real wx = at(2, 0) - at(0, 0), wy = at(2, 1) - at(0, 1);
    const Real divisor = ux * vy - uy * vx;
    const Real t = divisor != 0 ? std::clamp((wx * vy - wy * vx) / divisor, Real{0}, Real{1}) : Real{0};
    return AtCell({std::llround(at(0, 0) + t * ux), std::llround(at(0, 1) + t * uy)});
}

std::vector<TessPoint*>& Tessellator::Triangulate(const std::vector<TessLoop>& loops) {
    std::vector<const TessLoop*> all;
    for (const TessLoop& loop : loops) all.push_back(&loop);
    Run(all, Filling::kOdd, false);
    return m_corners;
}

std::vector<TessLoop> Tessellator::Outline(const std::vector<const TessLoop*>& loops, Filling filling,
                                           bool& crossed) {
    Run(loops, filling, true);
    crossed = m_crossed;
    std::vector<TessLoop> outline;
    for (std::size_t i = 0; i < m_starts.size(); ++i) {
        const std::size_t end = i + 1 < m_starts.size() ? m_starts[i + 1] : m_corners.size();
        TessLoop loop;
        for (std::size_t k = m_starts[i]; k < end; ++k) {
            if (loop.empty() || loop.back() != m_corners[k]) loop.push_back(m_corners[k]);
        }
        while (loop.size() > 1 && loop.back() == loop.front()) loop.pop_back();
        if (loop.size() >= 3) outline.push_back(std::move(loop));
    }
    return outline;
}

void Tessellator::Run(const std::vector<const TessLoop*>& loops, Filling filling, bool boundaryOnly) {
    m_corners.clear();
    m_starts.clear();
    m_crossed = false;
    m_failed = false;
    gluTessProperty(m_tess.get(), GLU_TESS_BOUNDARY_ONLY, boundaryOnly ? GL_TRUE : GL_FALSE);
    gluTessProperty(m_tess.get(), GLU_TESS_WINDING_RULE,
                    filling == Filling::kOdd ? GLU_TESS_WINDING_ODD : GLU_TESS_WINDING_NONZERO);
    gluTessBeginPolygon(m_tess.get(), this);
    for (const TessLoop* loop : loops) {
        gluTessBeginContour(m_tess.get());
        for (TessPoint* point : *loop) gluTessVertex(m_tess.get(), point->at, point);
        gluTessEndContour(m_tess.get());
    }
    gluTessEndPolygon(m_tess.get());
    if (m_failed) throw std::bad_alloc();
}

}  // namespace zr
