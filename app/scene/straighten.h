// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>

#include "kernix/scene/curve.h"

namespace zr {

// Three numbers and a 0, or the four of a rotation, which the processor handles at once.
using KeyValue = float __attribute__((vector_size(16)));

// How far straight lines may lie off a curve, as a share of the largest of its values, or of 1 if all are
// smaller.
inline constexpr float kStraightTolerance = 1e-5F;

template <std::size_t kWidth, typename Value>
void AppendLinearKey(kernix::Curve& curve, float time, const Value& value) {
    curve.times.push_back(time);
    for (std::size_t i = 0; i < kWidth; ++i) curve.values.push_back(value[i]);
}

// Adds keys between two times, at which a curve has the values first and last, until the straight lines from
// key to key lie close enough to it. sample(timeA, a, timeB, b) stores what the curve shows at two times in
// between.
template <std::size_t kWidth, typename Sample>
void AppendStraightPieces(kernix::Curve& curve, float from, float to, KeyValue first, const KeyValue& last,
                          float tolerance, Sample sample) {
    constexpr int kDeepest = 10;  // 1024 pieces
    // Begins where the one above it ends, the topmost at from.
    struct Piece {
        float middle, to;
        KeyValue inMiddle, last;
        int depth;
    };
    const auto middleOf = [](float a, float b) { return a + (b - a) / 2; };
    Piece open[kDeepest + 1];
    std::size_t count = 0;
    Piece& whole = open[count++];
    whole = Piece{middleOf(from, to), to, KeyValue{}, last, 0};
    sample(whole.middle, whole.inMiddle, whole.middle, whole.inMiddle);
    while (count != 0) {
        Piece& piece = open[count - 1];
        bool isOff = piece.depth < 2;  // a curve may cross its chord in the middle
        const KeyValue off = piece.inMiddle - (first + piece.last) / 2;
        for (std::size_t i = 0; i < kWidth; ++i) isOff |= std::abs(off[i]) > tolerance;
        if (!isOff || piece.depth == kDeepest || piece.middle <= from || piece.middle >= piece.to) {
            if (piece.to < to) AppendLinearKey<kWidth>(curve, piece.to, piece.last);
            from = piece.to;
            first = piece.last;
            --count;
            continue;
        }
        Piece& left = open[count++];
        left.to = piece.middle;
        left.last = piece.inMiddle;
        left.middle = middleOf(from, left.to);
        piece.middle = middleOf(left.to, piece.to);
        left.depth = ++piece.depth;
        sample(left.middle, left.inMiddle, piece.middle, piece.inMiddle);
    }
}

// The same motion from straight pieces. The curve's times ascend strictly; a value has kWidth numbers, 4 for
// a rotation. A step becomes two adjacent keys.
template <std::size_t kWidth>
kernix::Curve Straightened(const kernix::Curve& curve);

}  // namespace zr
