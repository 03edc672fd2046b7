// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr::gltf {

inline constexpr std::string_view kExtensions = "extensions";
inline constexpr unsigned kMaxJsonDepth = 128;  // real documents stay below 20; walks may recurse this deep

struct JsonMember;

// A JSON value of 8 bytes whose content lives in the JsonTree it came from. Numbers are written with the text
// they were read from, so that unchanged content is written as it was read. Copying a Json copies the handle,
// not the content. References to items and members are valid until their container gets another element.
class Json {
public:
    enum class Type : std::uint8_t { kNull, kFalse, kTrue, kNumber, kString, kArray, kObject };

    Json() = default;

    Type GetType() const { return IsNumber() ? Type::kNumber : static_cast<Type>(m_word & kTypeMask); }
    bool IsBool() const { return GetType() == Type::kFalse || GetType() == Type::kTrue; }
    bool IsNumber() const { return HasTag(Type::kNumber) || IsDecimal(); }
    bool IsString() const { return HasTag(Type::kString); }
    bool IsArray() const { return HasTag(Type::kArray); }
    bool IsObject() const { return HasTag(Type::kObject); }

    // The value, or the neutral one (false, 0, empty) when it is of another type.
    bool Bool() const { return HasTag(Type::kTrue); }
    double Number() const;
    std::string_view String() const { return IsString() ? Text() : std::string_view(); }
    // The text of a number, stored in the tree or else written to `room`; empty for other types.
    using NumberRoom = std::array<char, 32>;
    std::string_view NumberText(NumberRoom& room) const;

    // A whole number of at least 0 (3, also 3.0), clamped to the largest std::size_t; otherwise nothing.
    std::optional<std::uint64_t> Index() const {
        constexpr std::uint64_t kNotDigits = (std::uint64_t{1} << kDigitsShift) - 1;
        if ((m_word & kNotDigits) == kDecimal) return std::min(m_word >> kDigitsShift, kMostIndex);
        return AnyIndex();
    }

    // Items of an array, members of an object; empty for other types.
    std::span<Json> Items() { return IsArray() ? Slots<Json>() : std::span<Json>(); }
    std::span<const Json> Items() const { return IsArray() ? Slots<Json>() : std::span<Json>(); }
    std::span<JsonMember> Members();
    std::span<const JsonMember> Members() const;

    // Whether the reader found a member "extensions" in this value or below it. Reliable while
    // JsonTree::NotesExtensions(); members erased since may still count.
    bool HoldsExtensions() const { return (IsArray() || IsObject()) && (m_word & kExtended) != 0; }

    // The member of that name, or null (also when this is not an object).
    Json* Find(std::string_view name);
    const Json* Find(std::string_view name) const;

    // Removes the member of that name; returns whether there was one.
    bool EraseMember(std::string_view name);
    // Keeps the items or members for which `keep` holds, in order.
    template <typename Keep>
    void FilterItems(Keep keep);
    template <typename Keep>
    void FilterMembers(Keep keep);

private:
    friend class JsonTree;
    friend class JsonBuilder;

    // Documents have millions of values, and visiting them costs what their memory costs. So a value is one
    // word: the type, the size of a text, and the address of the content, which fits 48 bits.
    static constexpr unsigned kTypeBits = 3, kSizeBits = 13, kAddressShift = kTypeBits + kSizeBits;
    static constexpr std::uint64_t kTypeMask = (1U << kTypeBits) - 1;
    static constexpr std::uint64_t kLongText = (1U << kSizeBits) - 1;  // the content is a std::string_view

    // Of a container, in place of a text's size: see HoldsExtensions.
    static constexpr std::uint64_t kExtended = std::uint64_t{1} << kTypeBits;

    // Nearly all numbers have few digits. The word itself then holds them as an integer, with the sign and
    // the number of decimal places, from which the text follows; reading it touches no other memory. Integer
    // and power of ten are exact as doubles, so their quotient is rounded once, correctly.
    static constexpr std::uint64_t kDecimal = kTypeMask;  // in place of a type
    static constexpr std::uint64_t kNegative = std::uint64_t{1} << kTypeBits;
    static constexpr unsigned kPlacesShift = kTypeBits + 1, kPlacesBits = 5;
    static constexpr unsigned kDigitsShift = kPlacesShift + kPlacesBits;
    static constexpr std::uint64_t kEndOfDigits = std::uint64_t{1} << 53;
    static constexpr unsigned kMostPlaces = 22;  // the largest power of ten that a double holds

    // Precedes the items or members; an empty container may have no content at all.
    struct Header {
        std::uint32_t size;
        std::uint32_t room;
    };

    static Json Decimal(std::uint64_t digits, unsigned places = 0, bool isNegative = false) {
        Json number;
        number.m_word = digits << kDigitsShift | std::uint64_t{places} << kPlacesShift |
                        (isNegative ? kNegative : 0) | kDecimal;
        return number;
    }
    // Nothing for a text that does not fit, such as one with an exponent.
    static std::optional<Json> DecimalOf(std::string_view text);

    explicit Json(Type type, const void* content = nullptr, std::uint64_t textSize = 0)
        : m_word(std::uint64_t{reinterpret_cast<std::uintptr_t>(content)} << kAddressShift |
                 textSize << kTypeBits | static_cast<std::uint64_t>(type)) {
        assert(Content<const void>() == content);
    }

