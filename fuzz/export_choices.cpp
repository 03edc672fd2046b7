// SPDX-License-Identifier: MIT
#include "fuzz/export_choices.h"

#include "fuzz/scenes.h"

namespace zr::fuzz {

ExportOptions MakeExportOptions(test::Random& choices) {
    ExportOptions options;
    options.exportFlags = Word(choices, options.exportFlags);
    options.nameFlags = Word(choices, options.nameFlags);
    options.animFlags = Word(choices, options.animFlags);
    options.pivotMode = static_cast<int>(choices.Pick(3));
    constexpr float kTimes[] = {1, 0.5F, 1e-6F, 1e6F};
    options.rescale = kTimes[choices.Pick(std::size(kTimes))];
    options.maxNameLength = 4 + static_cast<int>(choices.Pick(30));
    options.maxMaterialNameLength = choices.Chance() ? 0 : 3 + static_cast<int>(choices.Pick(30));
    constexpr double kScales[] = {1, 100, 1e-6, 1e6};
    const double scale = kScales[choices.Pick(std::size(kScales))];
    options.sceneMatrix.Scale(vl::Vector3<double>{scale, scale, scale});
    if (choices.Chance()) options.sceneMatrix.RotateX(1.5707963267948966);
    options.check = static_cast<MotionCheck>(choices.Pick(3));
    return options;
}

}  // namespace zr::fuzz
