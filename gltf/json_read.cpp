// SPDX-License-Identifier: MIT
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "gltf/error.h"
#include "gltf/json.h"
#include "gltf/same_text.h"

namespace zr::gltf {

// Receives the reader's events. Values of open containers wait on one stack and move into the tree when
// their container ends.
class JsonBuilder {
public:
    explicit JsonBuilder(JsonTree& tree) : m_tree(tree) {}

    const char* Refusal() const { return m_refusal; }
    Json Result() const { return m_values.front(); }

    bool Null() { return Push(Json()); }
    bool Bool(bool value) { return Push(JsonTree::MakeBool(value)); }
    bool RawNumber(const char* text, rapidjson::SizeType size, bool) {
        return Push(m_tree.ReadNumber({text, size}));
    }
    bool String(const char* text, rapidjson::SizeType size, bool) {
        return Push(m_tree.MakeString({text, size}));
    }
    bool Key(const char* text, rapidjson::SizeType size, bool) {
        if (std::string_view(text, size) == kExtensions) m_extended.push_back(m_values.size());
        return Push(Name({text, size}));
    }
    bool StartObject() { return Open(); }
    bool StartArray() { return Open(); }

    bool EndArray(rapidjson::SizeType count) {
        --m_depth;
        return Push(Take(Json::Type::kArray, count, 1));
    }

    bool EndObject(rapidjson::SizeType count) {
        --m_depth;
        const Json object = Take(Json::Type::kObject, count, 2);
        if (Repeats(object)) return Refuse("an object has two members of the same name");
        return Push(object);
    }

    // Numbers arrive as text, so these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }

private:
    // There are few distinct names: equal ones share a text, unless another name took their slot meanwhile.
    Json Name(std::string_view text) {
        if (text.empty()) return m_tree.MakeString(text);
        const auto byte = [](char c) { return static_cast<unsigned char>(c); };
        Json& known = m_names[(text.size() + byte(text.front()) * std::size_t{7} +
                               byte(text.back()) * std::size_t{31}) %
                              kNames];
        const bool isKnown =
            known.String().size() == text.size() && SameText(known.String().data(), text.data(), text.size());
        if (!isKnown) known = m_tree.MakeString(text);
        return known;
    }

    bool Push(Json value) {
        m_values.push_back(value);
        return true;
    }

    bool Open() { return ++m_depth <= kMaxJsonDepth || Refuse("nested too deeply"); }

    bool Refuse(const char* why) {
        m_refusal = why;
        return false;
    }

    // Makes a container of the last values, `parts` for each of its slots.
    Json Take(Json::Type type, std::size_t count, std::size_t parts) {
        const std::size_t left = m_values.size() - count * parts;
        const Json container =
            m_tree.Container(type, m_values.data() + left, count, count, parts * sizeof(Json));
        m_values.resize(left);
        if (m_extended.empty() || m_extended.back() < left) return container;
        while (!m_extended.empty() && m_extended.back() >= left) m_extended.pop_back();
        m_extended.push_back(left);  // the container's own index
        return container.Extended(true);
    }

    static bool Repeats(const Json& object) {
        const auto members = object.Members();
        constexpr std::size_t kFew = 16;  // below this, comparing pairs is faster than a set
        if (members.size() <= kFew) {
            for (std::size_t i = 1; i < members.size(); ++i)
                for (std::size_t j = 0; j < i; ++j)
                    if (members[i].Name() == members[j].Name()) return true;
            return false;
        }
        std::unordered_set<std::string_view> seen;
        seen.reserve(members.size());
        return std::any_of(members.begin(), members.end(),
                           [&](const JsonMember& member) { return !seen.insert(member.Name()).second; });
    }

    static constexpr std::size_t kNames = 256;

    JsonTree& m_tree;
    std::vector<Json> m_values;
    std::vector<std::size_t> m_extended;  // indices of the keys "extensions" and of containers that hold some
    std::array<Json, kNames> m_names;
    unsigned m_depth = 0;
    const char* m_refusal = nullptr;
};

namespace {

// The reader does not check whether an allocation succeeded.
class CheckedAllocator {
public:
    [[maybe_unused]] static constexpr bool kNeedFree = true;

    void* Malloc(std::size_t size) { return size == 0 ? nullptr : ::operator new(size); }
    void* Realloc(void* old, std::size_t oldSize, std::size_t size) {
        void* const place = Malloc(size);
        if (place != nullptr && old != nullptr) std::memcpy(place, old, std::min(oldSize, size));
        Free(old);
        return place;
    }
    static void Free(void* place) { ::operator delete(place); }
};

// The reader consumes as many bytes as the first byte of a character announces, even beyond the end of the
// text.
bool EndsInsideCharacter(std::string_view text) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if (byte >= 0xC0) return back < (byte >= 0xF0 ? 4U : byte >= 0xE0 ? 3U : 2U);
    }
    return false;
}

}  // namespace

void JsonTree::Parse(char* text, std::size_t size, std::string_view file) {
    static_assert(sizeof(JsonMember) == 2 * sizeof(Json));
    if (size >= std::numeric_limits<std::uint32_t>::max())
        throw Error(ErrorKind::kLimit, file, "", "the JSON text has 4 GiB or more");
    if (EndsInsideCharacter({text, size}))
        throw Error(ErrorKind::kSyntax, file, Join("byte ", size), "the text ends inside a character");
    const char behind = std::exchange(text[size], '\0');
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const std::size_t skipped = std::string_view(text, size).starts_with(kByteOrderMark) ? 3 : 0;

    rapidjson::InsituStringStream stream(text + skipped);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, CheckedAllocator> reader;
    JsonBuilder builder(*this);
    constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag |
                                rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, builder);
    const auto fail = [&](std::size_t offset, const char* why) {
        throw Error(ErrorKind::kSyntax, file, Join("byte ", offset + skipped), why);
    };
    if (result.IsError()) {
        const char* why = builder.Refusal();
        fail(result.Offset(), why != nullptr ? why : rapidjson::GetParseError_En(result.Code()));
    }
    // The reader stops at a zero byte; only padding may follow one.
    for (std::size_t i = stream.Tell() + skipped; i < size; ++i)
        if (text[i] != '\0' && text[i] != ' ') fail(i - skipped, "text after a zero byte");
    text[size] = behind;
    root = builder.Result();
    m_notesExtensions = true;
}

Json JsonTree::Build(std::string_view text) {
    std::string copy(text);
    copy.push_back('\0');
    const Json kept = root;
    const bool notesExtensions = m_notesExtensions;
    Parse(copy.data(), text.size(), "");
    m_notesExtensions = notesExtensions && !root.HoldsExtensions();
    return std::exchange(root, kept);
}

}  // namespace zr::gltf
