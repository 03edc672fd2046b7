// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "gltf/json.h"

namespace zr::gltf {
namespace {

// Bytes that a string need not escape.
constexpr std::array<bool, 256> kPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t i = 0x20; i < plain.size(); ++i) plain[i] = i != '"' && i != '\\';
    return plain;
}();

class Writer {
public:
    Writer(bool pretty, const JsonSink& sink) : m_pretty(pretty), m_sink(sink) {}
    ~Writer() = default;
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Recurses as deep as the value, which the reader bounds by kMaxJsonDepth.
    void Value(const Json& value, std::size_t level) {
        switch (value.GetType()) {
            case Json::Type::kNull:
                return Put("null");
            case Json::Type::kFalse:
                return Put("false");
            case Json::Type::kTrue:
                return Put("true");
            case Json::Type::kNumber:
                return Put(value.NumberText(m_number));
            case Json::Type::kString:
                return String(value.String());
            case Json::Type::kArray:
                return Array(value.Items(), level);
            case Json::Type::kObject:
                return Object(value.Members(), level);
        }
    }

    void Flush() {
        m_sink({m_buffer.data(), m_size});
        m_size = 0;
    }

private:
    void Put(char c) {
        if (m_size == m_buffer.size()) Flush();
        m_buffer[m_size++] = c;
    }

    void Put(std::string_view text) {
        if (text.size() > m_buffer.size() - m_size) {
            Flush();
            if (text.size() > m_buffer.size()) return m_sink(text);
        }
        m_size += text.copy(m_buffer.data() + m_size, text.size());
    }

    void Array(std::span<const Json> items, std::size_t level) {
        const bool lines = std::any_of(items.begin(), items.end(),
                                       [](const Json& item) { return item.IsArray() || item.IsObject(); });
        Put('[');
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (i != 0) Put(m_pretty && !lines ? ", " : ",");
            if (lines) NewLine(level + 1);
            Value(items[i], level + 1);
        }
        if (lines) NewLine(level);
        Put(']');
    }

    void Object(std::span<const JsonMember> members, std::size_t level) {
        Put('{');
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i != 0) Put(',');
            NewLine(level + 1);
            String(members[i].Name());
            Put(m_pretty ? ": " : ":");
            Value(members[i].value, level + 1);
        }
        if (!members.empty()) NewLine(level);
        Put('}');
    }

    void String(std::string_view text) {
        Put('"');
        while (!text.empty()) {
            const auto escaped = std::find_if(text.begin(), text.end(),
                                              [](char c) { return !kPlain[static_cast<unsigned char>(c)]; });
            const auto plain = static_cast<std::size_t>(escaped - text.begin());
            Put(text.substr(0, plain));
            if (plain == text.size()) break;
            Escape(text[plain]);
            text.remove_prefix(plain + 1);
        }
        Put('"');
    }

    void Escape(char c) {
        constexpr char kHex[] = "0123456789ABCDEF";
        Put('\\');
        if (c == '"' || c == '\\') return Put(c);
        if (c == '\n') return Put('n');
        if (c == '\t') return Put('t');
        const auto byte = static_cast<unsigned char>(c);
        Put("u00");
        Put(kHex[byte >> 4]);
        Put(kHex[byte & 15]);
    }

    void NewLine(std::size_t level) {
        if (!m_pretty) return;
        Put('\n');
        for (std::size_t i = 0; i < level; ++i) Put("  ");
    }

    bool m_pretty;
    const JsonSink& m_sink;
    Json::NumberRoom m_number;
    std::array<char, std::size_t{64} << 10> m_buffer;
    std::size_t m_size = 0;
};

}  // namespace

void WriteJson(const Json& value, bool pretty, const JsonSink& sink, std::size_t level) {
    Writer writer(pretty, sink);
    writer.Value(value, level);
    writer.Flush();
}

std::string WriteJson(const Json& value, bool pretty) {
    std::string text;
    WriteJson(value, pretty, [&text](std::string_view piece) { text += piece; });
    return text;
}

}  // namespace zr::gltf
