// SPDX-License-Identifier: MIT
#include "fuzz/scenes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zr::fuzz {

test::Random ChoicesOf(const std::uint8_t* data, std::size_t size) {
    const std::size_t head = std::min<std::size_t>(size, 2);
    unsigned seed = 0;
    for (std::size_t i = 0; i < head; ++i) seed = seed << 8 | data[i];
    return test::Random(seed, {data + head, size - head});
}

gltf::Document MakeDocument(test::Random& choices) {
    const test::ScenePlan plan =
        choices.Chance() ? test::MakeWildPlan(choices) : test::MakeLivelyPlan(choices);
    try {
        return test::Write(plan, choices);
    } catch (const gltf::Error& error) {
        std::fprintf(stderr, "not a valid scene: %s\n", error.what());
        std::abort();
    }
}

std::uint32_t Word(test::Random& choices, std::uint32_t usual) {
    std::uint32_t word = usual;
    for (std::size_t flips = choices.Pick(8); flips-- > 0;) word ^= 1U << choices.Pick(32);
    return word;
}

}  // namespace zr::fuzz