    bool HasTag(Type type) const { return (m_word & kTypeMask) == static_cast<std::uint64_t>(type); }
    Json Extended(bool holdsExtensions) const {
        Json container = *this;
        if (holdsExtensions) container.m_word |= kExtended;
        return container;
    }
    bool IsDecimal() const { return (m_word & kTypeMask) == kDecimal; }
    unsigned Places() const {
        return static_cast<unsigned>(m_word >> kPlacesShift & ((1U << kPlacesBits) - 1));
    }

    template <typename T>
    T* Content() const {
        return reinterpret_cast<T*>(static_cast<std::uintptr_t>(m_word >> kAddressShift));
    }
    template <typename T>
    std::span<T> Slots() const {
        Header* const header = Content<Header>();
        if (header == nullptr) return {};
        return {reinterpret_cast<T*>(header + 1), header->size};
    }
    // Of a string, or of a number that is not a decimal.
    std::string_view Text() const {
        const std::uint64_t size = m_word >> kTypeBits & kLongText;
        if (size == kLongText) return *Content<const std::string_view>();
        return {Content<const char>(), static_cast<std::size_t>(size)};
    }
    static constexpr std::uint64_t kMostIndex = std::numeric_limits<std::size_t>::max();
    std::optional<std::uint64_t> AnyIndex() const;

    std::uint64_t m_word = 0;
};

struct JsonMember {
    Json key;
    Json value;

    std::string_view Name() const { return key.String(); }
};

// The result of an earlier search for a member, so that searching again need not scan a large object.
struct JsonFind {
    std::uint32_t position = 0;
    // The members among which the name was missing, and how many had been added to large objects by then.
    const JsonMember* absentIn = nullptr;
    std::uint32_t absentSize = 0;
    std::size_t additions = 0;
};

// Owns the storage of a document's values. Storage that edits leave unused is freed with the tree.
class JsonTree {
public:
    JsonTree() = default;
    JsonTree(JsonTree&&) noexcept = default;
    JsonTree& operator=(JsonTree&&) noexcept = default;

    Json root;

    // Parses `text`: size bytes, followed by one more writable byte. The text is modified in place and not
    // needed afterwards. Throws Error (kSyntax, `file`, "byte N").
    void Parse(char* text, std::size_t size, std::string_view file);
    // Parses a value; for building content from literals.
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

    // The member of that name of `object`, added as null if missing.
    Json& Member(Json& object, std::string_view name);
    Json& Append(Json& array, Json item);

    // The member of that name, or null. `find` must serve this object and name only.
    Json* Find(Json& object, std::string_view name, JsonFind& find);
    const Json* Find(const Json& object, std::string_view name, const JsonFind& find) const;

    // A copy of the content, from this or another tree.
    Json Clone(const Json& source);

    // Whether Json::HoldsExtensions is reliable below `root`: no extensions were added since it was parsed.
    bool NotesExtensions() const { return m_notesExtensions; }

    // Bytes of storage allocated.
    std::size_t Size() const { return m_size; }

private:
    friend class JsonBuilder;

    void* Allocate(std::size_t bytes);
    // A copy of the text.
    Json Store(Json::Type type, std::string_view text);
    Json ReadNumber(std::string_view text);
    template <typename T>
    Json Number(T value);
    // A container of `size` slots of `slotSize` bytes each, with room for `room`, copied from `slots`.
    Json Container(Json::Type type, const void* slots, std::size_t size, std::size_t room,
                   std::size_t slotSize);
    template <typename T>
    T& AddSlot(Json& container, const T& slot);

    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::byte* m_free = nullptr;
    std::size_t m_left = 0;
    std::size_t m_size = 0;
    std::size_t m_additions = 0;  // of members to large objects
    bool m_notesExtensions = true;
};

// Text of a value. `pretty`: two spaces a level, arrays of plain values on one line.
std::string WriteJson(const Json& value, bool pretty);
// The same in pieces; the text is never in memory as a whole. `level`: the value's depth in a larger text.
using JsonSink = std::function<void(std::string_view piece)>;
void WriteJson(const Json& value, bool pretty, const JsonSink& sink, std::size_t level = 0);

// Equal content: members in any order, numbers by value.
bool EqualJson(const Json& a, const Json& b);

inline std::span<JsonMember> Json::Members() {
    return IsObject() ? Slots<JsonMember>() : std::span<JsonMember>();
}

inline std::span<const JsonMember> Json::Members() const {
    return IsObject() ? Slots<JsonMember>() : std::span<JsonMember>();
}

template <typename Keep>
void Json::FilterItems(Keep keep) {
    std::uint32_t kept = 0;
    const auto items = Items();
    for (Json& item : items)
        if (keep(item)) items[kept++] = item;
    if (!items.empty()) Content<Header>()->size = kept;
}

template <typename Keep>
void Json::FilterMembers(Keep keep) {
    std::uint32_t kept = 0;
    const auto members = Members();
    for (JsonMember& member : members)
        if (keep(member)) members[kept++] = member;
    if (!members.empty()) Content<Header>()->size = kept;
}

}  // namespace zr::gltf
