// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_tessellator.h"

#include "platform/windows.h"
// glu.h needs windows.h before it.
#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <new>

namespace zr {

// The library is C: nothing may be thrown through it.
struct Tessellator::Callbacks {
    static Tessellator& Self(void* user) { return *static_cast<Tessellator*>(user); }

    static void CALLBACK Vertex(void* point, void* user) noexcept {
        Tessellator& self = Self(user);
        try {
            self.m_corners.push_back(static_cast<TessPoint*>(point));
        } catch (const std::bad_alloc&) {
            self.m_failed = true;
        }
    }

    // Coincident points become the first of them; edges that cross get a new point.
    static void CALLBACK Combine(GLdouble at[3], void* points[4], GLfloat[4], void** out,
                                 void* user) noexcept {
        Tessellator& self = Self(user);
        *out = points[0];
        if (!points[3]) return;
        try {
            *out = self.PointAt({std::llround(at[0]), std::llround(at[1])});
        } catch (const std::bad_alloc&) {
            self.m_failed = true;
        }
    }

    // Asking for edge flags makes the library report single triangles, never strips or fans.
    static void CALLBACK EdgeFlag(GLboolean, void*) noexcept {}

    static void CALLBACK Error(GLenum, void* user) noexcept { Self(user).m_failed = true; }
};

void Tessellator::Deleter::operator()(GLUtesselator* tess) const {
    gluDeleteTess(tess);
}

Tessellator::Tessellator() : m_tess(gluNewTess()) {
    if (!m_tess) throw std::bad_alloc();
    const auto set = [&](GLenum which, auto* callback) {
        gluTessCallback(m_tess.get(), which, reinterpret_cast<void(CALLBACK*)()>(callback));
    };
    set(GLU_TESS_VERTEX_DATA, &Callbacks::Vertex);
    set(GLU_TESS_COMBINE_DATA, &Callbacks::Combine);
    set(GLU_TESS_EDGE_FLAG_DATA, &Callbacks::EdgeFlag);
    set(GLU_TESS_ERROR_DATA, &Callbacks::Error);
    gluTessProperty(m_tess.get(), GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    gluTessNormal(m_tess.get(), 0, 0, 1);
}

void Tessellator::Reset(std::uint32_t firstAdded) {
    m_pool.clear();
    m_cells.clear();
    m_added.clear();
    m_firstAdded = firstAdded;
}

TessPoint* Tessellator::NewPoint(GridPoint at, std::uint32_t number) {
    return &m_pool.emplace_back(TessPoint{{static_cast<double>(at.x), static_cast<double>(at.y), 0}, number});
}

TessPoint* Tessellator::PointAt(GridPoint at) {
    if (m_cells.empty()) {
        for (TessPoint& point : m_pool)
            m_cells.try_emplace({std::llround(point.at[0]), std::llround(point.at[1])}, &point);
    }
    TessPoint*& point = m_cells[at];
    if (!point) {
        point = NewPoint(at, m_firstAdded + static_cast<std::uint32_t>(m_added.size()));
        m_added.push_back(at);
    }
    return point;
}

// Points that crossings put on the same grid cell are one, which collapses triangles between them.
void Tessellator::DropCollapsed() {
    std::size_t kept = 0;
    for (std::size_t i = 0; i + 2 < m_corners.size(); i += 3) {
        TessPoint* const* const t = &m_corners[i];
        if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) continue;
        std::copy(t, t + 3, m_corners.begin() + static_cast<std::ptrdiff_t>(kept));
        kept += 3;
    }
    m_corners.resize(kept);
}

std::vector<TessPoint*>& Tessellator::Triangulate(const std::vector<TessLoop>& loops) {
    m_corners.clear();
    m_failed = false;
    gluTessBeginPolygon(m_tess.get(), this);
    for (const TessLoop& loop : loops) {
        gluTessBeginContour(m_tess.get());
        for (TessPoint* point : loop) gluTessVertex(m_tess.get(), point->at, point);
        gluTessEndContour(m_tess.get());
    }
    gluTessEndPolygon(m_tess.get());
    if (m_failed) throw std::bad_alloc();
    DropCollapsed();
    return m_corners;
}

}  // namespace zr
