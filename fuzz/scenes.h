// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/scene/loaded_scene.h"
#include "tests/app/operations/wild_plan.h"

namespace zr::fuzz {

// The choices of an input. The first two bytes choose those that follow after its end.
test::Random ChoicesOf(const std::uint8_t* data, std::size_t size);

// A random scene as a document, which is valid: every fault of it is a fault of what made it.
gltf::Document MakeDocument(test::Random& choices);

// A 32-bit word whose bits are on or off as `choices` has it, mostly as in `usual`.
std::uint32_t Word(test::Random& choices, std::uint32_t usual);

}  // namespace zr::fuzz
