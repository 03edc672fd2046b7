// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/word.h"

namespace kernix {

// A sequence of words, fast to go over by index and to change anywhere: rings of at most kRing words, each of
// which knows where it begins. A change moves words inside one ring and renumbers the later rings, which are
// so few that lists of a million hardly change slower than short ones; removals that leave a quarter of the
// rings unneeded are followed by a pass that fills the others. Indices are not checked. A change
// that runs out of memory throws std::bad_alloc and leaves the sequence as it was.
class TieredVector {
public:
    std::size_t Size() const { return m_size; }
    vl::Word& operator[](std::size_t i) {
        const std::size_t ring = RingOf(i);
        return m_rings[ring].At(i - m_rings[ring].start);
    }
    void Clear();
    void PushBack(vl::Word value);
    void Insert(std::size_t index, vl::Word value);
    void Erase(std::size_t index);

private:
    static constexpr std::size_t kRing = 4096;

    // Words of a power of two, the first one at head. The only ring of a short sequence grows up to kRing;
    // all other rings have room for as many.
    struct Ring {
        std::unique_ptr<vl::Word[]> words;
        std::uint32_t room = 0;
        std::uint32_t head = 0;
        std::uint32_t start = 0;  // index of its first word in the sequence

        Ring(std::size_t size, std::size_t first)
            : words(new vl::Word[size]),
              room(static_cast<std::uint32_t>(size)),
              start(static_cast<std::uint32_t>(first)) {}
        std::size_t Slot(std::size_t i) const { return (head + i) & (room - 1); }
        vl::Word& At(std::size_t i) { return words[Slot(i)]; }
        // Removes word i of count: moves the words before it or those after it, whichever are fewer.
        void Close(std::size_t i, std::size_t count);
    };

    // No ring holds more than kRing words, so the ring of an index is this one or comes later.
    std::size_t RingOf(std::size_t i) const {
        const std::size_t ring = i / kRing;
        return ring + 1 < m_rings.size() && m_rings[ring + 1].start <= i ? LaterRingOf(i) : ring;
    }
    std::size_t LaterRingOf(std::size_t i) const;
    std::size_t CountOf(std::size_t ring) const;
    bool IsFull(std::size_t ring) const { return CountOf(ring) == m_rings[ring].room; }
    std::size_t RingsNeeded() const { return m_size / kRing + 1; }
    void Grow();  // the only ring
    void Split(std::size_t ring);
    void Pack();

    std::vector<Ring> m_rings;
    std::size_t m_size = 0;
};

}  // namespace kernix
