// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file_transaction.h"

namespace zr {

// A file of text put together piece by piece, of which only the newest is held; numbers in the shortest form
// that reads back as the same value. What cannot be written is thrown as an Error.
class TextFile {
public:
    explicit TextFile(const std::filesystem::path& target) : m_file(m_files.Create(target)) {}

    TextFile& operator<<(std::string_view text) {
        m_text += text;
        return *this;
    }
    TextFile& operator<<(float value) { return Number(value == 0 ? 0.0F : value); }
    TextFile& operator<<(int value) { return Number(value); }
    // Without an exponent.
    TextFile& AddFixed(float value) { return Number(value == 0 ? 0.0F : value, std::chars_format::fixed); }

    // Between pieces: passes on what there is when that is much.
    void Pass();

    // The file appears whole or not at all.
    void Commit();

private:
    template <class T, class... Format>
    TextFile& Number(T value, Format... format) {
        char buffer[64];
        m_text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, format...).ptr);
        return *this;
    }

    std::string m_text;
    FileTransaction m_files;
    OutputFile& m_file;
};

}  // namespace zr
