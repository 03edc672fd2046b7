// SPDX-License-Identifier: MIT
#pragma once

// The Hershey Simplex Roman font for the character codes 32 to 126, drawn with single strokes. Font units,
// y up, baseline at 0, capitals 21 high.
//
// The Hershey Fonts were originally created by Dr. A. V. Hershey while working at the U. S. National Bureau
// of Standards; the distributed format of the data this table was converted from was created by James Hurt,
// Cognition, Inc. The data may be used by anyone for any purpose with this acknowledgement, and converted
// into any format except the one distributed by the U.S. NTIS.
namespace zrt {

inline constexpr int kFirstStrokeCode = 32;
inline constexpr int kLastStrokeCode = 126;
inline constexpr int kStrokePairs = 55;

struct StrokePair {
    signed char x;
    signed char y;
    friend bool operator==(const StrokePair&, const StrokePair&) = default;
};

inline constexpr StrokePair kPenUp{-1, -1};

struct StrokeGlyph {
    int pairCount;  // pairs used, pen-up markers included
    int advance;
    StrokePair pairs[kStrokePairs];  // unused past pairCount
};

extern const StrokeGlyph kStrokeFont[kLastStrokeCode - kFirstStrokeCode + 1];

}  // namespace zrt
