// SPDX-License-Identifier: MIT
#include <draco/compression/encode.h>
#include <gtest/gtest.h>
#include <meshoptimizer.h>

#include <cmath>

#include "app/operations/compare/compare_scenes.h"
#include "app/operations/decode/compressed_data.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/references.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

// How a document is loaded.
enum class Form { kAsItIs, kDecoded, kPlain };

constexpr std::size_t kVertices = 16;

std::vector<float> Positions() {
    std::vector<float> positions;
    for (std::size_t i = 0; i < kVertices; ++i)
        for (const std::size_t factor : {7, 5, 3}) positions.push_back(static_cast<float>(i * factor % 11));
    return positions;
}

std::vector<unsigned> Triangles() {
    std::vector<unsigned> indices;
    for (unsigned i = 0; i + 2 < kVertices; ++i) indices.insert(indices.end(), {i, i + 1, i + 2});
    return indices;
}

template <typename T>
std::string BytesOf(const std::vector<T>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// One mesh with the given members in its views and its primitive; key times and values have a view of their
// own.
std::string SceneJson(const std::string& views, const std::string& accessors, const std::string& primitive,
                      std::size_t size, const std::string& used) {
    const std::string lists =
        used.empty() ? "" : Join(R"("extensionsUsed":[)", used, R"(],"extensionsRequired":[)", used, "],");
    return Join(R"({"asset":{"version":"2.0"},)", lists,
                R"("scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],"meshes":[{"primitives":[)",
                R"({"attributes":{"POSITION":0},"indices":1)", primitive, R"(}]}],"accessors":[)", accessors,
                R"(],"bufferViews":[)", views, R"(],"buffers":[{"byteLength":)", size,
                R"(},{"byteLength":10000,"extensions":{"EXT_meshopt_compression":{"fallback":true}}}]})");
}

constexpr std::string_view kAccessors =
    R"({"bufferView":0,"componentType":5126,"count":16,"type":"VEC3","min":[0,0,0],"max":[10,10,10]},)"
    R"({"bufferView":1,"componentType":5125,"count":42,"type":"SCALAR"})";

Document Load(const std::string& json, const std::string& bin, Form form = Form::kAsItIs) {
    CompressedData data;
    data.makePlain = form == Form::kPlain;
    gltf::LoadOptions options;
    if (form != Form::kAsItIs) options.decoder = &data;
    return Document::FromBytes(zr::BytesOf(gltf::test::Glb(json, bin)), "packed.glb", options);
}

Document Plain() {
    const std::string positions = BytesOf(Positions()), indices = BytesOf(Triangles());
    return Load(
        SceneJson(Join(R"({"buffer":0,"byteLength":192},{"buffer":0,"byteOffset":192,"byteLength":168})"),
                  std::string(kAccessors), "", 360, ""),
        positions + indices);
}

std::string MeshoptView(std::size_t offset, std::size_t packed, std::size_t length, std::size_t stride,
                        const char* mode) {
    return Join(R"({"buffer":1,"byteOffset":0,"byteLength":)", length,
                R"(,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteOffset":)", offset,
                R"(,"byteLength":)", packed, R"(,"byteStride":)", stride, R"(,"count":)", length / stride,
                R"(,"mode":")", mode, R"("}}})");
}

Document Meshopt(Form form, const std::string& brokenByte = "") {
    const std::vector<float> positions = Positions();
    const std::vector<unsigned> indices = Triangles();
    std::vector<unsigned char> vertices(meshopt_encodeVertexBufferBound(kVertices, 12));
    vertices.resize(
        meshopt_encodeVertexBuffer(vertices.data(), vertices.size(), positions.data(), kVertices, 12));
    std::vector<unsigned char> faces(meshopt_encodeIndexBufferBound(indices.size(), kVertices));
    faces.resize(meshopt_encodeIndexBuffer(faces.data(), faces.size(), indices.data(), indices.size()));
    std::string bin = BytesOf(vertices);
    bin.resize((bin.size() + 3) & ~std::size_t{3});
    const std::size_t second = bin.size();
    bin += BytesOf(faces);
    if (!brokenByte.empty()) bin.replace(0, 1, brokenByte);
    return Load(SceneJson(MeshoptView(0, vertices.size(), 192, 12, "ATTRIBUTES") + "," +
                              MeshoptView(second, faces.size(), 168, 4, "TRIANGLES"),
                          std::string(kAccessors), "", bin.size(), "\"EXT_meshopt_compression\""),
                bin, form);
}

Document Draco(Form form, std::size_t cut = 0) {
    const std::vector<float> positions = Positions();
    const std::vector<unsigned> indices = Triangles();
    draco::Mesh mesh;
    mesh.set_num_points(kVertices);
    draco::GeometryAttribute attribute;
    attribute.Init(draco::GeometryAttribute::POSITION, nullptr, 3, draco::DT_FLOAT32, false, 12, 0);
    const int id = mesh.AddAttribute(attribute, true, kVertices);
    for (unsigned i = 0; i < kVertices; ++i)
        mesh.attribute(id)->SetAttributeValue(draco::AttributeValueIndex(i), &positions[3 * i]);
    for (unsigned i = 0; i < indices.size(); i += 3)
        mesh.AddFace({draco::PointIndex(indices[i]), draco::PointIndex(indices[i + 1]),
                      draco::PointIndex(indices[i + 2])});
    draco::Encoder encoder;
    encoder.SetEncodingMethod(draco::MESH_SEQUENTIAL_ENCODING);
    draco::EncoderBuffer buffer;
    EXPECT_TRUE(encoder.EncodeMeshToBuffer(mesh, &buffer).ok());
    const std::string bin(buffer.data(), buffer.size() - cut);
    return Load(
        SceneJson(
            Join(R"({"buffer":0,"byteLength":)", bin.size(), "}"),
            R"({"componentType":5126,"count":16,"type":"VEC3","min":[0,0,0],"max":[10,10,10]},)"
            R"({"componentType":5125,"count":42,"type":"SCALAR"})",
            Join(R"(,"extensions":{"KHR_draco_mesh_compression":{"bufferView":0,"attributes":{"POSITION":)",
                 mesh.attribute(id)->unique_id(), "}}}"),
            bin.size(), "\"KHR_draco_mesh_compression\""),
        bin, form);
}

// The values that can be read from an accessor whose view is compressed as given.
std::vector<float> Unpacked(const std::string& packed, std::size_t stride, const char* mode,
                            const char* filter, const std::string& accessor) {
    const std::string json = Join(
        R"({"asset":{"version":"2.0"},"extensionsUsed":["EXT_meshopt_compression"],"accessors":[{"bufferView":0,"count":4,)",
        accessor, R"(}],"bufferViews":[{"buffer":1,"byteLength":)", 4 * stride,
        R"(,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteLength":)", packed.size(),
        R"(,"byteStride":)", stride, R"(,"count":4,"mode":")", mode, R"(","filter":")", filter,
        R"("}}}],"buffers":[{"byteLength":)", packed.size(), R"(},{"byteLength":64}]})");
    const Document document = Load(json, packed, Form::kDecoded);
    EXPECT_EQ(document.Warnings().empty(), gltf::HasData(document, 0)) << mode << " " << filter;
    return gltf::HasData(document, 0) ? gltf::ReadFloats(document, 0) : std::vector<float>();
}

