// SPDX-License-Identifier: MIT
#include "platform/resources/res_file.h"

#include <algorithm>

#include "platform/resources/byte_reader.h"

namespace platform {
namespace {

char16_t FoldCase(char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

}  // namespace

bool SameResourceId(const ResourceId& a, const ResourceId& b) {
    return a.number == b.number &&
           std::equal(a.text.begin(), a.text.end(), b.text.begin(), b.text.end(),
                      [](char16_t x, char16_t y) { return FoldCase(x) == FoldCase(y); });
}

std::optional<ResourceRecord> ResourceReader::Next() {
    ByteReader reader(m_rest);
    const std::uint32_t dataSize = reader.Read<std::uint32_t>();
    const std::uint32_t headerSize = reader.Read<std::uint32_t>();
    ResourceRecord record;
    record.type = reader.ReadId();
    record.name = reader.ReadId();
    reader.Align(4);
    reader.Read<std::uint32_t>();  // version of the data
    reader.Read<std::uint16_t>();  // memory flags
    record.language = reader.Read<std::uint16_t>();
    if (reader.Failed() || headerSize < reader.Position() || headerSize > m_rest.size() ||
        dataSize > m_rest.size() - headerSize) {
        m_rest = {};
        return std::nullopt;
    }
    record.data = m_rest.subspan(headerSize, dataSize);
    record.whole = m_rest.first(headerSize + dataSize);
    const std::size_t padded = (record.whole.size() + 3) & ~std::size_t{3};
    m_rest = m_rest.subspan(std::min(padded, m_rest.size()));
    return record;
}

std::optional<ResourceRecord> FindResourceRecord(std::span<const std::byte> file, const ResourceId& type,
                                                 const ResourceId& name) {
    ResourceReader reader(file);
    while (std::optional<ResourceRecord> record = reader.Next()) {
        if (SameResourceId(record->type, type) && SameResourceId(record->name, name)) return record;
    }
    return std::nullopt;
}

}  // namespace platform
