// SPDX-License-Identifier: MIT
// Names that the tools cut contain whole characters, stay within the limit and are unique.
#include <gtest/gtest.h>

#include "app/operations/export/export_scene.h"
#include "kernix/utf.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using Names = std::vector<std::string>;

Names Exported(const Names& names, const ExportOptions& options, gltf::Kind kind) {
    static Host host("en");
    static const bool hasModule = (host.LoadModule(), true);
    EXPECT_TRUE(hasModule);
    std::string nodes, roots, materials;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string comma = i == 0 ? "" : ",";
        nodes += comma + R"({"name":")" + names[i] + "\"}";
        materials += comma + R"({"name":")" + names[i] + "\"}";
        roots += comma + std::to_string(i);
    }
    LoadedScene loaded(gltf::test::FromText(R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[)" + roots +
                                            R"(]}],"nodes":[)" + nodes + R"(],"materials":[)" + materials +
                                            "]}"));
    gltf::Document document = ExportScene(host, std::move(loaded), options, [](double) {}).document;
    Names exported;
    for (const gltf::Json& element : document.Elements(kind))
        exported.emplace_back(element.Find("name")->String());
    return exported;
}

ExportOptions Naming(std::uint32_t flags, int limit) {
    ExportOptions options;
    options.exportFlags |= vl::tk::kAssignNames;
    options.nameFlags |= flags | vl::tk::kNamesKeepCharacters;
    options.maxNameLength = limit;
    options.maxMaterialNameLength = limit;
    return options;
}

TEST(WholeNames, AreCutBetweenCharacters) {
    // Two bytes, three, four.
    const Names names{"aaaé", "aa日", "a😀", "éé", "aaa"};
    EXPECT_EQ(Exported(names, Naming(0, 4), gltf::Kind::kNode), (Names{"aaa", "aa", "a", "éé", "aaa"}));
    EXPECT_EQ(Exported({"aaa😀", "😀😀b"}, Naming(vl::tk::kNamesWide, 4), gltf::Kind::kNode),
              (Names{"aaa", "😀😀"}))
        << "wide names are counted in units";
}

TEST(WholeNames, AreUniqueWithinTheLimit) {
    const Names names{"aaaé", "aaaè", "aaa", "AAAê", "ééé", "éééa", "éééb", "日本", "日本語", "😀", "😀😀"};
    for (const std::uint32_t wide : {0U, std::uint32_t{vl::tk::kNamesWide}}) {
        for (const gltf::Kind kind : {gltf::Kind::kNode, gltf::Kind::kMaterial}) {
            const Names exported = Exported(names, Naming(vl::tk::kNamesUnique | wide, 4), kind);
            std::set<std::string> folded;
            for (const std::string& name : exported) {
                if (wide == 0 && kind == gltf::Kind::kNode) {
                    EXPECT_LE(name.size(), 4U) << name;
                }
                EXPECT_EQ(name.find("\uFFFD"), std::string::npos) << name;
                std::string lower = name;
                std::transform(lower.begin(), lower.end(), lower.begin(),
                               [](char c) { return std::tolower(c); });
                EXPECT_TRUE(folded.insert(lower).second) << name;
            }
        }
    }
    const std::uint32_t exact = vl::tk::kNamesUnique | vl::tk::kNamesExactCase;
    EXPECT_EQ(Exported({"aaaé", "AAAé"}, Naming(exact, 4), gltf::Kind::kNode), (Names{"aaa", "AAA"}));
}

}  // namespace
}  // namespace zr