std::string PackedVertices(const std::string& bytes, std::size_t stride) {
    std::vector<unsigned char> out(meshopt_encodeVertexBufferBound(bytes.size() / stride, stride));
    out.resize(
        meshopt_encodeVertexBuffer(out.data(), out.size(), bytes.data(), bytes.size() / stride, stride));
    return BytesOf(out);
}

// One attribute of four vertices, with the given types in the codec and in the document.
template <typename T>
std::vector<float> UnpackedAttribute(draco::DataType type, gltf::Component component,
                                     const std::vector<T>& values) {
    draco::Mesh mesh;
    mesh.set_num_points(4);
    draco::GeometryAttribute attribute;
    attribute.Init(draco::GeometryAttribute::GENERIC, nullptr, 1, type, false, sizeof(T), 0);
    const int id = mesh.AddAttribute(attribute, true, 4);
    for (unsigned i = 0; i < 4; ++i)
        mesh.attribute(id)->SetAttributeValue(draco::AttributeValueIndex(i), &values[i]);
    for (unsigned i = 0; i < 2; ++i)
        mesh.AddFace({draco::PointIndex(i), draco::PointIndex(i + 1), draco::PointIndex(i + 2)});
    draco::Encoder encoder;
    encoder.SetEncodingMethod(draco::MESH_SEQUENTIAL_ENCODING);
    draco::EncoderBuffer buffer;
    EXPECT_TRUE(encoder.EncodeMeshToBuffer(mesh, &buffer).ok());
    const std::string json = Join(
        R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_draco_mesh_compression"],"meshes":[{"primitives":[)"
        R"({"attributes":{"_WEAR":0},"extensions":{"KHR_draco_mesh_compression":{"bufferView":0,"attributes":{"_WEAR":)",
        mesh.attribute(id)->unique_id(), R"(}}}}]}],"accessors":[{"componentType":)",
        static_cast<int>(component),
        R"(,"count":4,"type":"SCALAR"}],"bufferViews":[{"buffer":0,"byteLength":)", buffer.size(),
        R"(}],"buffers":[{"byteLength":)", buffer.size(), "}]}");
    const Document document = Load(json, {buffer.data(), buffer.size()}, Form::kDecoded);
    return gltf::HasData(document, 0) ? gltf::ReadFloats(document, 0) : std::vector<float>();
}

