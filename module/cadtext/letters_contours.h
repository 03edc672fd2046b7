// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/cad_text.h"

// A text as polylines.
class LettersContours final : public vl::zr::legacy::GlyphContour {
public:
    int GetContourCount() override;
    int GetPointCount(int contour) override;
    int GetLetterIndex(int contour) override;  // 0 for a contour without points
    const vl::Vector3<float>* GetPoints(int contour) override;
    void Transform(const vl::Matrix4<double>& m) override;
    std::pair<float, float> GetSize() override;

    const char* GetTypeName() override { return "*"; }

    void AddContour(std::uint32_t letterIndex);
    void AddContourPoint(const vl::Vector3<float>& point);  // to the newest contour

private:
    struct LetterContour {
        std::size_t first;  // its points end where the next contour's begin
        std::uint32_t letterIndex;
    };

    void DeleteThis() override { delete this; }

    std::vector<vl::Vector3<float>> m_points;
    std::vector<LetterContour> m_contours;
};
