// SPDX-License-Identifier: MIT
#include "gltf/json.h"

#include "gltf/error.h"

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
constexpr std::size_t kLargeObject = 16;  // members; going over fewer costs nothing

template <typename T>
std::string_view Shortest(T value, std::span<char, 40> buffer) {
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(value))
            throw Error(ErrorKind::kNumber, "", "", "a number to be written is not finite");
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), result.ptr};
}

}  // namespace

double Json::Number() const {
    if (!IsNumber()) return 0.0;
    double value = 0.0;
    // Too large never gets past the reader; too small leaves the 0.
    std::from_chars(m_text, m_text + m_size, value);
    return value;
}

std::optional<std::uint64_t> Json::AnyIndex() const {
    if (!IsNumber()) return std::nullopt;
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(m_text, m_text + m_size, value);
    if (error == std::errc() && end == m_text + m_size) return value;
    const double number = Number();
    if (!(number >= 0.0 && number <= 9007199254740992.0) || number != std::floor(number)) return std::nullopt;
    return static_cast<std::uint64_t>(number);
}

Json* Json::Find(std::string_view name) {
    return const_cast<Json*>(std::as_const(*this).Find(name));
}

const Json* Json::Find(std::string_view name) const {
    if (!IsObject()) return nullptr;
    // The ends tell most names apart without a call.
    for (const JsonMember& member : Members()) {
        const std::string_view other = member.Name();
        if (other.size() != name.size()) continue;
        if (name.empty() || (other.back() == name.back() && other == name)) return &member.value;
    }
    return nullptr;
}

bool Json::EraseMember(std::string_view name) {
    const std::uint32_t before = m_size;
    FilterMembers([&](const JsonMember& member) { return member.Name() != name; });
    return m_size != before;
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

Json JsonTree::Store(Json::Type type, std::string_view text) {
    char* copy = static_cast<char*>(Allocate(text.size()));
    std::copy(text.begin(), text.end(), copy);
    Json value;
    value.m_type = type;
    value.m_text = copy;
    value.m_size = static_cast<std::uint32_t>(text.size());
    return value;
}

Json JsonTree::MakeString(std::string_view text) {
    return Store(Json::Type::kString, text);
}

Json JsonTree::MakeNumber(double value) {
    char buffer[40];
    return Store(Json::Type::kNumber, Shortest(value, buffer));
}

Json JsonTree::MakeNumber(float value) {
    char buffer[40];
    return Store(Json::Type::kNumber, Shortest(value, buffer));
}

Json JsonTree::MakeIndex(std::uint64_t value) {
    char buffer[40];
    return Store(Json::Type::kNumber, Shortest(value, buffer));
}

Json JsonTree::MakeNumbers(std::span<const float> values) {
    Json array = MakeArray();
    for (float value : values) Append(array, MakeNumber(value));
    return array;
}

Json JsonTree::MakeBool(bool value) {
    Json json;
    json.m_type = value ? Json::Type::kTrue : Json::Type::kFalse;
    return json;
}

Json JsonTree::MakeArray() {
    Json json;
    json.m_type = Json::Type::kArray;
    return json;
}

Json JsonTree::MakeObject() {
    Json json;
    json.m_type = Json::Type::kObject;
    return json;
}

// Makes room for one further slot of slotSize bytes and returns where the slots stand now.
Json* JsonTree::Grow(Json& container, std::size_t slotSize) {
    const std::size_t size = container.m_size;
    const std::size_t room = container.m_room == Json::kExact ? size : std::size_t{1} << container.m_room;
    if (size < room) return container.m_items;
    const std::size_t wider = std::bit_ceil(std::max<std::size_t>(size + 1, 4));
    void* slots = Allocate(wider * slotSize);
    if (size != 0) std::memcpy(slots, container.m_items, size * slotSize);
    container.m_room = static_cast<std::uint8_t>(std::countr_zero(wider));
    return static_cast<Json*>(slots);
}

Json& JsonTree::Append(Json& array, Json item) {
    array.m_items = Grow(array, sizeof(Json));
    return *new (array.m_items + array.m_size++) Json(item);
}

Json& JsonTree::Member(Json& object, std::string_view name) {
    if (Json* found = object.Find(name)) return *found;
    m_additions += object.m_size >= kLargeObject;
    object.m_members = reinterpret_cast<JsonMember*>(Grow(object, sizeof(JsonMember)));
    return (new (object.m_members + object.m_size++) JsonMember{MakeString(name), Json()})->value;
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
    Json copy = source;
    copy.m_room = Json::kExact;
    if (source.IsNumber() || source.IsString()) return Store(source.m_type, source.Text());
    if (source.IsArray()) {
        copy.m_items = static_cast<Json*>(Allocate(source.m_size * sizeof(Json)));
        for (std::uint32_t i = 0; i < source.m_size; ++i)
            new (copy.m_items + i) Json(Clone(source.m_items[i]));
    } else if (source.IsObject()) {
        copy.m_members = static_cast<JsonMember*>(Allocate(source.m_size * sizeof(JsonMember)));
        for (std::uint32_t i = 0; i < source.m_size; ++i) {
            const JsonMember& member = source.m_members[i];
            new (copy.m_members + i) JsonMember{Clone(member.key), Clone(member.value)};
        }
    }
    return copy;
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
