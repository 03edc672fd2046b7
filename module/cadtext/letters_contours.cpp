// SPDX-License-Identifier: MIT
#include "module/cadtext/letters_contours.h"

#include "module/cadtext/extent.h"

int LettersContours::GetContourCount() {
    return static_cast<int>(m_contours.size());
}

int LettersContours::GetPointCount(int contour) {
    if (contour < 0 || contour >= GetContourCount()) return 0;
    const auto index = static_cast<std::size_t>(contour);
    const std::size_t end = index + 1 < m_contours.size() ? m_contours[index + 1].first : m_points.size();
    return static_cast<int>(end - m_contours[index].first);
}

int LettersContours::GetLetterIndex(int contour) {
    if (GetPointCount(contour) == 0) return 0;
    return static_cast<int>(m_contours[static_cast<std::size_t>(contour)].letterIndex);
}

const vl::Vector3<float>* LettersContours::GetPoints(int contour) {
    if (GetPointCount(contour) == 0) return nullptr;
    return &m_points[m_contours[static_cast<std::size_t>(contour)].first];
}

void LettersContours::Transform(const vl::Matrix4<double>& m) {
    for (vl::Vector3<float>& point : m_points) point = m.PointTransform<float>(point);
}

std::pair<float, float> LettersContours::GetSize() {
    return zrt::Extent(m_points);
}

void LettersContours::AddContour(std::uint32_t letterIndex) {
    m_contours.push_back({m_points.size(), letterIndex});
}

void LettersContours::AddContourPoint(const vl::Vector3<float>& point) {
    m_points.push_back(point);
}
