// SPDX-License-Identifier: MIT
#include "kernix/tiered_vector.h"

#include <algorithm>
#include <utility>

namespace kernix {

void TieredVector::Ring::Close(std::size_t i, std::size_t count) {
    const auto at = [this](std::size_t k) { return words.get() + Slot(k); };
    vl::Word* const begin = words.get();
    vl::Word* const end = begin + room;
    vl::Word* const gap = at(i);
    if (2 * i < count) {
        vl::Word* const first = at(0);
        head = static_cast<std::uint32_t>(Slot(1));
        if (first <= gap) {
            std::copy_backward(first, gap, gap + 1);
            return;
        }
        std::copy_backward(begin, gap, gap + 1);
        *begin = end[-1];
        std::copy_backward(first, end - 1, end);
        return;
    }
    vl::Word* const last = at(count - 1);
    if (gap <= last) {
        std::copy(gap + 1, last + 1, gap);
        return;
    }
    std::copy(gap + 1, end, gap);
    end[-1] = *begin;
    std::copy(begin + 1, last + 1, begin);
}

std::size_t TieredVector::LaterRingOf(std::size_t i) const {
    const auto after =
        std::upper_bound(m_rings.begin() + static_cast<std::ptrdiff_t>(i / kRing), m_rings.end(), i,
                         [](std::size_t index, const Ring& ring) { return index < ring.start; });
    return static_cast<std::size_t>(after - m_rings.begin()) - 1;
}

std::size_t TieredVector::CountOf(std::size_t ring) const {
    const std::size_t end = ring + 1 < m_rings.size() ? m_rings[ring + 1].start : m_size;
    return end - m_rings[ring].start;
}

// The later half becomes a ring of its own.
void TieredVector::Split(std::size_t ring) {
    const std::size_t count = CountOf(ring), kept = count / 2;
    Ring later(kRing, m_rings[ring].start + kept);
    for (std::size_t i = kept; i < count; ++i) later.At(i - kept) = m_rings[ring].At(i);
    m_rings.insert(m_rings.begin() + static_cast<std::ptrdiff_t>(ring + 1), std::move(later));
}

// Fills every ring but the last and frees the others. No word moves past one that is still to be read.
void TieredVector::Pack() {
    std::size_t to = 0;
    for (std::size_t ring = 0; ring < m_rings.size(); ++ring) {
        for (std::size_t i = 0, count = CountOf(ring); i < count; ++i, ++to)
            m_rings[to / kRing].At(to % kRing) = m_rings[ring].At(i);
    }
    m_rings.erase(m_rings.begin() + static_cast<std::ptrdiff_t>(RingsNeeded()), m_rings.end());
    for (std::size_t ring = 0; ring < m_rings.size(); ++ring)
        m_rings[ring].start = static_cast<std::uint32_t>(ring * kRing);
}

void TieredVector::Clear() {
    m_rings.clear();
    m_size = 0;
}

void TieredVector::Grow() {
    Ring larger(m_rings[0].room * std::size_t{2}, 0);
    for (std::size_t i = 0; i < m_size; ++i) larger.At(i) = m_rings[0].At(i);
    m_rings[0] = std::move(larger);
}

void TieredVector::PushBack(vl::Word value) {
    if (m_rings.empty()) {
        m_rings.emplace_back(4, 0);
    } else if (IsFull(m_rings.size() - 1)) {
        if (m_rings.back().room == kRing) {
            m_rings.emplace_back(kRing, m_size);
        } else {
            Grow();
        }
    }
    Ring& last = m_rings.back();
    last.At(m_size++ - last.start) = value;
}

void TieredVector::Insert(std::size_t index, vl::Word value) {
    if (index == m_size) return PushBack(value);
    std::size_t ring = RingOf(index);
    if (IsFull(ring)) {
        if (m_rings[ring].room == kRing) {
            Split(ring);
            ring = RingOf(index);
        } else {
            Grow();
        }
    }
    Ring& target = m_rings[ring];
    const std::size_t at = index - target.start;
    for (std::size_t i = CountOf(ring); i > at; --i) target.At(i) = target.At(i - 1);
    target.At(at) = value;
    for (std::size_t later = ring + 1; later < m_rings.size(); ++later) ++m_rings[later].start;
    ++m_size;
}

void TieredVector::Erase(std::size_t index) {
    const std::size_t ring = RingOf(index);
    m_rings[ring].Close(index - m_rings[ring].start, CountOf(ring));
    for (std::size_t later = ring + 1; later < m_rings.size(); ++later) --m_rings[later].start;
    --m_size;
    if (m_rings.size() > 1 && RingsNeeded() <= m_rings.size() * 3 / 4) Pack();
}

}  // namespace kernix
