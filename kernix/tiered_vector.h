// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "host/word.h"

namespace kernix {

// A sequence of words with access by index in constant time, and insertion and removal anywhere at a cost
// of about the square root of its length: rings of 4096 words, all but the last full, so that a change moves
// words inside one ring and one word across each later ring (M. T. Goodrich, J. G. Kloss, "Tiered vectors",
// 1999). Indices are not checked.
class TieredVector {
public:
    std::size_t Size() const { return m_size; }
    vl::Word& operator[](std::size_t i) { return m_rings[i / kRing].At(i % kRing); }
    vl::Word operator[](std::size_t i) const { return m_rings[i / kRing].At(i % kRing); }
    void Clear();
    void PushBack(vl::Word value);
    void Insert(std::size_t index, vl::Word value);
    void Erase(std::size_t index);

private:
    // Moving words inside a ring is a copy, crossing to another ring is a cache miss: lists of a million
    // change fastest with rings of this size.
    static constexpr std::size_t kRing = 4096;

    // Words of a power of two, the first one at head. A short sequence is one ring that grows up to kRing.
    struct Ring {
        std::vector<vl::Word> words;
        std::size_t head = 0;

        std::size_t Mask() const { return words.size() - 1; }
        vl::Word& At(std::size_t i) { return words[(head + i) & Mask()]; }
        vl::Word At(std::size_t i) const { return words[(head + i) & Mask()]; }
        // Removes word i, where the last word is at end: moves the words before it or those after it,
        // whichever are fewer.
        void Close(std::size_t i, std::size_t end);
    };

    void Reserve();

    std::vector<Ring> m_rings;
    std::size_t m_size = 0;
};

}  // namespace kernix
