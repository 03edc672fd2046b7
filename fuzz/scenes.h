// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/scene/loaded_scene.h"
#include "tests/app/operations/wild_plan.h"

namespace zr::fuzz {

// The choices that an input makes. Its first two bytes seed the choices after its end.
test::Random ChoicesOf(const std::uint8_t* data, std::size_t size);

// A random scene as a valid document; aborts if it is not, which is a fault of the generator.
gltf::Document MakeDocument(test::Random& choices);

// `usual` with up to seven random bits flipped.
std::uint32_t Word(test::Random& choices, std::uint32_t usual);

}  // namespace zr::fuzz
