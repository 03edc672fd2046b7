// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "gltf/document.h"

namespace zr::report {

// A scene that the page shows. Making the page changes the document.
struct Scene {
    std::string label;
    gltf::Document document;
    // Applied to the whole scene before it is shown; column-major.
    std::optional<std::array<double, 16>> matrix;
};

// Maps the time of an animation of the second scene to that of the first: time * scale + offset, in seconds,
// clamped to `from` and `to`.
struct ClipTime {
    std::string animation;
    double scale = 1, offset = 0, from = 0, to = 0;
};

struct Page {
    std::string kind;  // the command: "clean", "export", "merge", "split", "compare", "text"
    std::string title, subtitle;
    std::vector<std::pair<std::string, std::string>> summary;
    std::vector<Scene> scenes;    // at most two: before, then after
    std::vector<ClipTime> times;  // empty: both play their whole length together
    std::string result;           // the command's result as JSON; empty: none
    std::string drawing;          // SVG; empty: none
    std::vector<std::pair<std::string, std::string>> measures;  // labels and values for the drawing
};

// Whether the program was built with report pages.
bool HasPages();

// The HTML of a self-contained page. Throws std::runtime_error in a build without report pages, and
// gltf::Error.
std::string PageText(Page page);

// The document as a self-contained, uncompressed binary glTF file. Changes the document. Throws gltf::Error.
std::vector<std::byte> PackContainer(gltf::Document& document);

}  // namespace zr::report
