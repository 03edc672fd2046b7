// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/scene/world_lengths.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

constexpr const char* kDocument = R"({"asset": {"version": "2.0"},
    "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}},
                {"type": "orthographic", "orthographic": {"xmag": 2, "ymag": 3, "znear": 0, "zfar": 20}}],
    "materials": [{"extensions": {"KHR_materials_volume": {"attenuationDistance": 0.25, "thicknessFactor": 1}}}, {}],
    "extensions": {"KHR_lights_punctual": {"lights": [{"type": "point", "range": 10}, {"type": "spot", "intensity": 5},
                                                      {"type": "directional", "intensity": 3}]}}})";

TEST(WorldLengths, GrowWithTheWorld) {
    gltf::Document document = gltf::test::FromText(kDocument);
    ScaleLengths(document, 100);
    const gltf::Document expected = gltf::test::FromText(R"({"asset": {"version": "2.0"},
    "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 10}},
                {"type": "orthographic", "orthographic": {"xmag": 200, "ymag": 300, "znear": 0, "zfar": 2000}}],
    "materials": [{"extensions": {"KHR_materials_volume": {"attenuationDistance": 25, "thicknessFactor": 1}}}, {}],
    "extensions": {"KHR_lights_punctual": {"lights": [{"type": "point", "range": 1000, "intensity": 10000},
        {"type": "spot", "intensity": 50000}, {"type": "directional", "intensity": 3}]}}})");
    EXPECT_TRUE(gltf::EqualJson(document.Root(), expected.Root())) << gltf::WriteJson(document.Root(), true);
    EXPECT_THROW(ScaleLengths(document, 1e37), gltf::Error);
}

TEST(WorldLengths, FactorsByPointer) {
    const gltf::Document document = gltf::test::FromText(kDocument);
    const std::pair<const char*, double> cases[] = {
        {"/cameras/0/perspective/znear", 10},
        {"/cameras/0/perspective/yfov", 1},
        {"/cameras/1/orthographic/ymag", 10},
        {"/cameras/2/perspective/znear", 1},
        {"/extensions/KHR_lights_punctual/lights/0/intensity", 100},
        {"/extensions/KHR_lights_punctual/lights/1/range", 10},
        {"/extensions/KHR_lights_punctual/lights/2/intensity", 1},
        {"/materials/0/extensions/KHR_materials_volume/attenuationDistance", 10},
        {"/materials/0/extensions/KHR_materials_volume/thicknessFactor", 1},
        {"/nodes/0/translation", 1},
    };
    for (const auto& [pointer, factor] : cases)
        EXPECT_EQ(LengthFactor(document, pointer, 10), factor) << pointer;
}

}  // namespace
}  // namespace zr
