// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "base/text.h"
#include "tests/app/commands/command_kit.h"

namespace zr {
namespace {

class CleanCommand : public testing::Test {
protected:
    // The exit status of `zr clean` with these arguments, in which % stands for the folder; the output goes
    // to "out".
    int Clean(std::string arguments) const {
        const std::string folder = (m_folder / "").string();
        for (std::size_t at; (at = arguments.find('%')) != std::string::npos;)
            arguments.replace(at, 1, folder);
        const int status = std::system(
            (test::Program() + " clean " + arguments + " >" + folder + "out 2>" + folder + "err").c_str());
        return WEXITSTATUS(status);
    }

    void Write(const std::string& name, const std::string& nodes) const {
        std::string roots;
        const auto count = static_cast<std::size_t>(std::count(nodes.begin(), nodes.end(), '{'));
        for (std::size_t i = 0; i < count; ++i) roots += Join(i == 0 ? "" : ",", i);
        m_folder.Write(name, Join(R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)", roots,
                                  R"(]}],"nodes":[)", nodes,
                                  R"(],"cameras":[{"type":"perspective","perspective":{"yfov":1,"znear":1}}],
            "materials":[{"name":"unused"}]})"));
    }

    gltf::test::TemporaryFolder m_folder;
};

TEST_F(CleanCommand, CleansManyScenesAsItCleansEachAlone) {
    std::string scenes;
    for (int i = 0; i < 8; ++i) {
        Write(Join("scene", i, ".gltf"), Join(R"({"name":"seen )", i, R"(","camera":0},{"name":"empty"})"));
        scenes += Join(" %scene", i, ".gltf");
    }
    EXPECT_EQ(Clean("--all --jobs 3 --out-dir %together" + scenes), 0);
    EXPECT_EQ(Clean("--all --jobs 1 --out-dir %alone" + scenes), 0);
    for (int i = 0; i < 8; ++i) {
        const std::string name = Join("/scene", i, ".gltf");
        EXPECT_NE(m_folder.Read("alone" + name), "");
        EXPECT_EQ(m_folder.Read("alone" + name).find("empty"), std::string::npos);
        EXPECT_EQ(m_folder.Read("together" + name), m_folder.Read("alone" + name));
    }
}

// A list option takes one word with commas, or is repeated, so the files may come anywhere.
TEST_F(CleanCommand, ListOptionsDoNotConsumeOperands) {
    Write("in.gltf", R"({"name":"seen","camera":0},{"name":"alpha"},{"name":"beta"},{"name":"gamma"})");
    const auto left = [&](const std::string& arguments) {
        EXPECT_EQ(Clean(arguments), 0) << arguments << ": " << m_folder.Read("err");
        const std::string text = m_folder.Read("out.gltf");
        std::string names;
        for (const char* name : {"alpha", "beta", "gamma", "unused"})
            if (text.find(name) != std::string::npos) names += name[0];
        return names;
    };
    EXPECT_EQ(left("--only materials %in.gltf %out.gltf"), "abg");
    EXPECT_EQ(left("--only=materials,layers %in.gltf %out.gltf"), "abg");
    EXPECT_EQ(left("%in.gltf --skip materials %out.gltf"), "u");
    EXPECT_EQ(left("--keep 'a*,b*' %in.gltf %out.gltf"), "ab");
    EXPECT_EQ(left("--keep 'a*' --keep 'g*' --skip materials %in.gltf %out.gltf"), "agu");
    EXPECT_EQ(Clean("--only materials,nonsense %in.gltf %out.gltf"), 2);
}

}  // namespace
}  // namespace zr
