// SPDX-License-Identifier: MIT
#include <map>
#include <utility>

#include "app/operations/compare/image_bytes.h"
#include "app/operations/inspect/image_info.h"
#include "app/operations/inspect/inspection.h"
#include "base/text.h"

namespace zr::inspect {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

void ListTextures(const Json& value, std::set<std::string>& textures) {
    for (const JsonMember& member : value.Members()) {
        if (member.Name() == "extras") continue;
        if (member.Name().ends_with("Texture") && member.value.Find("index") != nullptr)
            textures.insert(Join(member.Name().substr(0, member.Name().size() - 7), " ",
                                 IndexMember(member.value, "index")));
        ListTextures(member.value, textures);
    }
}

}  // namespace

void AddMaterials(Inspection& in) {
    std::vector<std::size_t> uses(in.Elements(Kind::kMaterial).size(), 0);
    for (const Json& mesh : in.Elements(Kind::kMesh))
        for (const Json& primitive : mesh.Find("primitives")->Items())
            if (const std::size_t material = IndexMember(primitive, "material", kNone); material != kNone)
                ++uses[material];
    Table& table = in.Add(
        "materials", {"material", "name", "alpha", "doubleSided", "textures", "extensions", "primitives"});
    for (std::size_t i = 0; i < uses.size(); ++i) {
        const Json& material = in.Elements(Kind::kMaterial)[i];
        std::set<std::string> textures, extensions;
        ListTextures(material, textures);
        if (const Json* list = material.Find("extensions"))
            for (const JsonMember& member : list->Members()) extensions.insert(std::string(member.Name()));
        const Json* alpha = material.Find("alphaMode");
        const Json* sides = material.Find("doubleSided");
        table.rows.push_back(
            {Count(i), Name(material), std::string(alpha != nullptr ? alpha->String() : "OPAQUE"),
             Yes(sides != nullptr && sides->Bool()), Listed(textures), Listed(extensions), Count(uses[i])});
    }
}

void AddTextures(Inspection& in) {
    Table& table =
        in.Add("textures", {"texture", "name", "image", "type", "width", "height", "bytes", "file"});
    std::map<std::size_t, std::pair<ImageInfo, std::size_t>> images;  // and their bytes
    for (std::size_t i = 0; i < in.Elements(Kind::kTexture).size(); ++i) {
        const Json& texture = in.Elements(Kind::kTexture)[i];
        std::size_t image = IndexMember(texture, "source", kNone);
        if (const Json* extensions = texture.Find("extensions"); extensions != nullptr)
            for (const JsonMember& member : extensions->Members())
                image = IndexMember(member.value, "source", image);
        if (image >= in.Elements(Kind::kImage).size()) {
            table.rows.push_back({Count(i), Name(texture), {}, {}, {}, {}, {}, {}});
            continue;
        }
        const Json& json = in.Elements(Kind::kImage)[image];
        const auto [known, isNew] = images.try_emplace(image);
        if (isNew) {
            const std::vector<std::byte> bytes = compare::ImageBytes(in.document, json);
            known->second = {ReadImageInfo(bytes), bytes.size()};
        }
        const auto& [info, size] = known->second;
        const Json* uri = json.Find("uri");
        const bool isFile = uri != nullptr && !uri->String().starts_with("data:");
        table.rows.push_back({Count(i), Name(texture), Count(image), std::string(info.type),
                              info.width > 0 ? Count(info.width) : Cell(),
                              info.height > 0 ? Count(info.height) : Cell(), Count(size),
                              isFile ? Cell(std::string(uri->String())) : Cell()});
        if (size == 0) in.Warn(Join("/images/", image), "the image data is missing");
    }
}

}  // namespace zr::inspect
