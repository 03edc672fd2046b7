// SPDX-License-Identifier: MIT
#include "app/scene/content_ids.h"

#include <algorithm>

#include "base/text.h"
#include "gltf/accessor.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// The stored bytes of an element: equally sized blocks at a constant stride, and their format.
struct Blocks {
    const std::byte* first = nullptr;
    std::size_t size = 0;
    std::size_t stride = 0;
    std::size_t count = 0;
    std::uint32_t form = 0;

    // A run of bytes without gaps is one block.
    static Blocks Of(const std::byte* first, std::size_t size, std::size_t stride, std::size_t count,
                     std::uint32_t form) {
        if (size == stride) return {first, size * count, 0, 1, form};
        return {first, size, stride, count, form};
    }

    std::string_view Block(std::size_t i) const {
        return {reinterpret_cast<const char*>(first + i * stride), size};
    }
    std::size_t Bytes() const { return size * count; }

    std::uint64_t Hash() const {
        if (count == 1) return HashOf(Block(0));
        std::string gathered;
        gathered.reserve(Bytes());
        for (std::size_t i = 0; i < count; ++i) gathered += Block(i);
        return HashOf(gathered);
    }

    friend bool operator==(const Blocks& a, const Blocks& b) {
        if (a.form != b.form || a.Bytes() != b.Bytes()) return false;
        const Blocks& fine = a.count >= b.count ? a : b;
        const Blocks& coarse = a.count >= b.count ? b : a;
        if (fine.count == coarse.count) {
            for (std::size_t i = 0; i < fine.count; ++i)
                if (fine.Block(i) != coarse.Block(i)) return false;
            return true;
        }
        // Counts differ only if the coarse one is a single block of all elements.
        const std::string_view all = coarse.Block(0);
        for (std::size_t i = 0; i < fine.count; ++i)
            if (fine.Block(i) != all.substr(i * fine.size, fine.size)) return false;
        return true;
    }
};

// Nothing for an accessor that equals only itself.
std::optional<Blocks> AccessorBlocks(const gltf::Document& document, std::size_t index) {
    const Json& accessor = document.Elements(Kind::kAccessor)[index];
    const auto supplied = document.SuppliedBytes(index);
    const bool isStored = accessor.Find("sparse") == nullptr && accessor.Find("bufferView") != nullptr;
    if (!supplied && !isStored) return std::nullopt;
    const gltf::AccessorInfo info = gltf::Describe(document, index);
    // Padding between the columns of a matrix of small components is ignored.
    const bool hasGaps = info.ElementSize() != info.ComponentSize() * info.shape.Components();
    if (hasGaps) return std::nullopt;
    const auto form = static_cast<std::uint32_t>(info.component) << 8 | info.shape.rows << 4 |
                      info.shape.columns << 1 | static_cast<std::uint32_t>(info.normalized);
    if (supplied)
        return Blocks::Of(supplied->data(), info.ElementSize(), info.ElementSize(), info.count, form);
    const std::size_t view = IndexMember(accessor, "bufferView");
    const auto bytes = document.ViewBytes(view);
    if (!bytes) return std::nullopt;
    const std::size_t stride =
        IndexMember(document.Elements(Kind::kBufferView)[view], "byteStride", info.ElementSize());
    return Blocks::Of(bytes->data() + IndexMember(accessor, "byteOffset"), info.ElementSize(), stride,
                      info.count, form);
}

}  // namespace

ContentIds::ContentIds(const gltf::Document& document)
    : m_document(document), m_textures(document.Elements(Kind::kTexture).size()) {
    m_accessors.numbers.resize(document.Elements(Kind::kAccessor).size(), HashIndex::kNone);
    m_views.numbers.resize(document.Elements(Kind::kBufferView).size(), HashIndex::kNone);
}

// contentOf(index): the blocks, or nothing for content that cannot be read and equals only itself.
template <typename ContentOf>
std::uint32_t ContentIds::Number(Numbered& elements, std::size_t index, ContentOf contentOf) {
    std::uint32_t& number = elements.numbers[index];
    if (number != HashIndex::kNone) return number;
    number = static_cast<std::uint32_t>(index);
    const std::optional<Blocks> content = contentOf(index);
    if (!content) return number;
    const std::uint64_t hash = content->Hash();
    const std::uint32_t equal =
        elements.firsts.Find(hash, [&](std::uint32_t first) { return contentOf(first) == content; });
    if (equal != HashIndex::kNone) return number = equal;
    elements.firsts.Add(hash, number);
    return number;
}

std::uint32_t ContentIds::View(std::size_t index) {
    return Number(m_views, index, [&](std::size_t view) -> std::optional<Blocks> {
        const auto bytes = m_document.ViewBytes(view);
        if (!bytes) return std::nullopt;
        return Blocks::Of(bytes->data(), bytes->size(), bytes->size(), 1, 0);
    });
}

std::uint32_t ContentIds::Accessor(std::size_t index) {
    return Number(m_accessors, index,
                  [&](std::size_t accessor) { return AccessorBlocks(m_document, accessor); });
}

// Ignores the name and the order of members; content takes the place of indices.
std::uint32_t ContentIds::Resolved(std::string_view kind, const Json& element) {
    std::vector<std::string> parts;
    for (const gltf::JsonMember& member : element.Members()) {
        const std::string_view name = member.Name();
        if (name == "name") continue;
        if (name == "bufferView")
            parts.push_back(Join("view ", View(*member.value.Index())));
        else if (name == "source")
            parts.push_back(
                Join("image ", Resolved("image", m_document.Elements(Kind::kImage)[*member.value.Index()])));
        else if (name == "sampler")
            parts.push_back(
                Join("sampler ", Canonical(m_document.Elements(Kind::kSampler)[*member.value.Index()])));
        else
            parts.push_back(Join(name, "=", gltf::WriteJson(member.value, false)));
    }
    std::sort(parts.begin(), parts.end());
    std::string content(kind);
    for (const std::string& part : parts) content += Join(" ", part, ";");
    return Text(content);
}

std::uint32_t ContentIds::Texture(std::size_t index) {
    if (!m_textures[index])
        m_textures[index] = Resolved("texture", m_document.Elements(Kind::kTexture)[index]);
    return *m_textures[index];
}

std::string ContentIds::Canonical(const Json& value) {
    std::string out;
    Append(value, {}, true, out);
    return out;
}

void ContentIds::Append(const Json& value, std::string_view holder, bool outermost, std::string& out) {
    if (value.IsArray()) {
        out += '[';
        for (const Json& item : value.Items()) {
            Append(item, {}, false, out);
            out += ',';
        }
        out += ']';
    } else if (value.IsObject()) {
        std::vector<const gltf::JsonMember*> members;
        for (const gltf::JsonMember& member : value.Members())
            if (!outermost || member.Name() != "name") members.push_back(&member);
        std::sort(members.begin(), members.end(),
                  [](const auto* a, const auto* b) { return a->Name() < b->Name(); });
        out += '{';
        for (const gltf::JsonMember* member : members) {
            out += Join(member->Name(), ":");
            const auto index = member->value.Index();
            const bool isTexture = holder.ends_with("Texture") && member->Name() == "index" && index &&
                                   *index < m_textures.size();
            if (isTexture)
                out += Join("texture ", Texture(*index));
            else
                Append(member->value, member->Name(), false, out);
            out += ',';
        }
        out += '}';
    } else {
        out += gltf::WriteJson(value, false);
    }
}

}  // namespace zr
