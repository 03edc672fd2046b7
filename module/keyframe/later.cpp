// SPDX-License-Identifier: MIT
// Steps of the pipeline whose files are still to come.
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/name_text.h"

int ZR_TK::AssignNames() {
    return 0;
}
void ZR_TK::LightTargetPass() {
}
void ZR_TK::CameraTargetPass() {
}
void ZR_TK::OrientationPass() {
}
void ZR_TK::MergeKeys() {
}
void ZR_TK::ResampleKeys() {
}
void ZR_TK::FlipAxes() {
}
void ZR_TK::MakeUniqueName(ExportNode*) {
}
void ZR_TK::MakeMaterialNames() {
}

char* zrt::CopyNameBounded(char* destination, const char* source, std::size_t size) {
    if (destination == nullptr || source == nullptr || size == 0) return nullptr;
    std::size_t length = 0;
    for (; length + 1 < size && source[length] != 0; ++length) destination[length] = source[length];
    destination[length] = 0;
    return destination;
}
