// SPDX-License-Identifier: MIT
#pragma once

namespace vl::zr {
class Track;
class TransformController;
}  // namespace vl::zr

namespace zrt {

// Adds the keys of one type (kKeyPosition or kKeyScale) of source to destination, offset seconds later. The
// first one meets the last key that destination had (value @ time, L, before S):
//
//   1@0, 2@5      -> 1@0, 1@5, 2@5     a pause: L is held until S
//   1@0, 1@5      -> 1@0               two single keys of one value: S adds nothing
//   1@0, 2@0      -> 1@0, 2@0.001      S gives way to L
//   1@5, 2@0 ...  -> 2@0, 1@5 ...      any other: S at its time
void MergeVectorKeys(vl::zr::TransformController* controller, vl::zr::Track* source,
                     vl::zr::Track* destination, double offset, int keyType);

}  // namespace zrt
