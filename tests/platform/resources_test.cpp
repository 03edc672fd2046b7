// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/resources/res_file.h"

namespace {

using platform::FindResourceRecord;
using platform::ResourceId;
using platform::ResourceReader;

// Builds a resource file record by record.
class FileBuilder {
public:
    FileBuilder() { Add({}, {}, ""); }

    void Add(const ResourceId& type, const ResourceId& name, const std::string& data) {
        const std::size_t start = m_bytes.size();
        Put<std::uint32_t>(static_cast<std::uint32_t>(data.size()));
        Put<std::uint32_t>(0);
        PutId(type);
        PutId(name);
        Pad();
        for (const std::uint32_t word : {0u, 0x04090000u, 0u, 0u}) Put<std::uint32_t>(word);
        const auto headerSize = static_cast<std::uint32_t>(m_bytes.size() - start);
        std::memcpy(m_bytes.data() + start + 4, &headerSize, 4);
        for (const char c : data) m_bytes.push_back(static_cast<std::byte>(c));
        Pad();
    }

    std::vector<std::byte> m_bytes;

private:
    template <typename T>
    void Put(T value) {
        const auto* bytes = reinterpret_cast<const std::byte*>(&value);
        m_bytes.insert(m_bytes.end(), bytes, bytes + sizeof(T));
    }

    void PutId(const ResourceId& id) {
        if (id.text.empty()) {
            Put<std::uint16_t>(0xFFFF);
            Put<std::uint16_t>(id.number);
            return;
        }
        for (const char16_t c : id.text) Put<char16_t>(c);
        Put<char16_t>(0);
    }

    void Pad() { m_bytes.resize((m_bytes.size() + 3) & ~std::size_t{3}); }
};

std::string TextOf(const std::vector<std::byte>& file, const ResourceId& type, const ResourceId& name) {
    const auto record = FindResourceRecord(file, type, name);
    if (!record) return "(none)";
    return {reinterpret_cast<const char*>(record->data.data()), record->data.size()};
}

FileBuilder SmallFile() {
    FileBuilder file;
    file.Add({0, u"LNG"}, {0, u"Eng"}, "first");
    file.Add({0, u"LNG"}, {7, {}}, "by number");
    file.Add({5, {}}, {0, u"ENG"}, "");
    return file;
}

TEST(ResourceFile, FindsByNumberAndByTextWithoutCase) {
    const std::vector<std::byte> file = SmallFile().m_bytes;
    EXPECT_EQ(TextOf(file, {0, u"lng"}, {0, u"ENG"}), "first");
    EXPECT_EQ(TextOf(file, {0, u"LNG"}, {7, {}}), "by number");
    EXPECT_EQ(TextOf(file, {5, {}}, {0, u"eng"}), "");
    EXPECT_EQ(TextOf(file, {5, {}}, {7, {}}), "(none)");
    EXPECT_EQ(TextOf(file, {0, u"LN"}, {0, u"ENG"}), "(none)");
}

TEST(ResourceFile, CutAnywhereYieldsOnlyWholeRecords) {
    const std::vector<std::byte> whole = SmallFile().m_bytes;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        ResourceReader reader(cut);
        std::size_t records = 0;
        while (const auto record = reader.Next()) {
            EXPECT_EQ(record->whole.data() + record->whole.size(), record->data.data() + record->data.size());
            ++records;
        }
        EXPECT_LT(records, 4u) << size;
    }
}

TEST(ResourceFile, WrongSizesEndTheWalk) {
    for (const std::uint32_t lie : {0u, 8u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        for (const std::size_t field : {0u, 4u}) {
            std::vector<std::byte> file = SmallFile().m_bytes;
            std::memcpy(file.data() + 32 + field, &lie, 4);
            ResourceReader reader(file);
            int records = 0;
            while (reader.Next() && records < 10) ++records;
            EXPECT_LE(records, 4);
        }
    }
}

}  // namespace
