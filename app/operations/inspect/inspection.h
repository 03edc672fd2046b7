// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "app/operations/compare/drawn.h"
#include "app/operations/inspect/table.h"
#include "gltf/document.h"

namespace zr::inspect {

using compare::kNone;

// An axis-aligned bounding box, empty at first.
struct Box {
    compare::Vec3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};

    void Widen(compare::Vec3 point);
    bool IsEmpty() const { return !(low.x <= high.x); }
};

// A document with its evaluation and what it draws at rest, and the findings so far.
struct Inspection {
    explicit Inspection(gltf::Document& inspected);  // which must outlive it

    std::span<const gltf::Json> Elements(gltf::Kind kind) const {
        return std::as_const(document).Elements(kind);
    }
    Table& Add(std::string name, std::vector<std::string> columns);
    void Warn(std::string place, std::string text);

    gltf::Document& document;
    compare::Evaluator evaluator;
    compare::Drawn drawn;
    Box box;                     // of everything drawn, in world space
    std::vector<Box> meshBoxes;  // by mesh, in the mesh's own space
    std::vector<Table> tables;
    std::vector<std::pair<std::string, std::string>> warnings;  // place and text
};

// Each adds its table and its warnings.
void AddSummary(Inspection& in);
void AddScenes(Inspection& in);
void AddNodes(Inspection& in);
void AddMeshes(Inspection& in);
void AddMaterials(Inspection& in);
void AddTextures(Inspection& in);
void AddSkins(Inspection& in);
void AddCameras(Inspection& in);
void AddLights(Inspection& in);
void AddAnimations(Inspection& in);
void AddExtensions(Inspection& in);
void AddBytes(Inspection& in);
void WarnOfVertices(Inspection& in);

// Cells of tables.
Cell Count(std::size_t count);
Cell Optional(std::size_t index);  // empty for kNone
Cell Yes(bool holds);              // empty otherwise
Cell Name(const gltf::Json& element);
Cell Point(compare::Vec3 point);
Cell Low(const Box& box);  // empty for an empty box
Cell High(const Box& box);
Cell Listed(const std::set<std::string>& texts);  // "a, b, c"

}  // namespace zr::inspect
