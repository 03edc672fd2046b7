// SPDX-License-Identifier: MIT
#include "app/operations/export/record_rest.h"

#include <algorithm>
#include <cmath>

#include "host/object.h"

namespace zr {

bool PlacesObject(const ExportNode& record, const ExportOptions& options, vl::Matrix4<double>& shown) {
    if (!options.Has(vl::tk::kAllChoices) || (record.dwFlags & NF_GEOMETRY) == 0 || record.pNode == nullptr) {
        return false;
    }
    if (auto* camera = dynamic_cast<vl::zr::Camera*>(record.pNode->m_pObject)) {
        camera->GetObjectMatrix(record.pNode, &shown);
    } else if (auto* light = dynamic_cast<vl::zr::Light*>(record.pNode->m_pObject)) {
        light->GetObjectMatrix(record.pNode, &shown);
    } else {
        return false;
    }
    shown.Invert();
    return true;
}

vl::Matrix4<double> RestLocal(const ExportNode& record, const ExportOptions& options) {
    auto* node = static_cast<kernix::NodeModel*>(record.pSourceNode);
    if (record.pController == nullptr || node == nullptr) return record.mLocal;
    vl::Matrix4<double> local = node->GetRestMatrix();
    if (record.pParent == nullptr) local.Transform(options.sceneMatrix);
    vl::Matrix4<double> shown;
    if (PlacesObject(record, options, shown)) local.SetMul(shown, local);
    if (options.Has(vl::tk::kFlipAxes)) local.Flip();
    return local;
}

bool KeepsRestTransform(const ExportNode& record, const ExportOptions& options) {
    auto* node = static_cast<kernix::NodeModel*>(record.pSourceNode);
    if (node == nullptr) return false;
    const vl::Matrix4<double>& before = node->GetRestMatrix();
    double size = 1;
    for (const auto& row : before.m) {
        for (const double value : row) size = std::max(size, std::fabs(value));
    }
    // Ancestors add rounding errors in proportion to the world position.
    vl::Matrix4<double> world;
    node->GetWorldMatrix(&world, 1);
    for (const double value : world.m[3]) size = std::max(size, std::fabs(value));
    return RestLocal(record, options).Equal(before, 1e-9 * size);
}

}  // namespace zr
