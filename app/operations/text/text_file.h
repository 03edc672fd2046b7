// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/file_transaction.h"

namespace zr {

// Text put together piece by piece, numbers in the shortest form that reads back as the same value.
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

    // Between pieces: a file takes what there is when that is much.
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

// A file of text, of which only the newest is held. What cannot be written is thrown as an Error.
class TextFile : public TextBuilder {
public:
    TextFile(const std::filesystem::path& target, FileTransaction& files) : m_file(files.Create(target)) {}

    void Pass() override;
    // For the transaction's Commit.
    void Finish();

private:
    OutputFile& m_file;
};

}  // namespace zr
