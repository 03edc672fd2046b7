// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// The compiled resource file: a sequence of records, each a header (data size, header size, type, name,
// language) and its data, every part padded to four bytes. The first record is empty.
namespace platform {

// A number, or a text when `text` is not empty.
struct ResourceId {
    std::uint16_t number = 0;
    std::u16string text;
};

// ASCII case does not matter in texts.
bool SameResourceId(const ResourceId& a, const ResourceId& b);

struct ResourceRecord {
    ResourceId type;
    ResourceId name;
    std::uint16_t language = 0;
    std::span<const std::byte> whole;  // header and data
    std::span<const std::byte> data;
};

// Steps through the records of a file that must outlive the reader. Damaged data ends the walk; nothing
// outside `file` is ever read.
class ResourceReader {
public:
    explicit ResourceReader(std::span<const std::byte> file) : m_rest(file) {}

    std::optional<ResourceRecord> Next();

private:
    std::span<const std::byte> m_rest;
};

std::optional<ResourceRecord> FindResourceRecord(std::span<const std::byte> file, const ResourceId& type,
                                                 const ResourceId& name);

}  // namespace platform
