// SPDX-License-Identifier: MIT
#include "gltf/json.h"

#include "gltf/error.h"
#include "gltf/same_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace zr::gltf {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;
constexpr std::size_t kLargeObject = 16;  // members; scanning fewer is cheap

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

void CheckFinite(double value) {
    if (!std::isfinite(value))
        throw Error(ErrorKind::kNumber, "", "", "a number to be written is not finite");
}

}  // namespace

double Json::Number() const {
    if (!IsNumber()) return 0.0;
    if (IsDecimal()) {
        const double size = static_cast<double>(m_word >> kDigitsShift) / kPowersOfTen[Places()];
        return (m_word & kNegative) != 0 ? -size : size;
    }
    double value = 0.0;
    // The reader rejects numbers that are too large; those too small stay 0.
    const std::string_view text = Text();
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<std::uint64_t> Json::AnyIndex() const {
    if (!IsNumber()) return std::nullopt;
    if (!IsDecimal()) {
        std::uint64_t value = 0;
        const std::string_view text = Text();
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc() && end == text.data() + text.size()) return std::min(value, kMostIndex);
    }
    const double number = Number();
    if (!(number >= 0.0 && number <= 9007199254740992.0) || number != std::floor(number)) return std::nullopt;
    return std::min(static_cast<std::uint64_t>(number), kMostIndex);
}

std::optional<Json> Json::DecimalOf(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative) text.remove_prefix(1);
    std::uint64_t digits = 0;
    std::size_t point = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digit = static_cast<std::uint64_t>(text[i]) - '0';
        if (text[i] == '.') {
            point = i + 1;
        } else if (digit > 9 || (digits = digits * 10 + digit) >= kEndOfDigits) {
            return std::nullopt;
        }
    }
    const std::size_t places = text.size() - point;
    if (places > kMostPlaces) return std::nullopt;
    return Decimal(digits, static_cast<unsigned>(places), isNegative);
}

std::string_view Json::NumberText(NumberRoom& room) const {
    if (!IsNumber()) return {};
    if (!IsDecimal()) return Text();
    const unsigned places = Places();
    char* end = room.data();
    if ((m_word & kNegative) != 0) *end++ = '-';
    char* const first = end;
    end = std::to_chars(first, room.data() + room.size(), m_word >> kDigitsShift).ptr;
    if (places != 0) {
        // At least one digit precedes the point.
        const auto count = static_cast<unsigned>(end - first);
        if (count <= places) {
            const unsigned missing = places + 1 - count;
            std::copy_backward(first, end, end + missing);
            std::fill_n(first, missing, '0');
            end += missing;
        }
        std::copy_backward(end - places, end, end + 1);
        *(end - places) = '.';
        ++end;
    }
    return {room.data(), static_cast<std::size_t>(end - room.data())};
}

Json* Json::Find(std::string_view name) {
    return const_cast<Json*>(std::as_const(*this).Find(name));
}

const Json* Json::Find(std::string_view name) const {
    if (!IsObject()) return nullptr;
    if (name.empty() || name.size() >= kLongText) {
        for (const JsonMember& member : Members())
            if (member.Name() == name) return &member.value;
        return nullptr;
    }
    // Most names differ in size.
    const std::uint64_t word =
        std::uint64_t{name.size()} << kTypeBits | static_cast<std::uint64_t>(Type::kString);
    constexpr std::uint64_t kWord = (std::uint64_t{1} << kAddressShift) - 1;
    for (const JsonMember& member : Members()) {
        if ((member.key.m_word & kWord) != word) continue;
        const char* const other = member.key.Content<const char>();
        if (SameText(other, name.data(), name.size())) return &member.value;
    }
    return nullptr;
}

bool Json::EraseMember(std::string_view name) {
    const std::size_t before = Members().size();
    FilterMembers([&](const JsonMember& member) { return member.Name() != name; });
    return Members().size() != before;
}

void* JsonTree::Allocate(std::size_t bytes) {
    bytes = (bytes + 7) & ~std::size_t{7};
    if (bytes > m_left) {
        const std::size_t size = std::max(bytes, kBlock);
        m_blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        m_size += size;
        // Oversized content gets its own block; the current one stays in use.
        if (size > kBlock) return m_blocks.back().get();
        m_free = m_blocks.back().get();
        m_left = size;
    }
    void* place = m_free;
    m_free += bytes;
    m_left -= bytes;
    return place;
}

Json JsonTree::Store(Json::Type type, std::string_view text) {
    char* const copy = static_cast<char*>(Allocate(text.size()));
    std::copy(text.begin(), text.end(), copy);
    if (text.size() < Json::kLongText) return Json(type, copy, text.size());
    return Json(type, new (Allocate(sizeof(std::string_view))) std::string_view(copy, text.size()),
                Json::kLongText);
}

Json JsonTree::ReadNumber(std::string_view text) {
    const auto decimal = Json::DecimalOf(text);
    return decimal ? *decimal : Store(Json::Type::kNumber, text);
}

Json JsonTree::MakeString(std::string_view text) {
    return Store(Json::Type::kString, text);
}

template <typename T>
Json JsonTree::Number(T value) {
    Json::NumberRoom text{};
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return ReadNumber({text.data(), static_cast<std::size_t>(end - text.data())});
}

