// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>

#include "app/operations/export/clip.h"
#include "app/operations/export/node_choice.h"
#include "host/math.h"
#include "host/serializer.h"

namespace zr {

// How thoroughly an export's motion is compared with the scene's: at every relevant time; at some times,
// within a tenth of the export's own time; not at all.
enum class MotionCheck { kThorough, kQuick, kOff };

// Called periodically with progress from 0 to 1; may throw to stop the export.
using ExportProgress = std::function<void(double)>;

// Options of an export. By default everything is exported.
struct ExportOptions {
    std::uint32_t exportFlags = vl::tk::kExportLights | vl::tk::kExportCameras | vl::tk::kKeepAllNodes |
                                vl::tk::kExportBones | vl::tk::kExportNotes | vl::tk::kAllRenderables |
                                vl::tk::kAllChoices | vl::tk::kOffsetControllers | vl::tk::kExtractKeys;
    std::uint32_t nameFlags = 0;
    std::uint32_t animFlags = 0;
    int pivotMode = 0;
    float rescale = 1;  // time factor, or seconds with kSetLength
    int maxNameLength = 32;
    int maxMaterialNameLength = 0;
    vl::tk::RenameCallback rename = nullptr;
    void* renameContext = nullptr;
    vl::Matrix4<double> sceneMatrix;
    MotionCheck check = MotionCheck::kQuick;
    // Merging keeps steps and cubic curves; otherwise it converts them to linear curves with more keys.
    bool keepsCurves = false;
    NodeChoice nodes;
    ClipOptions clip;
    double maxDeviation = 1e-3;  // above which the export fails, relative to the scene's size

    ExportOptions() { sceneMatrix.IdentityMatrix(); }

    // The factor from the scene's lengths to those of the result.
    double Scale() const { return std::hypot(sceneMatrix.m[0][0], sceneMatrix.m[0][1], sceneMatrix.m[0][2]); }

    bool Has(vl::tk::ExportFlag flag) const { return (exportFlags & flag) != 0; }
    bool Has(vl::tk::AnimFlag flag) const { return (animFlags & flag) != 0; }
};

}  // namespace zr
