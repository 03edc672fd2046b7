// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "app/operations/inspect/inspection.h"
#include "base/text.h"

namespace zr::inspect {

using gltf::Json;
using gltf::Kind;

namespace {

void WarnOf(Inspection& in, const compare::Part& part) {
    const std::string place = Join("/meshes/", part.mesh, "/primitives/", part.primitive);
    const compare::Primitive& shape = *part.shape;
    for (const compare::Attribute& attribute : shape.attributes) {
        const auto broken = std::count_if(attribute.values.begin(), attribute.values.end(),
                                          [](float value) { return !std::isfinite(value); });
        if (broken > 0)
            in.Warn(
                Join(place, "/attributes/", attribute.name),
                Join(Counted(static_cast<std::size_t>(broken), "number is", "numbers are"), " not finite"));
    }
    std::size_t thin = 0;
    for (std::size_t i = 0; shape.corners == 3 && i + 2 < shape.faces.size(); i += 3)
        thin += shape.faces[i] == shape.faces[i + 1] || shape.faces[i + 1] == shape.faces[i + 2] ||
                shape.faces[i] == shape.faces[i + 2];
    if (thin > 0) in.Warn(place, Join(Counted(thin, "triangle uses", "triangles use"), " a vertex twice"));
    std::vector<bool> used(shape.vertices, false);
    for (const std::uint32_t vertex : shape.faces) used[vertex] = true;
    const auto unused = std::count(used.begin(), used.end(), false);
    if (unused > 0)
        in.Warn(place,
                Join(Counted(static_cast<std::size_t>(unused), "vertex is", "vertices are"), " in no face"));
}

}  // namespace

void WarnOfVertices(Inspection& in) {
    for (const std::string& place : in.drawn.Unread()) in.Warn(place, "the vertex data cannot be read");
    std::set<const compare::Primitive*> warned;
    for (const compare::Part& part : in.drawn.Parts())
        if (warned.insert(part.shape.get()).second) WarnOf(in, part);
}

}  // namespace zr::inspect
