// SPDX-License-Identifier: MIT
#include "gltf/json_stream.h"

namespace zr::gltf {

void JsonStream::Open(char bracket, std::string_view name) {
    Begin(name);
    m_sink({&bracket, 1});
    m_open.push_back({bracket});
}

void JsonStream::Close() {
    const Level level = m_open.back();
    m_open.pop_back();
    if (!level.isEmpty) NewLine();
    m_sink(level.bracket == '{' ? "}" : "]");
    if (m_open.empty()) m_sink("\n");
}

void JsonStream::Put(const Json& value, std::string_view name) {
    Begin(name);
    WriteJson(value, true, m_sink, m_open.size());
}

void JsonStream::Begin(std::string_view name) {
    if (m_open.empty()) return;
    if (!std::exchange(m_open.back().isEmpty, false)) m_sink(",");
    NewLine();
    if (name.empty()) return;
    m_sink("\"");
    m_sink(name);
    m_sink("\": ");
}

void JsonStream::NewLine() {
    m_sink("\n");
    for (std::size_t i = 0; i < m_open.size(); ++i) m_sink("  ");
}

}  // namespace zr::gltf
