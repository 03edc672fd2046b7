// SPDX-License-Identifier: MIT
#include "app/scene/content_ids.h"

#include <algorithm>

#include "app/gltf/accessor.h"
#include "app/gltf/text.h"

namespace zr {

using gltf::Join;
using gltf::Json;
using gltf::Kind;

ContentIds::ContentIds(const gltf::Document& document)
    : m_document(document),
      m_accessors(document.Elements(Kind::kAccessor).size()),
      m_textures(document.Elements(Kind::kTexture).size()),
      m_views(document.Elements(Kind::kBufferView).size()) {
}

std::uint32_t ContentIds::Text(std::string_view text) {
    return m_texts.try_emplace(std::string(text), static_cast<std::uint32_t>(m_texts.size())).first->second;
}

std::uint32_t ContentIds::View(std::size_t index) {
    if (m_views[index]) return *m_views[index];
    const auto bytes = m_document.ViewBytes(index);
    // What cannot be read equals only itself.
    std::string content = bytes ? std::string(1, 'b') : Join("view ", index);
    if (bytes) content.append(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    return *(m_views[index] = Text(content));
}

std::string ContentIds::AccessorContent(const Json& accessor, std::size_t index) {
    const gltf::AccessorInfo info = gltf::Describe(m_document, index);
    std::string content = Join("accessor ", static_cast<std::uint32_t>(info.component), " ", info.shape.rows,
                               "x", info.shape.columns, " ", info.count, info.normalized ? " n " : " ");
    if (!gltf::HasData(m_document, index) ||
        (accessor.Find("bufferView") == nullptr && !accessor.Find("sparse")))
        return content + Join("unread ", index);
    if (info.component == gltf::Component::kUnsignedInt) {
        const auto values = gltf::ReadIntegers(m_document, index);
        return content.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
    }
    // Every other component fits a float exactly, so equal floats are equal bytes.
    const auto values = gltf::ReadFloats(m_document, index);
    return content.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
}

std::uint32_t ContentIds::Accessor(std::size_t index) {
    if (!m_accessors[index])
        m_accessors[index] = Text(AccessorContent(m_document.Elements(Kind::kAccessor)[index], index));
    return *m_accessors[index];
}

std::uint32_t ContentIds::Image(std::size_t index) {
    const Json& image = m_document.Elements(Kind::kImage)[index];
    std::string content = "image ";
    for (const gltf::JsonMember& member : image.Members()) {
        if (member.Name() == "name") continue;
        const bool isView = member.Name() == "bufferView";
        content += Join(
            member.Name(), "=",
            isView ? Join("view ", View(*member.value.Index())) : gltf::WriteJson(member.value, false), ";");
    }
    return Text(content);
}

std::uint32_t ContentIds::Texture(std::size_t index) {
    if (m_textures[index]) return *m_textures[index];
    const Json& texture = m_document.Elements(Kind::kTexture)[index];
    std::string content = "texture ";
    for (const gltf::JsonMember& member : texture.Members()) {
        if (member.Name() == "name") continue;
        content += Join(member.Name(), "=");
        if (member.Name() == "source") {
            content += std::to_string(Image(*member.value.Index()));
        } else if (member.Name() == "sampler") {
            content += Canonical(m_document.Elements(Kind::kSampler)[*member.value.Index()]);
        } else {
            content += gltf::WriteJson(member.value, false);
        }
        content += ';';
    }
    return *(m_textures[index] = Text(content));
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