bool IsSame(const Document& a, const Document& b) {
    return compare::CompareScenes(a, b, {}).IsSame();
}

TEST(Decode, ReadsCompressedData) {
    EXPECT_FALSE(gltf::HasData(Meshopt(Form::kAsItIs), 0));
    const Document plain = Plain();
    for (const Document& document : {Meshopt(Form::kDecoded), Draco(Form::kDecoded)}) {
        EXPECT_EQ(gltf::ReadFloats(document, 0), Positions());
        EXPECT_TRUE(IsSame(plain, document));
        EXPECT_TRUE(document.Warnings().empty());
    }
}

TEST(Decode, FiltersAreUndone) {
    const float half = std::sqrt(0.5F);
    const std::vector<float> turns{0, 0, 0, 1, half, 0, 0, half, 0, 1, 0, 0, 0.5F, 0.5F, 0.5F, 0.5F};
    const std::vector<float> normals{0, 0, 1, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, half, -half, 0};
    const std::vector<float> numbers{0, 1, -2.5F, 96};
    const auto expectNear = [](const std::vector<float>& got, const std::vector<float>& wanted,
                               float tolerance) {
        ASSERT_EQ(got.size(), wanted.size());
        for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], wanted[i], tolerance) << i;
    };
    std::string packed(32, '\0');
    meshopt_encodeFilterQuat(packed.data(), 4, 8, 16, turns.data());
    packed = PackedVertices(packed, 8);
    const char* const kBytes = R"("componentType":5120,"normalized":true,"type":"VEC4")";
    const char* const kShorts = R"("componentType":5122,"normalized":true,"type":"VEC4")";
    expectNear(Unpacked(packed, 8, "ATTRIBUTES", "QUATERNION", kShorts), turns, 1e-3F);
    EXPECT_TRUE(Unpacked(packed, 8, "ATTRIBUTES", "UNKNOWN", kShorts).empty());
    // Bytes cannot encode quaternions.
    EXPECT_TRUE(
        Unpacked(PackedVertices(packed.substr(0, 16), 4), 4, "ATTRIBUTES", "QUATERNION", kBytes).empty());

    for (const std::size_t stride : {4, 8}) {
        std::string bytes(4 * stride, '\0');
        meshopt_encodeFilterOct(bytes.data(), 4, stride, stride == 4 ? 8 : 16, normals.data());
        expectNear(Unpacked(PackedVertices(bytes, stride), stride, "ATTRIBUTES", "OCTAHEDRAL",
                            stride == 4 ? kBytes : kShorts),
                   normals, stride == 4 ? 0.02F : 1e-3F);
    }
    std::string bytes(16, '\0');
    meshopt_encodeFilterExp(bytes.data(), 4, 4, 15, numbers.data());
    expectNear(Unpacked(PackedVertices(bytes, 4), 4, "ATTRIBUTES", "EXPONENTIAL",
                        R"("componentType":5126,"type":"SCALAR")"),
               numbers, 1e-2F);
    const unsigned indices[] = {7, 3, 9, 4};
    std::vector<unsigned char> sequence(meshopt_encodeIndexSequenceBound(4, 10));
    sequence.resize(meshopt_encodeIndexSequence(sequence.data(), sequence.size(), indices, 4));
    EXPECT_EQ(Unpacked(BytesOf(sequence), 4, "INDICES", "NONE", R"("componentType":5125,"type":"SCALAR")"),
              (std::vector<float>{7, 3, 9, 4}));
    // Indices have no filter.
    EXPECT_TRUE(
        Unpacked(BytesOf(sequence), 4, "INDICES", "EXPONENTIAL", R"("componentType":5125,"type":"SCALAR")")
            .empty());
}

