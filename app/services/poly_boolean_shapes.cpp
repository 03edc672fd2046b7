// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean_shapes.h"

#include <bit>
#include <utility>

namespace zr {
namespace {

constexpr std::size_t kMostNumbers = 1 << 21;

// Contours as an unambiguous run of numbers: the size of each, then its points relative to `low`.
void Flatten(const std::vector<ContourPoints>& contours, const std::array<double, 2>& low,
             std::vector<double>& outline) {
    outline.clear();
    for (const ContourPoints& contour : contours) {
        outline.push_back(static_cast<double>(contour.size()));
        for (const auto& point : contour) {
            outline.push_back(point[0] - low[0]);
            outline.push_back(point[1] - low[1]);
        }
    }
}

std::uint64_t HashOf(const std::vector<double>& outline) {
    std::uint64_t hash = outline.size();
    for (const double value : outline) {
        hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash;
}

}  // namespace

const TriangulatedShape* ShapeCache::Find(const std::vector<ContourPoints>& contours,
                                          const std::array<double, 2>& low) {
    Flatten(contours, low, m_outline);
    m_hash = HashOf(m_outline);
    const auto found = m_entries.find(m_hash);
    return found != m_entries.end() && found->second.outline == m_outline ? &found->second.shape : nullptr;
}

const TriangulatedShape& ShapeCache::Add(TriangulatedShape shape) {
    if (m_size > kMostNumbers) Clear();
    m_size += m_outline.size() + shape.corners.size();
    Entry& entry = m_entries[m_hash];
    entry = {std::move(m_outline), std::move(shape)};
    return entry.shape;
}

void ShapeCache::Clear() {
    m_entries.clear();
    m_size = 0;
}

}  // namespace zr
