// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>

#include "app/operations/inspect/image_info.h"
#include "app/operations/inspect/inspect_document.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

using inspect::Cell;
using inspect::Table;

const Table& Named(const std::vector<Table>& tables, const std::string& name) {
    const auto found =
        std::find_if(tables.begin(), tables.end(), [&](const Table& table) { return table.name == name; });
    EXPECT_NE(found, tables.end()) << name;
    static const Table none;
    return found != tables.end() ? *found : none;
}

Cell At(const Table& table, std::size_t row, const std::string& column) {
    const auto found = std::find(table.columns.begin(), table.columns.end(), column);
    EXPECT_NE(found, table.columns.end()) << column;
    return table.rows.at(row).at(static_cast<std::size_t>(found - table.columns.begin()));
}

Cell Whole(std::uint64_t number) {
    return number;
}

Cell Text(std::string text) {
    return text;
}

TEST(Inspect, ListsTheContentOfADocument) {
    gltf::Document document = gltf::test::Sample();
    const std::vector<Table> tables = inspect::InspectDocument(document);

    const Table& nodes = Named(tables, "nodes");
    ASSERT_EQ(nodes.rows.size(), 7U);
    EXPECT_EQ(At(nodes, 1, "parent"), Whole(0));
    EXPECT_EQ(At(nodes, 2, "light"), Whole(0));
    EXPECT_EQ(At(nodes, 5, "channels"), Whole(1)) << "driven by a pointer";
    EXPECT_EQ(At(nodes, 6, "skin"), Whole(0));

    EXPECT_EQ(At(Named(tables, "skins"), 0, "joints"), Whole(2));
    EXPECT_EQ(At(Named(tables, "materials"), 2, "textures"), Text("sheenColor 1"));
    EXPECT_EQ(At(Named(tables, "materials"), 2, "extensions"), Text("KHR_materials_sheen"));

    const Table& meshes = Named(tables, "meshes");
    EXPECT_EQ(At(meshes, 0, "faces"), Whole(1));
    EXPECT_EQ(At(meshes, 0, "targets"), Whole(1));
    EXPECT_EQ(At(meshes, 0, "nodes"), Whole(2));
    EXPECT_EQ(At(meshes, 0, "high"), Text("1 1 0"));

    const Table& animations = Named(tables, "animations");
    EXPECT_EQ(At(animations, 0, "keys"), Whole(6));
    EXPECT_EQ(At(animations, 0, "interpolation"), Text("LINEAR, STEP"));
    EXPECT_EQ(At(animations, 0, "end"), Cell(1.0));

    const Table& bytes = Named(tables, "bytes");
    const auto part = [&](const std::string& name) {
        for (std::size_t row = 0; row < bytes.rows.size(); ++row)
            if (At(bytes, row, "part") == Text(name)) return At(bytes, row, "bytes");
        return Cell();
    };
    EXPECT_EQ(part("vertex data"), Whole(36));
    EXPECT_EQ(part("morph targets"), Whole(36));
    EXPECT_EQ(part("animation keys"), Whole(40));
    EXPECT_EQ(part("inverse binds"), Whole(128));
    EXPECT_EQ(part("in no view"), Whole(2));

    const Table& extensions = Named(tables, "extensions");
    ASSERT_EQ(extensions.rows.size(), 5U);
    EXPECT_EQ(At(extensions, 0, "extension"), Text("KHR_animation_pointer"));
    EXPECT_EQ(At(extensions, 4, "extension"), Text("ODD_marker"));
    EXPECT_EQ(At(extensions, 4, "known"), Cell());
}

TEST(Inspect, WarnsWithPlaces) {
    gltf::Document document = gltf::Document::FromBytes(
        BytesOf(gltf::test::Glb(
            R"({"asset":{"version":"2.0"},"scenes":[{}],"nodes":[{"mesh":0}],"images":[{"uri":"gone.png"}],"textures":[{"source":0}],
            "meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1}]},{"primitives":[{"attributes":{}}]}],
            "accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3"},
                         {"bufferView":1,"componentType":5123,"count":6,"type":"SCALAR"}],
            "bufferViews":[{"buffer":0,"byteLength":48},{"buffer":0,"byteOffset":48,"byteLength":12}],"buffers":[{"byteLength":60}]})",
            gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5}) +
                gltf::test::Shorts({0, 1, 2, 0, 0, 1}))),
        "warn.glb");
    const auto warns = [&](const std::string& place, const std::string& text) {
        const auto tables = inspect::InspectDocument(document);
        const auto& rows = Named(tables, "warnings").rows;
        return std::find(rows.begin(), rows.end(), std::vector<Cell>{place, text}) != rows.end();
    };
    EXPECT_TRUE(warns("/nodes/0", "is in no scene"));
    EXPECT_TRUE(warns("/meshes/1", "no node shows it"));
    EXPECT_TRUE(warns("/images/0", "the image data is missing"));
    // Meshes outside the scenes are not checked.
    EXPECT_FALSE(warns("/meshes/0/primitives/0", "1 triangle uses a vertex twice"));
    document.Root().EraseMember("scenes");
    EXPECT_TRUE(warns("/meshes/0/primitives/0", "1 triangle uses a vertex twice"));
    EXPECT_TRUE(warns("/meshes/0/primitives/0", "1 vertex is in no face"));
}

TEST(Inspect, WritesTables) {
    const std::vector<Table> tables{
        {"things",
         {"name", "count", "size"},
         {{Text("a|b"), Whole(12), 1.5}, {Text("comma, \"quote\"\n"), Whole(3), Cell()}}}};
    EXPECT_EQ(inspect::AsText(tables, 1), "things\n  name  count  size\n  a|b      12   1.5\n  and 1 more\n");
    EXPECT_EQ(inspect::AsText({{{"mixed", {"value"}, {{Whole(1)}, {Text("two")}}}}}, 9),
              "mixed\n  value\n  1\n  two\n");
    EXPECT_EQ(inspect::AsMarkdown(tables),
              "## things\n\n| name | count | size |\n|---|---:|---:|\n| a\\|b | 12 | 1.5 |\n"
              "| comma, \"quote\"\\\\n | 3 |  |\n");
    EXPECT_EQ(inspect::AsCsv(tables),
              "things,name,count,size\nthings,a|b,12,1.5\nthings,\"comma, \"\"quote\"\"\n\",3,\n");
}

TEST(Inspect, ReadsImageHeaders) {
    const auto read = [](std::string_view bytes) { return inspect::ReadImageInfo(BytesOf(bytes)); };
    const auto png = read(std::string_view("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\0\0\0\0\x20", 24));
    EXPECT_EQ(png.type, "PNG");
    EXPECT_EQ(png.width, 256U);
    EXPECT_EQ(png.height, 32U);
    const auto jpeg = read(std::string_view("\xFF\xD8\xFF\xE0\0\4ab\xFF\xC0\0\x11\x08\0\x10\1\0\3\1\1", 20));
    EXPECT_EQ(jpeg.type, "JPEG");
    EXPECT_EQ(jpeg.width, 256U);
    EXPECT_EQ(jpeg.height, 16U);
    EXPECT_EQ(read("GIF89a").type, "");
}

}  // namespace
}  // namespace zr::test
