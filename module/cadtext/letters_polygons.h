// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/cad_text.h"

// A text as a flat triangle mesh. As built, no two vertices are equal in all coordinates.
class LettersPolygons final : public vl::zr::legacy::GlyphTesselated {
public:
    int GetVertexCount() override { return static_cast<int>(m_vertices.size()); }
    int GetTriangleCount() override { return static_cast<int>(m_triangles.size()); }
    const vl::Vector3<float>* GetVertices() override;
    const LetterTriangle* GetTriangles() override;
    void Transform(const vl::Matrix4<double>& m) override;
    std::pair<float, float> GetSize() override;

    const char* GetTypeName() override { return "LetterPolygons"; }

    // Index of the first vertex equal to v in all coordinates (-0 equals 0, NaN nothing), appended if there
    // is none. Constant time on average, through an index that is kept until EndBuilding.
    int FindOrAddVertex(const vl::Vector3<float>& v);
    void AddTriangle(const LetterTriangle& triangle) { m_triangles.push_back(triangle); }

    // PolyBoolean::TriangleCallback; user is the LettersPolygons to fill.
    static int CollectTriangle(const double* a, const double* b, const double* c, void* user);

    // Frees the index that only filling needs.
    void EndBuilding();

private:
    void DeleteThis() override { delete this; }

    void GrowIndex();
    // The slot that holds the vertex equal to v, or the empty one where it belongs.
    std::int32_t& SlotOf(const vl::Vector3<float>& v);

    std::vector<vl::Vector3<float>> m_vertices;
    std::vector<LetterTriangle> m_triangles;
    // Open-addressed table of vertex numbers, a power of two in size and at most half full; empty after
    // EndBuilding.
    std::vector<std::int32_t> m_index;
};
