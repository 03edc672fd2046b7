// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file_transaction.h"

namespace zr {

// Text put together piece by piece; numbers in the shortest form that reads back as the same value.
class NumberText {
public:
    NumberText& operator<<(std::string_view text) {
        m_text += text;
        return *this;
    }
    NumberText& operator<<(float value) { return Number(value == 0 ? 0.0F : value); }
    NumberText& operator<<(double value) { return Number(value == 0 ? 0.0 : value); }
    NumberText& operator<<(int value) { return Number(value); }
    NumberText& operator<<(std::size_t value) { return Number(value); }
    // Without an exponent.
    NumberText& AddFixed(float value) {
        return Number(value == 0 ? 0.0F : value, std::chars_format::fixed);
    }

    const std::string& Text() const { return m_text; }

protected:
    std::string m_text;

private:
    template <class T, class... Format>
    NumberText& Number(T value, Format... format) {
        char buffer[64];
        m_text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, format...).ptr);
        return *this;
    }
};

// Such a text as a file, of which only the newest piece is held.
class TextFile : public NumberText {
public:
    // Throws Error, as all that follows.
    explicit TextFile(const std::filesystem::path& target) : m_file(m_files.Create(target)) {}

    // Between pieces: passes on what there is when that is much.
    void Pass();

    // The file appears whole or not at all.
    void Commit();

private:
    FileTransaction m_files;
    OutputFile& m_file;
};

}  // namespace zr
