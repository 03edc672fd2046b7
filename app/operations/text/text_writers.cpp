// SPDX-License-Identifier: MIT
#include "app/operations/text/text_writers.h"

#include <algorithm>
#include <cmath>

#include "app/operations/text/text_format_writers.h"
#include "base/error.h"
#include "base/file.h"

namespace zr {

void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target,
               FileTransaction& files) {
    const bool isFinite =
        std::all_of(geometry.points.begin(), geometry.points.end(), [](const TextGeometry::Point& p) {
            return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
        });
    if (!isFinite) throw Error(PathToUtf8(target), "", "a coordinate is too large for the file format");
    switch (format) {
        case TextFormat::kSvg:
            return WriteSvg(geometry, target, files);
        case TextFormat::kDxf:
            return WriteDxf(geometry, target, files);
        case TextFormat::kGltf:
            return WriteGltf(geometry, target, files);
        case TextFormat::kJson:
            return WriteJson(geometry, target, files);
        case TextFormat::kObj:
            return WriteObj(geometry, target, files);
        case TextFormat::kStl:
            return WriteStl(geometry, target, files);
    }
}

}  // namespace zr
