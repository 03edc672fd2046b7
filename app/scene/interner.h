// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

inline std::uint64_t HashOf(std::string_view bytes) {
    return std::hash<std::string_view>()(bytes);
}

// A hash table of numbers that stand for content, which the caller keeps and compares.
class HashIndex {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // The first number added under this hash for which equal(number) holds, or kNone.
    template <typename Equal>
    std::uint32_t Find(std::uint64_t hash, Equal equal) const {
        if (m_slots.empty()) return kNone;
        for (std::size_t at = hash & (m_slots.size() - 1); m_slots[at].number != kNone;
             at = (at + 1) & (m_slots.size() - 1)) {
            if (m_slots[at].hash == hash && equal(m_slots[at].number)) return m_slots[at].number;
        }
        return kNone;
    }

    void Add(std::uint64_t hash, std::uint32_t number) {
        if (2 * (m_count + 1) > m_slots.size()) Grow();
        Put({hash, number});
        ++m_count;
    }

private:
    struct Slot {
        std::uint64_t hash = 0;
        std::uint32_t number = kNone;
    };

    void Grow() {
        std::vector<Slot> old(m_slots.empty() ? 16 : 2 * m_slots.size());
        old.swap(m_slots);
        for (const Slot& slot : old)
            if (slot.number != kNone) Put(slot);
    }

    void Put(const Slot& slot) {
        std::size_t at = slot.hash & (m_slots.size() - 1);
        while (m_slots[at].number != kNone) at = (at + 1) & (m_slots.size() - 1);
        m_slots[at] = slot;
    }

    std::vector<Slot> m_slots;  // their number is a power of two; at most half are in use
    std::size_t m_count = 0;
};

// Gives equal texts equal numbers: 0 for the first one, 1 for the next different one, and so on.
class Interner {
public:
    struct Result {
        std::uint32_t number;
        bool isNew;
    };

    Result Intern(std::string_view text) {
        const std::uint64_t hash = HashOf(text);
        const std::uint32_t known = m_index.Find(hash, [&](std::uint32_t i) { return At(i) == text; });
        if (known != HashIndex::kNone) return {known, false};
        const auto number = static_cast<std::uint32_t>(m_ends.size());
        m_texts.append(text);
        m_ends.push_back(m_texts.size());
        m_index.Add(hash, number);
        return {number, true};
    }

    Result Intern(std::span<const std::uint32_t> words) {
        return Intern(std::string_view(reinterpret_cast<const char*>(words.data()), words.size_bytes()));
    }

private:
    std::string_view At(std::uint32_t i) const {
        const std::size_t begin = i == 0 ? 0 : m_ends[i - 1];
        return std::string_view(m_texts).substr(begin, m_ends[i] - begin);
    }

    std::string m_texts;
    std::vector<std::size_t> m_ends;
    HashIndex m_index;
};

}  // namespace zr
