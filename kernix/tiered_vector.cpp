// SPDX-License-Identifier: MIT
#include "kernix/tiered_vector.h"

#include <algorithm>

namespace kernix {

void TieredVector::Ring::Close(std::size_t i, std::size_t end) {
    const auto at = [this](std::size_t k) {
        return words.begin() + static_cast<std::ptrdiff_t>((head + k) & Mask());
    };
    if (i < end - i) {
        const auto first = at(0), gap = at(i);
        head = (head + 1) & Mask();
        if (first <= gap) {
            std::copy_backward(first, gap, gap + 1);
            return;
        }
        std::copy_backward(words.begin(), gap, gap + 1);
        words.front() = words.back();
        std::copy_backward(first, words.end() - 1, words.end());
        return;
    }
    const auto from = at(i), to = at(end);
    if (from <= to) {
        std::copy(from + 1, to + 1, from);
        return;
    }
    std::copy(from + 1, words.end(), from);
    words.back() = words.front();
    std::copy(words.begin() + 1, to + 1, words.begin());
}

void TieredVector::Clear() {
    m_rings.clear();
    m_size = 0;
}

// Makes room for one more word at the end.
void TieredVector::Reserve() {
    if (m_rings.empty()) {
        m_rings.push_back({std::vector<vl::Word>(4)});
    } else if (Ring& first = m_rings.front(); first.words.size() < kRing) {
        if (m_size < first.words.size()) return;
        std::vector<vl::Word> larger(first.words.size() * 2);
        for (std::size_t i = 0; i < m_size; ++i) larger[i] = first.At(i);
        first = {std::move(larger)};
    } else if (m_size == m_rings.size() * kRing) {
        m_rings.push_back({std::vector<vl::Word>(kRing)});
    }
}

void TieredVector::PushBack(vl::Word value) {
    Reserve();
    (*this)[m_size++] = value;
}

void TieredVector::Insert(std::size_t index, vl::Word value) {
    Reserve();
    const std::size_t ring = index / kRing;
    // The last word of each ring becomes the first of the next one.
    for (std::size_t r = m_size / kRing; r > ring; --r) {
        const vl::Word carried = m_rings[r - 1].At(kRing - 1);
        m_rings[r].head = (m_rings[r].head + m_rings[r].Mask()) & m_rings[r].Mask();
        m_rings[r].At(0) = carried;
    }
    Ring& target = m_rings[ring];
    const std::size_t end = m_size / kRing > ring ? kRing - 1 : m_size - ring * kRing;
    for (std::size_t i = end; i > index % kRing; --i) target.At(i) = target.At(i - 1);
    target.At(index % kRing) = value;
    ++m_size;
}

void TieredVector::Erase(std::size_t index) {
    const std::size_t ring = index / kRing;
    const std::size_t last = (m_size - 1) / kRing;
    Ring& target = m_rings[ring];
    const std::size_t end = last > ring ? kRing - 1 : m_size - 1 - ring * kRing;
    target.Close(index % kRing, end);
    for (std::size_t r = ring + 1; r <= last; ++r) {
        m_rings[r - 1].At(kRing - 1) = m_rings[r].At(0);
        m_rings[r].head = (m_rings[r].head + 1) & m_rings[r].Mask();
    }
    --m_size;
    if (m_size == last * kRing && last != 0) m_rings.pop_back();
}

}  // namespace kernix
