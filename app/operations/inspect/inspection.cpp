// SPDX-License-Identifier: MIT
#include "app/operations/inspect/inspection.h"

#include <algorithm>

#include "base/text.h"
#include "gltf/members.h"

namespace zr::inspect {

using gltf::Kind;

void Box::Widen(compare::Vec3 p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
}

namespace {

std::vector<std::size_t> ShownNodes(const compare::Evaluator& evaluator) {
    std::vector<std::size_t> nodes = evaluator.ParentsFirst();
    std::erase_if(nodes, [&](std::size_t node) { return !evaluator.Shown()[node]; });
    return nodes;
}

}  // namespace

Inspection::Inspection(gltf::Document& inspected)
    : document(inspected),
      evaluator(inspected),
      drawn(evaluator, ShownNodes(evaluator)),
      meshBoxes(Elements(Kind::kMesh).size()) {
    for (const compare::Part& part : drawn.Parts()) {
        const std::vector<double> vertices = drawn.Vertices(part);
        const std::size_t stride = part.shape->stride;
        for (std::size_t i = 0; stride > 0 && i < vertices.size(); i += stride)
            box.Widen({vertices[i], vertices[i + 1], vertices[i + 2]});
        for (const compare::Attribute& attribute : part.shape->attributes) {
            if (attribute.role != compare::Role::kPosition) continue;
            for (std::size_t i = 0; i + 2 < attribute.values.size(); i += 3)
                meshBoxes[part.mesh].Widen({static_cast<double>(attribute.values[i]),
                                            static_cast<double>(attribute.values[i + 1]),
                                            static_cast<double>(attribute.values[i + 2])});
        }
    }
}

Table& Inspection::Add(std::string name, std::vector<std::string> columns) {
    return tables.emplace_back(Table{std::move(name), std::move(columns), {}});
}

void Inspection::Warn(std::string place, std::string text) {
    warnings.emplace_back(std::move(place), std::move(text));
}

Cell Count(std::size_t count) {
    return std::uint64_t{count};
}

Cell Optional(std::size_t index) {
    return index == kNone ? Cell() : Count(index);
}

Cell Yes(bool holds) {
    return holds ? Cell(std::string("yes")) : Cell();
}

Cell Name(const gltf::Json& element) {
    return std::string(gltf::NameOf(element));
}

Cell Point(compare::Vec3 p) {
    return Join(Short(p.x), " ", Short(p.y), " ", Short(p.z));
}

Cell Low(const Box& box) {
    return box.IsEmpty() ? Cell() : Point(box.low);
}

Cell High(const Box& box) {
    return box.IsEmpty() ? Cell() : Point(box.high);
}

Cell Listed(const std::set<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) list += Join(list.empty() ? "" : ", ", text);
    return list;
}

}  // namespace zr::inspect
