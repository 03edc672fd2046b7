// SPDX-License-Identifier: MIT
#include "gltf/json.h"

#include "gltf/error.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace zr::gltf {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;
constexpr std::size_t kLargeObject = 16;  // members; going over fewer costs nothing
constexpr std::size_t kLongestNumber = 40;

void CheckFinite(double value) {
    if (!std::isfinite(value))
        throw Error(ErrorKind::kNumber, "", "", "a number to be written is not finite");
}

}  // namespace

double Json::Number() const {
    if (!IsNumber()) return 0.0;
    double value = 0.0;
    // The reader rejects numbers that are too large; those too small stay 0.
    const std::string_view text = Text();
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<std::uint64_t> Json::AnyIndex() const {
    if (!IsNumber()) return std::nullopt;
    constexpr std::uint64_t kMost = std::numeric_limits<std::size_t>::max();
    std::uint64_t value = 0;
    const std::string_view text = Text();
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc() && end == text.data() + text.size()) return std::min(value, kMost);
    const double number = Number();
    if (!(number >= 0.0 && number <= 9007199254740992.0) || number != std::floor(number)) return std::nullopt;
    return std::min(static_cast<std::uint64_t>(number), kMost);
}

Json* Json::Find(std::string_view name) {
    return const_cast<Json*>(std::as_const(*this).Find(name));
}

const Json* Json::Find(std::string_view name) const {
    if (!IsObject()) return nullptr;
    // First and last characters tell most names apart without a call.
    for (const JsonMember& member : Members()) {
        const std::string_view other = member.Name();
        if (other.size() != name.size()) continue;
        if (name.empty() || (other.back() == name.back() && other == name)) return &member.value;
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
        // A block of its own leaves the current one in use.
        if (size > kBlock) return m_blocks.back().get();
        m_free = m_blocks.back().get();
        m_left = size;
    }
    void* place = m_free;
    m_free += bytes;
    m_left -= bytes;
    return place;
}

Json JsonTree::Text(Json::Type type, std::string_view text) {
    if (text.size() < Json::kLongText) return Json(type, text.data(), text.size());
    return Json(type, new (Allocate(sizeof text)) std::string_view(text), Json::kLongText);
}

Json JsonTree::Store(Json::Type type, std::string_view text) {
    char* copy = static_cast<char*>(Allocate(text.size()));
    std::copy(text.begin(), text.end(), copy);
    return Text(type, {copy, text.size()});
}

Json JsonTree::MakeString(std::string_view text) {
    return Store(Json::Type::kString, text);
}

// Written where it is to stand; the room that is left over is free again.
template <typename T>
Json JsonTree::Number(T value) {
    char* const text = static_cast<char*>(Allocate(kLongestNumber));
    const auto size = static_cast<std::size_t>(std::to_chars(text, text + kLongestNumber, value).ptr - text);
    const std::size_t left = (kLongestNumber - size) & ~std::size_t{7};
    m_free -= left;
    m_left += left;
    return Text(Json::Type::kNumber, {text, size});
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
    return Number(value);
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
        container = Container(container.GetType(), slots.data(), slots.size(), room, sizeof(T));
        header = container.Content<Json::Header>();
    }
    ++header->size;
    return *new (&container.Slots<T>().back()) T(slot);
}

Json& JsonTree::Append(Json& array, Json item) {
    return AddSlot(array, item);
}

Json& JsonTree::Member(Json& object, std::string_view name) {
    if (Json* found = object.Find(name)) return *found;
    m_additions += object.Members().size() >= kLargeObject;
    return AddSlot(object, JsonMember{MakeString(name), Json()}).value;
}

const Json* JsonTree::Find(const Json& object, std::string_view name, const JsonFind& find) const {
    const auto members = object.Members();
    if (find.position < members.size() && members[find.position].Name() == name)
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
    if (source.IsNumber() || source.IsString()) return Store(source.GetType(), source.Text());
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
    if (a.IsNumber()) return a.NumberText() == b.NumberText() || a.Number() == b.Number();
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