TEST(Decode, AttributesKeepTheirType) {
    using gltf::Component;
    EXPECT_EQ((UnpackedAttribute<std::int8_t>(draco::DT_INT8, Component::kByte, {-128, -1, 0, 127})),
              (std::vector<float>{-128, -1, 0, 127}));
    EXPECT_EQ((UnpackedAttribute<std::uint8_t>(draco::DT_UINT8, Component::kUnsignedByte, {0, 1, 128, 255})),
              (std::vector<float>{0, 1, 128, 255}));
    EXPECT_EQ((UnpackedAttribute<std::int16_t>(draco::DT_INT16, Component::kShort, {-32768, -1, 0, 32767})),
              (std::vector<float>{-32768, -1, 0, 32767}));
    EXPECT_EQ(
        (UnpackedAttribute<std::uint16_t>(draco::DT_UINT16, Component::kUnsignedShort, {0, 1, 300, 65535})),
        (std::vector<float>{0, 1, 300, 65535}));
    EXPECT_EQ(
        (UnpackedAttribute<std::uint32_t>(draco::DT_UINT32, Component::kUnsignedInt, {0, 1, 70000, 1 << 24})),
        (std::vector<float>{0, 1, 70000, 1 << 24}));
    // Values that the type cannot hold are not reinterpreted.
    EXPECT_TRUE((UnpackedAttribute<std::uint16_t>(draco::DT_UINT16, Component::kUnsignedByte, {0, 1, 2, 300}))
                    .empty());
}

TEST(Decode, DoesNotChangeSavedDocuments) {
    const gltf::test::TemporaryFolder folder;
    Draco(Form::kAsItIs).Save(folder / "before.glb");
    Draco(Form::kDecoded).Save(folder / "after.glb");
    EXPECT_EQ(folder.Read("after.glb"), folder.Read("before.glb"));
}

TEST(Decode, ContentFollowsRenumberedElements) {
    Document document = Draco(Form::kDecoded);
    const std::vector<float> triangle{0, 0, 0, 1, 0, 0, 0, 1, 0};
    ASSERT_EQ(gltf::AppendFloats(document, "VEC3", gltf::Use::kPosition, triangle), 2U);
    // The faces lose their indices: accessor 1 is removed, and the next one gets its number.
    document.Elements(Kind::kMesh)[0].Find("primitives")->Items()[0].EraseMember("indices");
    gltf::Removal removal;
    removal[gltf::Ordinal(Kind::kAccessor)] = {false, true, false};
    gltf::RemoveElements(document, removal);
    EXPECT_EQ(gltf::ReadFloats(document, 0), Positions());
    EXPECT_EQ(gltf::ReadFloats(document, 1), triangle);
}

TEST(Decode, PlainDocumentsNeedNoCodec) {
    const gltf::test::TemporaryFolder folder;
    Meshopt(Form::kPlain).Save(folder / "meshopt.glb");
    Draco(Form::kPlain).Save(folder / "draco.glb");
    const Document plain = Plain();
    for (const char* name : {"meshopt.glb", "draco.glb"}) {
        const Document document = Document::Load(folder / name);
        EXPECT_TRUE(IsSame(plain, document)) << name;
        EXPECT_EQ(document.Root().Find("extensionsUsed"), nullptr) << name;
        EXPECT_EQ(document.Root().Find("extensionsRequired"), nullptr) << name;
        EXPECT_EQ(document.Elements(Kind::kBuffer).size(), 1U) << name;
        EXPECT_EQ(folder.Read(name).find("compression"), std::string::npos) << name;
    }
}

