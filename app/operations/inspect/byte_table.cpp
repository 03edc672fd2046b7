// SPDX-License-Identifier: MIT
#include <algorithm>

#include "app/operations/inspect/inspection.h"
#include "gltf/members.h"
#include "gltf/references.h"

namespace zr::inspect {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

// What the bytes of a view are used for.
enum class Part { kVertices, kTargets, kIndices, kKeys, kBinds, kImages, kPacked, kOther, kUnused, kCount };
constexpr std::string_view kPartNames[] = {"vertex data",     "morph targets", "vertex indices",
                                           "animation keys",  "inverse binds", "images",
                                           "compressed data", "other",         "not referred to"};

template <typename Mark, typename MarkAccessor>
void MarkMeshes(const Inspection& in, Mark mark, MarkAccessor markAccessor) {
    for (const Json& mesh : in.Elements(Kind::kMesh)) {
        for (const Json& primitive : mesh.Find("primitives")->Items()) {
            for (const JsonMember& member : primitive.Find("attributes")->Members())
                markAccessor(*member.value.Index(), Part::kVertices);
            if (primitive.Find("indices") != nullptr)
                markAccessor(IndexMember(primitive, "indices"), Part::kIndices);
            if (const Json* targets = primitive.Find("targets"))
                for (const Json& target : targets->Items())
                    for (const JsonMember& member : target.Members())
                        markAccessor(*member.value.Index(), Part::kTargets);
            if (const Json* packed = gltf::FindExtension(primitive, "KHR_draco_mesh_compression"))
                mark(IndexMember(*packed, "bufferView", kNone), Part::kPacked);
        }
    }
}

}  // namespace

// Of several uses of a view, the first in the order of Part counts.
void AddBytes(Inspection& in) {
    std::vector<Part> parts(in.Elements(Kind::kBufferView).size(), Part::kUnused);
    const auto mark = [&](std::size_t view, Part part) {
        if (view < parts.size()) parts[view] = std::min(parts[view], part);
    };
    const auto markAccessor = [&](std::size_t accessor, Part part) {
        const Json& json = in.Elements(Kind::kAccessor)[accessor];
        mark(IndexMember(json, "bufferView", kNone), part);
        if (const Json* sparse = json.Find("sparse"))
            for (const char* member : {"indices", "values"})
                mark(IndexMember(*sparse->Find(member), "bufferView", kNone), part);
    };
    MarkMeshes(in, mark, markAccessor);
    for (const Json& animation : in.Elements(Kind::kAnimation))
        if (const Json* samplers = animation.Find("samplers"))
            for (const Json& sampler : samplers->Items())
                for (const char* member : {"input", "output"})
                    markAccessor(IndexMember(sampler, member), Part::kKeys);
    for (const Json& skin : in.Elements(Kind::kSkin))
        if (skin.Find("inverseBindMatrices") != nullptr)
            markAccessor(IndexMember(skin, "inverseBindMatrices"), Part::kBinds);
    for (const Json& image : in.Elements(Kind::kImage))
        mark(IndexMember(image, "bufferView", kNone), Part::kImages);
    gltf::ForEachReference(in.document, {Kind::kBufferView}, [&](const gltf::Reference& reference) {
        mark(reference.target.index, Part::kOther);
    });

    std::vector<std::uint64_t> bytes(static_cast<std::size_t>(Part::kCount), 0);
    std::vector<std::uint64_t> counts(bytes.size(), 0);
    std::uint64_t inViews = 0, inBuffers = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Json& view = in.Elements(Kind::kBufferView)[i];
        const Json* packed = gltf::FindMeshopt(view);
        const std::size_t length = IndexMember(packed != nullptr ? *packed : view, "byteLength");
        bytes[static_cast<std::size_t>(parts[i])] += length;
        ++counts[static_cast<std::size_t>(parts[i])];
        inViews += length;
    }
    for (std::size_t i = 0; i < in.Elements(Kind::kBuffer).size(); ++i)
        if (const auto buffer = in.document.BufferBytes(i)) inBuffers += buffer->size();
    Table& table = in.Add("bytes", {"part", "views", "bytes"});
    table.rows.push_back({std::string("JSON"), {}, Count(gltf::WriteJson(in.document.Root(), false).size())});
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (counts[i] > 0) table.rows.push_back({std::string(kPartNames[i]), counts[i], bytes[i]});
    if (inBuffers > inViews) table.rows.push_back({std::string("in no view"), {}, inBuffers - inViews});
}

}  // namespace zr::inspect
