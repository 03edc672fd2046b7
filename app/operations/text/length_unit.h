// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "app/operations/text/text_geometry.h"

namespace zr {

struct LengthUnitInfo {
    std::string_view name;  // as in SVG; empty for kNone
    int drawingCode;        // $INSUNITS of DXF
    double metres;
};

constexpr LengthUnitInfo InfoOf(LengthUnit unit) {
    switch (unit) {
        case LengthUnit::kMillimetre:
            return {"mm", 4, 0.001};
        case LengthUnit::kCentimetre:
            return {"cm", 5, 0.01};
        case LengthUnit::kInch:
            return {"in", 1, 0.0254};
        case LengthUnit::kNone:
            break;
    }
    return {"", 0, 1};
}

}  // namespace zr
