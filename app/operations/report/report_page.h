// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gltf/document.h"

namespace zr::report {

// A scene that the page shows. The document is used up.
struct Scene {
    std::string label;
    gltf::Document document;
    // Applied to the whole scene before it is shown, column by column.
    std::optional<std::array<double, 16>> matrix;
};

// Where the time of an animation of the second scene stands in the first: time * scale + offset, seconds, no
// earlier than `from` and no later than `to`.
struct ClipTime {
    std::string animation;
    double scale = 1, offset = 0, from = 0, to = 0;
};

struct Page {
    std::string kind;  // the command: "clean", "export", "merge", "split", "compare", "text"
    std::string title, subtitle;
    std::vector<std::pair<std::string, std::string>> summary;
    std::vector<Scene> scenes;                                  // at most two: before, then after
    std::vector<ClipTime> times;                                // empty: both play from end to end at once
    std::string result;                                         // of the command, JSON; empty: none
    std::string drawing;                                        // SVG; empty: none
    std::vector<std::pair<std::string, std::string>> measures;  // of the drawing
};

// Whether the program was built with report pages.
bool HasPages();

// One self-contained page. Throws std::runtime_error in a program that was built without report pages, and
// gltf::Error.
std::string PageText(Page page);

// The document as one self-contained, uncompressed container. The document is used up. Throws gltf::Error.
std::vector<std::byte> PackContainer(gltf::Document& document);

}  // namespace zr::report
