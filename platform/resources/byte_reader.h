// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "platform/resources/res_file.h"

namespace platform {

// Reads little-endian values and resource identifiers off the front of a block. A read past the end yields
// zero and marks the reader as failed, so a caller may read a whole record and test once.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    template <typename T>
    T Read() {
        static_assert(std::is_integral_v<T>);
        T value{};
        if (Take(sizeof(T))) std::memcpy(&value, m_bytes.data() + m_position - sizeof(T), sizeof(T));
        return value;
    }

    // 0xFFFF and a number, or a zero-terminated text.
    ResourceId ReadId() {
        ResourceId id;
        char16_t c = Read<char16_t>();
        if (c == 0xFFFF) {
            id.number = Read<std::uint16_t>();
            return id;
        }
        for (; c != 0; c = Read<char16_t>()) id.text.push_back(c);
        return id;
    }

    void Skip(std::size_t count) { Take(count); }
    void Align(std::size_t size) { Take((size - m_position % size) % size); }

    std::size_t Position() const { return m_position; }
    bool Failed() const { return m_failed; }

private:
    bool Take(std::size_t count) {
        if (count > m_bytes.size() - m_position) {
            m_failed = true;
            m_position = m_bytes.size();
            return false;
        }
        m_position += count;
        return true;
    }

    std::span<const std::byte> m_bytes;
    std::size_t m_position = 0;
    bool m_failed = false;
};

}  // namespace platform
