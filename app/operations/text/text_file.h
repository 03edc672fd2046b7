// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file_transaction.h"

namespace zr {

// Builds a text piece by piece. Numbers get the shortest form that reads back as the same value; -0 becomes
// 0.
class TextBuilder {
public:
    TextBuilder() = default;
    virtual ~TextBuilder() = default;
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    TextBuilder& operator<<(std::string_view text) {
        m_text += text;
        return *this;
    }
    TextBuilder& operator<<(float value) { return Number(value == 0 ? 0.0F : value); }
    TextBuilder& operator<<(int value) { return Number(value); }
    // Without an exponent.
    TextBuilder& AddFixed(float value) { return Number(value == 0 ? 0.0F : value, std::chars_format::fixed); }

    // To be called between pieces: a file then writes what has accumulated, if it is enough.
    virtual void Pass() {}

    std::string Take() { return std::move(m_text); }

protected:
    std::string m_text;

private:
    template <class T, class... Format>
    TextBuilder& Number(T value, Format... format) {
        char buffer[64];
        const char* const end = std::to_chars(buffer, buffer + sizeof buffer, value, format...).ptr;
        m_text.append(buffer, static_cast<std::size_t>(end - buffer));
        return *this;
    }
};

// A text file that keeps only recent text in memory. Throws Error when writing fails.
class TextFile : public TextBuilder {
public:
    TextFile(const std::filesystem::path& target, FileTransaction& files) : m_file(files.Create(target)) {}

    void Pass() override;
    // Writes the rest. The file gets its name at the transaction's Commit.
    void Finish();

private:
    OutputFile& m_file;
};

}  // namespace zr
