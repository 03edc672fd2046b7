// SPDX-License-Identifier: MIT
#include <algorithm>

#include "gltf/json.h"

namespace zr::gltf {
namespace {

class Writer {
public:
    explicit Writer(bool pretty) : m_pretty(pretty) {}

    std::string Take() { return std::move(m_out); }

    // Recurses as deep as the value, which the reader bounds by kMaxJsonDepth.
    void Value(const Json& value, std::size_t level) {
        switch (value.GetType()) {
            case Json::Type::kNull:
                m_out += "null";
                break;
            case Json::Type::kFalse:
                m_out += "false";
                break;
            case Json::Type::kTrue:
                m_out += "true";
                break;
            case Json::Type::kNumber:
                m_out += value.NumberText();
                break;
            case Json::Type::kString:
                String(value.String());
                break;
            case Json::Type::kArray:
                Array(value.Items(), level);
                break;
            case Json::Type::kObject:
                Object(value.Members(), level);
                break;
        }
    }

private:
    void Array(std::span<const Json> items, std::size_t level) {
        const bool lines = std::any_of(items.begin(), items.end(),
                                       [](const Json& item) { return item.IsArray() || item.IsObject(); });
        m_out += '[';
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (i != 0) m_out += m_pretty && !lines ? ", " : ",";
            if (lines) NewLine(level + 1);
            Value(items[i], level + 1);
        }
        if (lines) NewLine(level);
        m_out += ']';
    }

    void Object(std::span<const JsonMember> members, std::size_t level) {
        m_out += '{';
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i != 0) m_out += ',';
            NewLine(level + 1);
            String(members[i].Name());
            m_out += m_pretty ? ": " : ":";
            Value(members[i].value, level + 1);
        }
        if (!members.empty()) NewLine(level);
        m_out += '}';
    }

    void String(std::string_view text) {
        constexpr char kHex[] = "0123456789ABCDEF";
        m_out += '"';
        for (char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (c == '"' || c == '\\') {
                m_out += '\\';
                m_out += c;
            } else if (byte >= 0x20) {
                m_out += c;
            } else if (c == '\n') {
                m_out += "\\n";
            } else if (c == '\t') {
                m_out += "\\t";
            } else {
                m_out += "\\u00";
                m_out += kHex[byte >> 4];
                m_out += kHex[byte & 15];
            }
        }
        m_out += '"';
    }

    void NewLine(std::size_t level) {
        if (m_pretty) m_out.append(1, '\n').append(level * 2, ' ');
    }

    bool m_pretty;
    std::string m_out;
};

}  // namespace

std::string WriteJson(const Json& value, bool pretty) {
    Writer writer(pretty);
    writer.Value(value, 0);
    return writer.Take();
}

}  // namespace zr::gltf
