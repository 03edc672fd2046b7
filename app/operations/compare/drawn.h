// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "app/operations/compare/evaluator.h"

namespace zr::compare {

// The meaning of an attribute's numbers: decides how they are transformed and compared.
enum class Role { kPosition, kNormal, kTangent, kValue };

struct Attribute {
    std::string name;
    Role role = Role::kValue;
    std::size_t width = 0;                        // numbers per vertex
    std::span<const float> values;                // vertex after vertex
    std::vector<std::span<const float>> targets;  // what each morph target adds; empty: nothing
};

// A primitive, valid as long as its Drawn, as faces of 1 (points), 2 (lines) or 3 (triangles)
// corners.
struct Primitive {
    std::size_t corners = 3;
    std::size_t vertices = 0;
    std::vector<std::uint32_t> faces;   // corners, face after face
    std::vector<Attribute> attributes;  // the position, then the others by name
    std::size_t stride = 0;             // numbers per vertex: the sum of the attributes' widths
    std::vector<std::uint32_t> joints;  // of the skin; `influences` per vertex
    std::vector<float> weights;         // the same
    std::size_t influences = 0;
    bool isRead = true;  // false: its data cannot be read

    // "triangles POSITION:3 NORMAL:3"; primitives of equal layout can be compared.
    std::string Layout() const;
};

// A primitive drawn by a node, or one instance of it.
struct Part {
    std::size_t node = kNone;
    std::size_t mesh = 0, primitive = 0;  // of the document
    std::size_t material = kNone;
    std::size_t skin = kNone;
    Affine instance;  // applied before the node's transform
    std::shared_ptr<const Primitive> shape;
};

// What a document draws. Each primitive and each accessor is read once, even if used often.
class Drawn {
public:
    // Collects the parts that the nodes draw, in the order of the nodes. The evaluator must outlive it.
    // Throws gltf::Error, also if the nodes draw too much.
    Drawn(const Evaluator& evaluator, const std::vector<std::size_t>& nodes);

    const std::vector<Part>& Parts() const { return m_parts; }
    // Places of primitives whose data cannot be read.
    const std::vector<std::string>& Unread() const { return m_unread; }
    // Faces of all parts.
    std::size_t Faces() const;
    // Throws gltf::Error: the node draws more than the budget allows.
    [[noreturn]] void FailTooMuch(std::size_t node) const;
    std::uint64_t Budget() const { return m_evaluator.Document().Budget().Total(); }

    // The vertices of a part in world space in the evaluator's current pose, `stride` numbers each, in the
    // order of the attributes. Normals and tangents have unit length.
    std::vector<double> Vertices(const Part& part) const;

private:
    using Shapes = std::vector<std::shared_ptr<const Primitive>>;  // of a mesh

    const Shapes& ReadMesh(std::size_t mesh, std::size_t node);
    std::span<const float> ReadFloats(std::size_t accessor);
    void AddInstances(const gltf::Json& node, Part part);
    void ReadSkin(std::size_t skin);
    std::vector<Affine> JointWorlds(const Part& part) const;

    struct Skin {
        std::vector<std::size_t> joints;
        std::vector<Affine> binds;
    };

    const Evaluator& m_evaluator;
    std::vector<Part> m_parts;
    std::map<std::size_t, std::vector<float>> m_floats;  // of accessors
    // By mode and accessors; primitives that share these share the data.
    std::map<std::string, std::shared_ptr<const Primitive>> m_shapes;
    std::map<std::size_t, Shapes> m_meshes;
    std::map<std::size_t, Skin> m_skins;
    std::vector<std::string> m_unread;
    std::uint64_t m_read = 0;  // bytes of faces and influences
};

}  // namespace zr::compare