Json JsonTree::MakeNumber(double value) {
    CheckFinite(value);
    return Number(value);
}

Json JsonTree::MakeNumber(float value) {
    CheckFinite(value);
    return Number(value);
}

Json JsonTree::MakeIndex(std::uint64_t value) {
    return value < Json::kEndOfDigits ? Json::Decimal(value) : Number(value);
}

Json JsonTree::MakeNumbers(std::span<const float> values) {
    Json array = MakeArray();
    for (float value : values) Append(array, MakeNumber(value));
    return array;
}

Json JsonTree::MakeBool(bool value) {
    return Json(value ? Json::Type::kTrue : Json::Type::kFalse);
}

Json JsonTree::MakeArray() {
    return Json(Json::Type::kArray);
}

Json JsonTree::MakeObject() {
    return Json(Json::Type::kObject);
}

Json JsonTree::Container(Json::Type type, const void* slots, std::size_t size, std::size_t room,
                         std::size_t slotSize) {
    if (room == 0) return Json(type);
    auto* header = new (Allocate(sizeof(Json::Header) + room * slotSize))
        Json::Header{static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(room)};
    if (size != 0) std::memcpy(header + 1, slots, size * slotSize);
    return Json(type, header);
}

template <typename T>
T& JsonTree::AddSlot(Json& container, const T& slot) {
    const std::span<T> slots = container.Slots<T>();
    auto* header = container.Content<Json::Header>();
    if (header == nullptr || header->size == header->room) {
        const std::size_t room = std::bit_ceil(std::max<std::size_t>(slots.size() + 1, 4));
        const bool holdsExtensions = container.HoldsExtensions();
        container = Container(container.GetType(), slots.data(), slots.size(), room, sizeof(T))
                        .Extended(holdsExtensions);
        header = container.Content<Json::Header>();
    }
    ++header->size;
    return *new (&container.Slots<T>().back()) T(slot);
}

Json& JsonTree::Append(Json& array, Json item) {
    if (item.HoldsExtensions() && !array.HoldsExtensions()) m_notesExtensions = false;
    return AddSlot(array, item);
}

Json& JsonTree::Member(Json& object, std::string_view name) {
    if (Json* found = object.Find(name)) return *found;
    m_additions += object.Members().size() >= kLargeObject;
    if (name == kExtensions) m_notesExtensions = false;
    return AddSlot(object, JsonMember{MakeString(name), Json()}).value;
}

const Json* JsonTree::Find(const Json& object, std::string_view name, const JsonFind& find) const {
    const auto members = object.Members();
    const auto isIt = [name](std::string_view other) {
        return other.size() == name.size() && SameText(other.data(), name.data(), name.size());
    };
    if (find.position < members.size() && isIt(members[find.position].Name()))
        return &members[find.position].value;
    const bool isAbsent = find.absentIn == members.data() && find.absentSize == members.size() &&
                          find.additions == m_additions && members.size() >= kLargeObject;
    return isAbsent ? nullptr : object.Find(name);
}

Json* JsonTree::Find(Json& object, std::string_view name, JsonFind& find) {
    const auto members = object.Members();
    if (Find(std::as_const(object), name, std::as_const(find)) == nullptr) {
        find = {0, members.data(), static_cast<std::uint32_t>(members.size()), m_additions};
        return nullptr;
    }
    const auto isIt = [name](const JsonMember& member) { return member.Name() == name; };
    if (find.position >= members.size() || !isIt(members[find.position]))
        find.position =
            static_cast<std::uint32_t>(std::find_if(members.begin(), members.end(), isIt) - members.begin());
    return &members[find.position].value;
}

Json JsonTree::Clone(const Json& source) {
    if (source.HoldsExtensions()) m_notesExtensions = false;
    if (source.HasTag(Json::Type::kNumber) || source.IsString())
        return Store(source.GetType(), source.Text());
    if (source.IsArray()) {
        const auto items = source.Items();
        const Json copy =
            Container(Json::Type::kArray, items.data(), items.size(), items.size(), sizeof(Json));
        for (Json& item : copy.Slots<Json>()) item = Clone(item);
        return copy;
    }
    if (source.IsObject()) {
        const auto members = source.Members();
        const Json copy = Container(Json::Type::kObject, members.data(), members.size(), members.size(),
                                    sizeof(JsonMember));
        for (JsonMember& member : copy.Slots<JsonMember>()) member = {Clone(member.key), Clone(member.value)};
        return copy;
    }
    return source;
}

bool EqualJson(const Json& a, const Json& b) {
    if (a.GetType() != b.GetType()) return false;
    if (a.IsString()) return a.String() == b.String();
    if (a.IsNumber()) return a.Number() == b.Number();
    if (a.IsArray()) {
        return std::equal(a.Items().begin(), a.Items().end(), b.Items().begin(), b.Items().end(), EqualJson);
    }
    const auto left = a.Members(), right = b.Members();
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i) {
        const Json* other = right[i].Name() == left[i].Name() ? &right[i].value : b.Find(left[i].Name());
        if (other == nullptr || !EqualJson(left[i].value, *other)) return false;
    }
    return true;
}

}  // namespace zr::gltf
