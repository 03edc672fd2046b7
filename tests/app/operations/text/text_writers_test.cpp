// SPDX-License-Identifier: MIT
#include "app/operations/text/text_writers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>

#include "base/error.h"
#include "gltf/document.h"
#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

void Save(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target) {
    FileTransaction files;
    WriteText(geometry, format, target, files);
    files.Commit();
}

struct DxfEntity {
    std::string kind;
    std::string layer;
    int flags = 0;
    std::vector<std::array<double, 3>> places;
};

struct Dxf {
    std::map<std::string, std::string> variables;
    std::vector<std::string> layers;
    std::vector<DxfEntity> entities;
};

// Reads pairs of a code and a value; vertices are collected in their polyline.
Dxf ReadDxf(const std::string& content) {
    Dxf dxf;
    std::istringstream lines(content);
    std::string code, value, section, variable, record;
    while (std::getline(lines, code) && std::getline(lines, value)) {
        const int number = std::stoi(code);
        if (number == 0) record = value;
        if (record == "SECTION" && number == 2) section = value;
        if (section == "HEADER" && number == 9) variable = value;
        if (section == "HEADER" && number == 70) dxf.variables[variable] = value;
        if (section == "TABLES" && record == "LAYER" && number == 2) dxf.layers.push_back(value);
        if (section != "ENTITIES" || record == "SECTION") continue;
        if (number == 0 && (value == "POLYLINE" || value == "3DFACE"))
            dxf.entities.push_back({value, "", 0, {}});
        if (number == 0 && value == "VERTEX") dxf.entities.back().places.emplace_back();
        if (record == "POLYLINE" && number == 70) dxf.entities.back().flags = std::stoi(value);
        if (record != "SEQEND" && number == 8) dxf.entities.back().layer = value;
        if (record == "3DFACE" && number >= 10 && number < 20) dxf.entities.back().places.emplace_back();
        const bool hasPlace = record == "VERTEX" || record == "3DFACE";
        if (hasPlace && number >= 10 && number < 40)
            dxf.entities.back().places.back()[static_cast<std::size_t>(number / 10 - 1)] = std::stod(value);
    }
    EXPECT_EQ(value, "EOF");
    return dxf;
}

TEST(TextWriters, DxfDistinguishesStrokesOutlinesAndHoles) {
    const Folder folder;
    const auto write = [&](std::u16string text, TextStyle style, double depth = 0) {
        const DrawingOptions options{.capHeight = 21, .depth = depth, .unit = LengthUnit::kMillimetre};
        Save(Draw(text, style, options).geometry, TextFormat::kDxf, folder / "out.dxf");
        return ReadDxf(folder.Read("out.dxf"));
    };
    const Dxf strokes = write(u"A", TextStyle::kStroke);
    EXPECT_EQ(strokes.variables.at("$INSUNITS"), "4");
    EXPECT_EQ(strokes.layers, std::vector<std::string>{"STROKES"});
    ASSERT_EQ(strokes.entities.size(), 3u);
    EXPECT_EQ(strokes.entities[2].flags, 0);
    EXPECT_EQ(strokes.entities[2].places, (std::vector<std::array<double, 3>>{{4, 7, 0}, {14, 7, 0}}));

    const Dxf outlines = write(u"l\u00AEo", TextStyle::kOutline);
    EXPECT_EQ(outlines.layers, (std::vector<std::string>{"OUTLINES", "HOLES"}));
    std::map<std::string, int> counts;
    for (const DxfEntity& entity : outlines.entities) {
        EXPECT_EQ(entity.flags, 1);
        EXPECT_NE(entity.places.front(), entity.places.back());
        ++counts[entity.layer];
    }
    // The bar; a ring around an R, which has a hole; and a ring.
    EXPECT_EQ(counts, (std::map<std::string, int>{{"OUTLINES", 4}, {"HOLES", 3}}));
    EXPECT_EQ(outlines.entities[0].places.size(), 4u);

    const Dxf faces = write(u"l", TextStyle::kMesh, 3);
    ASSERT_EQ(faces.entities.size(), 12u);
    EXPECT_EQ(faces.entities[0].kind, "3DFACE");
    ASSERT_EQ(faces.entities[0].places.size(), 4u);
    EXPECT_EQ(faces.entities[0].places[0][2], 3);
    EXPECT_EQ(faces.entities[0].places[2], faces.entities[0].places[3]);
}

TEST(TextWriters, PicturesAndScenesHaveTheirRealSize) {
    const Folder folder;
    const DrawingOptions options{.capHeight = 20, .depth = 0, .unit = LengthUnit::kInch};
    const TextDrawing drawing = Draw(u"H", TextStyle::kStroke, options);
    Save(drawing.geometry, TextFormat::kSvg, folder / "h.svg");
    const std::string svg = folder.Read("h.svg");
    const std::string start = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"";
    ASSERT_TRUE(svg.starts_with(start));
    // The letter, with a margin of two pen widths around it.
    const double pen = 20.0 / 21;
    EXPECT_NEAR(std::stod(svg.substr(start.size())), 14 * 20.0 / 21 + 4 * pen, 1e-4);
    EXPECT_NE(svg.find("in\" height=\""), std::string::npos);

    DrawingOptions solid = options;
    solid.depth = 1.5;
    const TextGeometry geometry = Draw(u"H", TextStyle::kMesh, solid).geometry;
    Save(geometry, TextFormat::kGltf, folder / "h.glb");
    const auto document = gltf::Document::Load(folder / "h.glb");
    const gltf::Json& node = document.Elements(gltf::Kind::kNode)[0];
    EXPECT_FLOAT_EQ(static_cast<float>(node.Find("scale")->Items()[2].Number()), 0.0254F);
    const gltf::Json& positions = document.Elements(gltf::Kind::kAccessor)[0];
    EXPECT_EQ(positions.Find("max")->Items()[2].Number(), 1.5);

    Save(geometry, TextFormat::kStl, folder / "h.stl");
    const std::string stl = folder.Read("h.stl");
    ASSERT_EQ(stl.size(), 84 + 50 * geometry.triangles.size());
    std::uint32_t count = 0;
    std::memcpy(&count, stl.data() + 80, 4);
    EXPECT_EQ(count, geometry.triangles.size());
    float corners[12];
    for (std::size_t t = 0; t < count; ++t) {
        std::memcpy(corners, stl.data() + 84 + 50 * t, sizeof corners);
        EXPECT_NEAR(corners[0] * corners[0] + corners[1] * corners[1] + corners[2] * corners[2], 1, 1e-5);
        // The front faces up, the back faces down.
        if (t < 2) {
            EXPECT_EQ(corners[2], t == 0 ? 1 : -1);
        }
    }
}

TEST(TextWriters, RefuseNonFiniteCoordinates) {
    const Folder folder;
    TextGeometry geometry = Draw(u"H", TextStyle::kMesh, {.depth = 1}).geometry;
    geometry.points[3].y = std::numeric_limits<float>::infinity();
    for (const TextFormat format : {TextFormat::kSvg, TextFormat::kDxf, TextFormat::kGltf, TextFormat::kJson,
                                    TextFormat::kObj, TextFormat::kStl}) {
        EXPECT_THROW(Save(geometry, format, folder / "out"), Error);
        EXPECT_FALSE(std::filesystem::exists(folder / "out"));
    }
}

}  // namespace
}  // namespace zr
