// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr::gltf {

inline constexpr unsigned kMaxJsonDepth = 128;  // real documents stay below 20; walks may recurse this deep

struct JsonMember;

// A JSON value of 16 bytes whose content lives in the JsonTree it came from. Numbers keep the text they
// were written with, so that what is not changed goes out as it came. Copying a Json copies the handle, not
// the content. References to items and members hold until their container gets a further element.
class Json {
public:
    enum class Type : std::uint8_t { kNull, kFalse, kTrue, kNumber, kString, kArray, kObject };

    Json() = default;

    Type GetType() const { return m_type; }
    bool IsBool() const { return m_type == Type::kFalse || m_type == Type::kTrue; }
    bool IsNumber() const { return m_type == Type::kNumber; }
    bool IsString() const { return m_type == Type::kString; }
    bool IsArray() const { return m_type == Type::kArray; }
    bool IsObject() const { return m_type == Type::kObject; }

    // The value, or the neutral one (false, 0, empty) when it is of another type.
    bool Bool() const { return m_type == Type::kTrue; }
    double Number() const;
    std::string_view String() const { return IsString() ? Text() : std::string_view(); }
    std::string_view NumberText() const { return IsNumber() ? Text() : std::string_view(); }

    // A number that is whole and at least 0 (3, also 3.0), else nothing.
    std::optional<std::uint64_t> Index() const {
        // Nearly all are written with a few digits and nothing else.
        constexpr std::uint32_t kFewDigits = 9;
        if (m_type != Type::kNumber || m_size > kFewDigits) return AnyIndex();
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < m_size; ++i) {
            const auto digit = static_cast<std::uint32_t>(m_text[i]) - '0';
            if (digit > 9) return AnyIndex();
            value = value * 10 + digit;
        }
        return value;
    }

    // Items of an array, members of an object; empty for other types.
    std::span<Json> Items() { return {IsArray() ? m_items : nullptr, IsArray() ? m_size : 0}; }
    std::span<const Json> Items() const { return {IsArray() ? m_items : nullptr, IsArray() ? m_size : 0}; }
    std::span<JsonMember> Members();
    std::span<const JsonMember> Members() const;

    // The member of that name, or null (also when this is no object).
    Json* Find(std::string_view name);
    const Json* Find(std::string_view name) const;

    // Takes out the member of that name; says whether there was one.
    bool EraseMember(std::string_view name);
    // Keeps the items or members for which `keep` holds, in order.
    template <typename Keep>
    void FilterItems(Keep keep);
    template <typename Keep>
    void FilterMembers(Keep keep);

private:
    friend class JsonTree;
    friend class JsonBuilder;

    static constexpr std::uint8_t kExact = 0xFF;  // capacity equals size

    std::string_view Text() const { return {m_text, m_size}; }
    std::optional<std::uint64_t> AnyIndex() const;

    union {
        const char* m_text = nullptr;
        Json* m_items;
        JsonMember* m_members;
    };
    std::uint32_t m_size = 0;
    Type m_type = Type::kNull;
    std::uint8_t m_room = kExact;  // capacity as a power of two, or kExact
};

struct JsonMember {
    Json key;
    Json value;

    std::string_view Name() const { return key.String(); }
};

// What an earlier look for a member of an object found, so that looking again need not go over a large
// object.
struct JsonFind {
    std::uint32_t position = 0;
    // The members that held none of the name, and how many had been added to large objects by then.
    const JsonMember* absentIn = nullptr;
    std::uint32_t absentSize = 0;
    std::size_t additions = 0;
};

// Owns the storage of a document's values. Storage that an edit leaves unused goes with the tree.
class JsonTree {
public:
    JsonTree() = default;
    JsonTree(JsonTree&&) noexcept = default;
    JsonTree& operator=(JsonTree&&) noexcept = default;

    Json root;

    // Reads `text`, size bytes with one more byte behind them that may be written; the text is changed in
    // place and must live as long as the tree. Throws Error (kSyntax, `file`, "byte N").
    void Parse(char* text, std::size_t size, std::string_view file);
    // Reads a value from text that is copied; for building content from literals.
    Json Build(std::string_view text);

    Json MakeString(std::string_view text);
    // The shortest text that reads back as the same number. Throws Error (kNumber) unless it is finite.
    Json MakeNumber(double value);
    Json MakeNumber(float value);
    Json MakeIndex(std::uint64_t value);
    Json MakeNumbers(std::span<const float> values);
    static Json MakeBool(bool value);
    static Json MakeArray();
    static Json MakeObject();

    // The member of that name of `object`, added as null when it is not there.
    Json& Member(Json& object, std::string_view name);
    Json& Append(Json& array, Json item);

    // The member of that name, or null; `find` belongs to this object and name.
    Json* Find(Json& object, std::string_view name, JsonFind& find);
    const Json* Find(const Json& object, std::string_view name, const JsonFind& find) const;

    // A copy of the content, from this or another tree.
    Json Clone(const Json& source);

    // Bytes that the storage takes.
    std::size_t Size() const { return m_size; }

private:
    friend class JsonBuilder;

    void* Allocate(std::size_t bytes);
    Json Store(Json::Type type, std::string_view text);
    Json* Grow(Json& container, std::size_t slotSize);

    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::byte* m_free = nullptr;
    std::size_t m_left = 0;
    std::size_t m_size = 0;
    std::size_t m_additions = 0;  // of members to large objects
};

// Text of a value. `pretty`: two spaces a level, arrays of plain values on one line.
std::string WriteJson(const Json& value, bool pretty);
// The same, piece by piece: the text never stands in memory as a whole. level: how deep in a greater text the
// value stands.
using JsonSink = std::function<void(std::string_view piece)>;
void WriteJson(const Json& value, bool pretty, const JsonSink& sink, std::size_t level = 0);

// Equal content: members in any order, numbers by value.
bool EqualJson(const Json& a, const Json& b);

inline std::span<JsonMember> Json::Members() {
    return {IsObject() ? m_members : nullptr, IsObject() ? m_size : 0};
}

inline std::span<const JsonMember> Json::Members() const {
    return {IsObject() ? m_members : nullptr, IsObject() ? m_size : 0};
}

template <typename Keep>
void Json::FilterItems(Keep keep) {
    std::uint32_t kept = 0;
    for (Json& item : Items())
        if (keep(item)) m_items[kept++] = item;
    if (IsArray()) m_size = kept;
}

template <typename Keep>
void Json::FilterMembers(Keep keep) {
    std::uint32_t kept = 0;
    for (JsonMember& member : Members())
        if (keep(member)) m_members[kept++] = member;
    if (IsObject()) m_size = kept;
}

}  // namespace zr::gltf
