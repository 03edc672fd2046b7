// SPDX-License-Identifier: MIT
#include <meshoptimizer.h>

#include <optional>

#include "app/operations/decode/compressed_data.h"
#include "base/text.h"
#include "gltf/members.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// The codec cannot compress further than this; data that claims more is broken and would waste memory.
constexpr std::size_t kMostRatio = 512;
constexpr std::size_t kSmall = 65536;

struct View {
    std::size_t count = 0, stride = 0;
    std::string_view mode, filter;
    Bytes bytes;
};

bool IsSound(const View& view, std::size_t byteLength) {
    if (view.stride == 0 || view.stride > 256 || byteLength % view.stride != 0) return false;
    if (view.count != byteLength / view.stride) return false;
    if (byteLength > kSmall && byteLength / kMostRatio > view.bytes.size()) return false;
    if (view.mode == "ATTRIBUTES") return view.stride % 4 == 0;
    return (view.stride == 2 || view.stride == 4) && (view.mode != "TRIANGLES" || view.count % 3 == 0);
}

bool Filter(const View& view, std::vector<std::byte>& out) {
    if (view.filter.empty() || view.filter == "NONE") return true;
    if (view.mode != "ATTRIBUTES") return false;
    if (view.filter == "OCTAHEDRAL" && (view.stride == 4 || view.stride == 8))
        meshopt_decodeFilterOct(out.data(), view.count, view.stride);
    else if (view.filter == "QUATERNION" && view.stride == 8)
        meshopt_decodeFilterQuat(out.data(), view.count, view.stride);
    else if (view.filter == "EXPONENTIAL")
        meshopt_decodeFilterExp(out.data(), view.count, view.stride);
    else
        return false;
    return true;
}

std::optional<std::vector<std::byte>> Decoded(const View& view, std::size_t byteLength) {
    if (!IsSound(view, byteLength)) return std::nullopt;
    const auto* bytes = reinterpret_cast<const unsigned char*>(view.bytes.data());
    const std::size_t size = view.bytes.size();
    std::vector<std::byte> out(byteLength);
    int failed = 1;
    if (view.mode == "ATTRIBUTES")
        failed = meshopt_decodeVertexBuffer(out.data(), view.count, view.stride, bytes, size);
    else if (view.mode == "TRIANGLES")
        failed = meshopt_decodeIndexBuffer(out.data(), view.count, view.stride, bytes, size);
    else if (view.mode == "INDICES")
        failed = meshopt_decodeIndexSequence(out.data(), view.count, view.stride, bytes, size);
    if (failed != 0 || !Filter(view, out)) return std::nullopt;
    return out;
}

std::string_view TextMember(const Json& object, std::string_view name) {
    const Json* member = object.Find(name);
    return member != nullptr ? member->String() : std::string_view();
}

}  // namespace

std::vector<std::string> DecodeMeshopt(gltf::Document& document) {
    std::vector<std::string> unread;
    const auto views = document.Elements(Kind::kBufferView);
    for (std::size_t i = 0; i < views.size(); ++i) {
        if (document.ViewBytes(i)) continue;  // uncompressed fallback data serves as well
        for (const std::string_view name : gltf::kMeshopt) {
            const Json* packed = gltf::FindExtension(views[i], name);
            if (packed == nullptr) continue;
            View view{IndexMember(*packed, "count"),
                      IndexMember(*packed, "byteStride"),
                      TextMember(*packed, "mode"),
                      TextMember(*packed, "filter"),
                      {}};
            if (const auto buffer = document.BufferBytes(IndexMember(*packed, "buffer")))
                view.bytes =
                    buffer->subspan(IndexMember(*packed, "byteOffset"), IndexMember(*packed, "byteLength"));
            auto bytes = Decoded(view, IndexMember(views[i], "byteLength"));
            if (!bytes || !document.SupplyView(i, std::move(*bytes)))
                unread.push_back(Join("/bufferViews/", i, "/extensions/", name));
            break;
        }
    }
    return unread;
}

}  // namespace zr
