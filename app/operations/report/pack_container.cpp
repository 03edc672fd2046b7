// SPDX-License-Identifier: MIT
#include "app/operations/compare/image_bytes.h"
#include "app/operations/decode/compressed_data.h"
#include "app/operations/inspect/image_info.h"
#include "app/operations/report/report_page.h"

namespace zr::report {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// Embeds images from separate files into the document.
void EmbedImages(gltf::Document& document) {
    const std::size_t count = document.Elements(Kind::kImage).size();
    for (std::size_t i = 0; i < count; ++i) {
        const Json* uri = document.Elements(Kind::kImage)[i].Find("uri");
        if (uri == nullptr || uri->String().starts_with("data:")) continue;
        const std::vector<std::byte> bytes =
            compare::ImageBytes(document, document.Elements(Kind::kImage)[i]);
        if (bytes.empty()) continue;
        const std::string_view type = inspect::ReadImageInfo(bytes).type;
        const std::size_t view = document.AppendView(bytes, 0, 0);
        gltf::JsonTree& tree = document.Tree();
        Json& image = document.Elements(Kind::kImage)[i];
        image.EraseMember("uri");
        tree.Member(image, "bufferView") = tree.MakeIndex(view);
        tree.Member(image, "mimeType") = tree.MakeString(type == "JPEG"   ? "image/jpeg"
                                                         : type == "WebP" ? "image/webp"
                                                         : type == "KTX2" ? "image/ktx2"
                                                                          : "image/png");
    }
}

// A header and two chunks, each padded to a multiple of four bytes.
std::vector<std::byte> Container(std::string json, std::vector<std::byte> data) {
    json.resize((json.size() + 3) & ~std::size_t{3}, ' ');
    data.resize((data.size() + 3) & ~std::size_t{3});
    std::vector<std::byte> container;
    const auto word = [&](std::size_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            container.push_back(static_cast<std::byte>(value >> shift & 0xFF));
    };
    constexpr std::size_t kMagic = 0x46546C67, kJson = 0x4E4F534A, kBin = 0x004E4942;
    word(kMagic);
    word(2);
    word(28 + json.size() + data.size());
    word(json.size());
    word(kJson);
    const Bytes text = BytesOf(json);
    container.insert(container.end(), text.begin(), text.end());
    word(data.size());
    word(kBin);
    container.insert(container.end(), data.begin(), data.end());
    return container;
}

}  // namespace

std::vector<std::byte> PackContainer(gltf::Document& document) {
    MakePlain(document);
    EmbedImages(document);
    gltf::JsonTree& tree = document.Tree();
    std::vector<std::byte> data;
    std::vector<std::size_t> starts;
    const std::size_t buffers = document.Elements(Kind::kBuffer).size();
    for (std::size_t i = 0; i < buffers; ++i) {
        data.resize((data.size() + 3) & ~std::size_t{3});
        starts.push_back(data.size());
        if (const auto bytes = document.BufferBytes(i)) data.insert(data.end(), bytes->begin(), bytes->end());
    }
    gltf::ForEachBufferRange(document, [&](Json& range) {
        const std::size_t start = starts[IndexMember(range, "buffer")];
        tree.Member(range, "byteOffset") = tree.MakeIndex(start + IndexMember(range, "byteOffset"));
        tree.Member(range, "buffer") = tree.MakeIndex(0);
    });
    if (buffers > 0) {
        Json buffer = gltf::JsonTree::MakeObject();
        tree.Member(buffer, "byteLength") = tree.MakeIndex(data.size());
        Json list = gltf::JsonTree::MakeArray();
        tree.Append(list, buffer);
        tree.Member(document.Root(), "buffers") = list;
    }
    return Container(gltf::WriteJson(document.Root(), false), data);
}

}  // namespace zr::report
