// SPDX-License-Identifier: MIT
// make_scene large|xl|xk|deep FILE.glb: writes one of the scenes used in the comparison with other tools.
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "bench/scene_file.h"

int main(int argc, char** argv) {
    using zr::bench::SceneShape;
    const std::map<std::string, SceneShape> shapes = {{"large", SceneShape::Large()},
                                                      {"xl", SceneShape::ExtraLarge()},
                                                      {"xk", SceneShape::ManyKeys()},
                                                      {"deep", SceneShape::Deep()}};
    const auto shape = argc == 3 ? shapes.find(argv[1]) : shapes.end();
    if (shape == shapes.end()) {
        std::fprintf(stderr, "usage: make_scene large|xl|xk|deep FILE.glb\n");
        return 2;
    }
    try {
        zr::bench::WriteScene(argv[2], shape->second);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_scene: %s\n", error.what());
        return 1;
    }
    return 0;
}
