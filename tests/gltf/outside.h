// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gltf/document.h"
#include "tests/gltf/sample.h"

namespace zr::gltf::test {

// A scene folder with files outside it and a folder in it.
struct Outside {
    TemporaryFolder folder;

    Outside() {
        folder.Write("secret.bin", "data");
        folder.Write("other/x.bin", "data");
        folder.Write("scene/x.bin", "data");
        std::filesystem::create_directory(folder / "scene/folder.bin");
    }

    Document Load(const std::string& lists, bool allowOutside = false) const {
        folder.Write("scene/s.gltf", R"({"asset":{"version":"2.0"},)" + lists + "}");
        return Document::Load(folder / "scene/s.gltf", {.allowOutside = allowOutside});
    }

    // The place of the first fault, or "" when the scene loads.
    std::string Fault(const std::string& lists, bool allowOutside = false) const {
        try {
            Load(lists, allowOutside);
            return "";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kUri) << error.what();
            return error.Place();
        }
    }
};

inline std::string Buffer(const std::string& uri) {
    return R"("buffers":[{"byteLength":4,"uri":")" + uri + R"("}])";
}

inline std::string Image(const std::string& uri) {
    return R"("images":[{"uri":")" + uri + R"("}])";
}

}  // namespace zr::gltf::test
