// SPDX-License-Identifier: MIT
#include "module/cadtext/letters_polygons.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "module/cadtext/extent.h"

namespace {

constexpr std::int32_t kNoVertex = -1;
constexpr std::size_t kSmallestIndex = 64;

bool IsNumber(const vl::Vector3<float>& v) {
    return !std::isnan(v.x) && !std::isnan(v.y) && !std::isnan(v.z);
}

// Equal vertices have equal hashes: adding 0 turns -0 into 0.
std::uint64_t Hash(const vl::Vector3<float>& v) {
    const auto bits = [](float f) { return std::uint64_t{std::bit_cast<std::uint32_t>(f + 0.0f)}; };
    std::uint64_t h = (bits(v.x) << 32 | bits(v.y)) * 0x9E3779B97F4A7C15u;
    h = (h ^ (h >> 32) ^ bits(v.z)) * 0x9E3779B97F4A7C15u;
    return h ^ (h >> 32);
}

vl::Vector3<float> FlatVertex(const double* xy) {
    return {static_cast<float>(xy[0]), static_cast<float>(xy[1]), 0.0f};
}

}  // namespace

const vl::Vector3<float>* LettersPolygons::GetVertices() {
    return m_vertices.empty() ? nullptr : m_vertices.data();
}

const LetterTriangle* LettersPolygons::GetTriangles() {
    return m_triangles.empty() ? nullptr : m_triangles.data();
}

void LettersPolygons::Transform(const vl::Matrix4<double>& m) {
    EndBuilding();
    for (vl::Vector3<float>& vertex : m_vertices) vertex = m.PointTransform<float>(vertex);
}

std::pair<float, float> LettersPolygons::GetSize() {
    return zrt::Extent(m_vertices);
}

int LettersPolygons::FindOrAddVertex(const vl::Vector3<float>& v) {
    const auto next = static_cast<std::int32_t>(m_vertices.size());
    if (!IsNumber(v)) {
        m_vertices.push_back(v);
        return next;
    }
    if (m_index.size() < 2 * (m_vertices.size() + 1)) GrowIndex();
    std::int32_t& slot = SlotOf(v);
    if (slot == kNoVertex) {
        m_vertices.push_back(v);
        slot = next;
    }
    return slot;
}

int LettersPolygons::CollectTriangle(const double* a, const double* b, const double* c, void* user) {
    auto* mesh = static_cast<LettersPolygons*>(user);
    const int i0 = mesh->FindOrAddVertex(FlatVertex(a));
    const int i1 = mesh->FindOrAddVertex(FlatVertex(b));
    const int i2 = mesh->FindOrAddVertex(FlatVertex(c));
    mesh->AddTriangle({i0, i1, i2});
    return 1;
}

void LettersPolygons::EndBuilding() {
    m_index = {};
}

void LettersPolygons::GrowIndex() {
    m_index.assign(std::max(kSmallestIndex, std::bit_ceil(4 * (m_vertices.size() + 1))), kNoVertex);
    for (std::size_t i = 0; i < m_vertices.size(); ++i) {
        if (!IsNumber(m_vertices[i])) continue;
        std::int32_t& slot = SlotOf(m_vertices[i]);
        if (slot == kNoVertex) slot = static_cast<std::int32_t>(i);
    }
}

std::int32_t& LettersPolygons::SlotOf(const vl::Vector3<float>& v) {
    const std::size_t mask = m_index.size() - 1;
    std::size_t at = Hash(v) & mask;
    while (m_index[at] != kNoVertex && m_vertices[static_cast<std::size_t>(m_index[at])] != v) {
        at = (at + 1) & mask;
    }
    return m_index[at];
}