TEST(Decode, QuantizedVerticesBecomeFloats) {
    // Normalized bytes from -127 to 127, four bytes per vertex.
    const std::string bin("\x7f\0\x81\0\0\x7f\0\0\0\0\x7f\0", 12);
    const std::string json =
        R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_mesh_quantization"],"extensionsRequired":["KHR_mesh_quantization"],)"
        R"("scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],)"
        R"("accessors":[{"bufferView":0,"componentType":5120,"normalized":true,"count":3,"type":"VEC3","min":[0,0,-127],"max":[127,127,127]}],)"
        R"("bufferViews":[{"buffer":0,"byteLength":12,"byteStride":4}],"buffers":[{"byteLength":12}]})";
    const Document before = Load(json, bin), after = Load(json, bin, Form::kPlain);
    EXPECT_EQ(gltf::Describe(after, 0).component, gltf::Component::kFloat);
    EXPECT_FALSE(gltf::Describe(after, 0).normalized);
    EXPECT_EQ(gltf::ReadFloats(after, 0), (std::vector<float>{1, 0, -1, 0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(after.Elements(Kind::kAccessor)[0].Find("max")->Items()[0].Number(), 1);
    EXPECT_EQ(after.Elements(Kind::kAccessor).size(), 1U);
    EXPECT_EQ(after.Root().Find("extensionsRequired"), nullptr);
    EXPECT_TRUE(IsSame(before, after));
}

TEST(Decode, MorphTargetsAndTextureCoordinatesBecomeFloatsToo) {
    // Normalized unsigned bytes are plain texture coordinates; signed and unnormalized ones are quantized.
    const std::string bin("\x7f\0\x81\0\0\x7f\0\0\0\0\x7f\0", 12);
    const std::string json =
        R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_mesh_quantization"],"extensionsRequired":["KHR_mesh_quantization"],)"
        R"("meshes":[{"primitives":[{"attributes":{"TEXCOORD_0":0,"TEXCOORD_1":1,"TEXCOORD_2":2},"targets":[{"POSITION":3}]}]}],)"
        R"("accessors":[{"bufferView":0,"componentType":5121,"normalized":true,"count":3,"type":"VEC2"},)"
        R"({"bufferView":0,"componentType":5121,"count":3,"type":"VEC2"},)"
        R"({"bufferView":0,"componentType":5120,"normalized":true,"count":3,"type":"VEC2"},)"
        R"({"bufferView":0,"componentType":5120,"normalized":true,"count":3,"type":"VEC3"}],)"
        R"("bufferViews":[{"buffer":0,"byteLength":12,"byteStride":4}],"buffers":[{"byteLength":12}]})";
    const Document after = Load(json, bin, Form::kPlain);
    EXPECT_EQ(gltf::Describe(after, 0).component, gltf::Component::kUnsignedByte);
    EXPECT_EQ(gltf::Describe(after, 1).component, gltf::Component::kFloat);
    EXPECT_EQ(gltf::ReadFloats(after, 1), (std::vector<float>{127, 0, 0, 127, 0, 0}));
    EXPECT_EQ(gltf::ReadFloats(after, 2), (std::vector<float>{1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(gltf::Describe(after, 3).component, gltf::Component::kFloat);
    EXPECT_EQ(gltf::ReadFloats(after, 3), (std::vector<float>{1, 0, -1, 0, 1, 0, 0, 0, 1}));
}

TEST(Decode, BrokenDataIsUnavailableAndCausesAWarning) {
    const Document meshopt = Meshopt(Form::kDecoded, "\x11");
    EXPECT_FALSE(gltf::HasData(meshopt, 0));
    EXPECT_TRUE(gltf::HasData(meshopt, 1));
    ASSERT_EQ(meshopt.Warnings().size(), 1U);
    EXPECT_EQ(meshopt.Warnings()[0].Place(), "/bufferViews/0/extensions/EXT_meshopt_compression");
    EXPECT_EQ(compare::CompareScenes(meshopt, meshopt, {}).unread.size(), 2U);
    for (const std::size_t cut : {1, 20, 100}) {
        const Document draco = Draco(Form::kDecoded, cut);
        EXPECT_FALSE(gltf::HasData(draco, 0)) << cut;
        EXPECT_EQ(draco.Warnings().size(), 1U) << cut;
    }
    // Data that cannot be decoded is not made plain.
    EXPECT_NE(Draco(Form::kPlain, 20).Root().Find("extensionsRequired"), nullptr);
}

}  // namespace
}  // namespace zr::test
