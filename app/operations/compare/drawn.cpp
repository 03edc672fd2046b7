// SPDX-License-Identifier: MIT
#include "app/operations/compare/drawn.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr::compare {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// Limits on the numbers of all vertices together and on the instances of a node: a document of a few bytes
// can ask for any number.
constexpr std::size_t kMostNumbers = std::size_t{1} << 29;
constexpr std::size_t kMostInstances = std::size_t{1} << 20;

Role RoleOf(std::string_view name) {
    if (name == "POSITION") return Role::kPosition;
    if (name == "NORMAL") return Role::kNormal;
    if (name == "TANGENT") return Role::kTangent;
    return Role::kValue;
}

// The corners of a primitive's faces; `order`: its vertices as its indices list them.
std::vector<std::uint32_t> FacesOf(std::size_t mode, const std::vector<std::uint32_t>& order) {
    std::vector<std::uint32_t> faces;
    const std::size_t count = order.size();
    const auto add = [&](std::initializer_list<std::size_t> corners) {
        for (const std::size_t corner : corners) faces.push_back(order[corner]);
    };
    switch (mode) {
        case 0:
            return order;
        case 1:
            for (std::size_t i = 0; i + 1 < count; i += 2) add({i, i + 1});
            break;
        case 2:
        case 3:
            for (std::size_t i = 0; i + 1 < count; ++i) add({i, i + 1});
            if (mode == 2 && count > 1) add({count - 1, 0});
            break;
        case 5:
            for (std::size_t i = 0; i + 2 < count; ++i) add({i, i + 1 + i % 2, i + 2 - i % 2});
            break;
        case 6:
            for (std::size_t i = 1; i + 1 < count; ++i) add({i, i + 1, 0});
            break;
        default:
            for (std::size_t i = 0; i + 2 < count; i += 3) add({i, i + 1, i + 2});
    }
    return faces;
}

void AddInfluences(const gltf::Document& document, const Json& attributes, Primitive& shape) {
    std::vector<std::vector<std::uint32_t>> joints;
    std::vector<std::vector<float>> weights;
    for (std::size_t set = 0;; ++set) {
        const Json* joint = attributes.Find(Join("JOINTS_", set));
        const Json* weight = attributes.Find(Join("WEIGHTS_", set));
        if (joint == nullptr || weight == nullptr) break;
        joints.push_back(gltf::ReadIntegers(document, *joint->Index()));
        weights.push_back(gltf::ReadFloats(document, *weight->Index()));
        if (joints.back().size() != 4 * shape.vertices || weights.back().size() != 4 * shape.vertices) return;
    }
    shape.influences = 4 * joints.size();
    for (std::size_t vertex = 0; vertex < shape.vertices; ++vertex)
        for (std::size_t set = 0; set < joints.size(); ++set)
            for (std::size_t i = 4 * vertex; i < 4 * vertex + 4; ++i) {
                shape.joints.push_back(joints[set][i]);
                shape.weights.push_back(weights[set][i]);
            }
}

bool CanRead(const gltf::Document& document, const Json& primitive) {
    const auto stored = [&](const Json& accessor) { return gltf::HasData(document, *accessor.Index()); };
    if (const Json* indices = primitive.Find("indices"); indices != nullptr && !stored(*indices))
        return false;
    for (const gltf::JsonMember& member : primitive.Find("attributes")->Members())
        if (!stored(member.value)) return false;
    if (const Json* targets = primitive.Find("targets"))
        for (const Json& target : targets->Items())
            for (const gltf::JsonMember& member : target.Members())
                if (!stored(member.value)) return false;
    return true;
}

using FloatsOf = std::function<std::span<const float>(std::size_t accessor)>;

Attribute ReadAttribute(const gltf::Document& document, const Json& primitive, const gltf::JsonMember& member,
                        const FloatsOf& floats) {
    Attribute attribute;
    attribute.name = member.Name();
    attribute.role = RoleOf(member.Name());
    attribute.width = gltf::Describe(document, *member.value.Index()).shape.Components();
    attribute.values = floats(*member.value.Index());
    const Json* targets = primitive.Find("targets");
    if (targets == nullptr) return attribute;
    for (const Json& target : targets->Items()) {
        const Json* moved = target.Find(member.Name());
        attribute.targets.push_back(moved != nullptr ? floats(*moved->Index()) : std::span<const float>());
    }
    return attribute;
}

// Identifies a primitive's data by its mode and accessors.
std::string KeyOf(const Json& primitive) {
    std::string key = Join(IndexMember(primitive, "mode", 4), " ", IndexMember(primitive, "indices", kNone));
    const auto add = [&](const Json& attributes) {
        for (const gltf::JsonMember& member : attributes.Members())
            key += Join(" ", member.Name(), "=", *member.value.Index());
        key += ';';
    };
    add(*primitive.Find("attributes"));
    if (const Json* targets = primitive.Find("targets"))
        for (const Json& target : targets->Items()) add(target);
    if (const Json* packed = gltf::FindExtension(primitive, "KHR_draco_mesh_compression"))
        key += Join(" packed ", IndexMember(*packed, "bufferView"));
    return key;
}

Primitive Read(const gltf::Document& document, const Json& primitive, const FloatsOf& floats) {
    Primitive shape;
    const std::size_t mode = IndexMember(primitive, "mode", 4);
    shape.corners = mode == 0 ? 1 : mode < 4 ? 2 : 3;
    const Json& attributes = *primitive.Find("attributes");
    shape.isRead = CanRead(document, primitive);
    if (!shape.isRead || attributes.Find("POSITION") == nullptr) return shape;
    for (const gltf::JsonMember& member : attributes.Members()) {
        if (member.Name().starts_with("JOINTS_") || member.Name().starts_with("WEIGHTS_")) continue;
        shape.attributes.push_back(ReadAttribute(document, primitive, member, floats));
    }
    std::sort(shape.attributes.begin(), shape.attributes.end(), [](const Attribute& a, const Attribute& b) {
        return std::make_tuple(a.role != Role::kPosition, a.name) <
               std::make_tuple(b.role != Role::kPosition, b.name);
    });
    for (const Attribute& attribute : shape.attributes) shape.stride += attribute.width;
    shape.vertices = shape.attributes.front().values.size() / 3;
    std::vector<std::uint32_t> order(shape.vertices);
    std::iota(order.begin(), order.end(), 0U);
    if (primitive.Find("indices") != nullptr)
        order = gltf::ReadIntegers(document, IndexMember(primitive, "indices"));
    shape.faces = FacesOf(mode, order);
    AddInfluences(document, attributes, shape);
    return shape;
}

}  // namespace

std::string Primitive::Layout() const {
    std::string layout = corners == 1 ? "points" : corners == 2 ? "lines" : "triangles";
    for (const Attribute& attribute : attributes) layout += Join(" ", attribute.name, ":", attribute.width);
    return layout;
}

Drawn::Drawn(const Evaluator& evaluator, const std::vector<std::size_t>& nodes) : m_evaluator(evaluator) {
    const gltf::Document& document = evaluator.Document();
    std::size_t numbers = 0, weights = 0;
    for (const std::size_t node : nodes) {
        const Json& json = document.Elements(Kind::kNode)[node];
        if (json.Find("mesh") == nullptr) continue;
        Part part;
        part.node = node;
        part.mesh = IndexMember(json, "mesh");
        part.skin = IndexMember(json, "skin", kNone);
        if (part.skin != kNone) ReadSkin(part.skin);
        const auto primitives = document.Elements(Kind::kMesh)[part.mesh].Find("primitives")->Items();
        const Shapes& shapes = ReadMesh(part.mesh, node);
        weights += TargetCount(document.Elements(Kind::kMesh)[part.mesh]);
        for (part.primitive = 0; part.primitive < primitives.size(); ++part.primitive) {
            part.material = IndexMember(primitives[part.primitive], "material", kNone);
            part.shape = shapes[part.primitive];
            const std::size_t before = m_parts.size();
            AddInstances(json, part);
            const std::size_t own = part.shape->vertices * part.shape->stride;
            numbers += (m_parts.size() - before) * std::max<std::size_t>(own, 1);
            if (numbers > kMostNumbers || own * sizeof(double) > Budget() ||
                m_parts.size() * sizeof(Part) + weights * sizeof(double) > Budget())
                FailTooMuch(node);
        }
    }
}

void Drawn::FailTooMuch(std::size_t node) const {
    m_evaluator.Document().Fail(gltf::ErrorKind::kLimit, Join("/nodes/", node),
                                "the scene draws too much to compare");
}

std::span<const float> Drawn::ReadFloats(std::size_t accessor) {
    const auto [known, isNew] = m_floats.try_emplace(accessor);
    if (isNew) known->second = gltf::ReadFloats(m_evaluator.Document(), accessor);
    return known->second;
}

const Drawn::Shapes& Drawn::ReadMesh(std::size_t mesh, std::size_t node) {
    const auto [known, isNew] = m_meshes.try_emplace(mesh);
    if (!isNew) return known->second;
    const gltf::Document& document = m_evaluator.Document();
    const auto primitives = document.Elements(Kind::kMesh)[mesh].Find("primitives")->Items();
    for (std::size_t i = 0; i < primitives.size(); ++i) {
        auto& shape = m_shapes[KeyOf(primitives[i])];
        if (!shape) {
            shape = std::make_shared<const Primitive>(
                Read(document, primitives[i], [this](std::size_t accessor) { return ReadFloats(accessor); }));
            m_read += (shape->faces.size() + shape->joints.size()) * sizeof(std::uint32_t) +
                      shape->weights.size() * sizeof(float);
            if (m_read > Budget()) FailTooMuch(node);
            if (!shape->isRead) m_unread.push_back(Join("/meshes/", mesh, "/primitives/", i));
        }
        known->second.push_back(shape);
    }
    return known->second;
}

void Drawn::AddInstances(const Json& node, Part part) {
    const Json* instancing = gltf::FindExtension(node, "EXT_mesh_gpu_instancing");
    const Json* attributes = instancing != nullptr ? instancing->Find("attributes") : nullptr;
    if (attributes == nullptr || attributes->Members().empty()) {
        m_parts.push_back(std::move(part));
        return;
    }
    const gltf::Document& document = m_evaluator.Document();
    std::vector<Trs> instances;
    const auto read = [&](const char* name, auto member) {
        const Json* accessor = attributes->Find(name);
        if (accessor == nullptr || !gltf::HasData(document, *accessor->Index())) return;
        const std::size_t width = std::size(Trs().*member);
        const gltf::AccessorInfo info = gltf::Describe(document, *accessor->Index());
        if (info.count > kMostInstances)
            document.Fail(gltf::ErrorKind::kLimit, Join("/accessors/", *accessor->Index()),
                          "more instances than can be compared");
        if (info.shape.Components() != width) return;
        const std::vector<float> values = gltf::ReadFloats(document, *accessor->Index());
        instances.resize(std::max(instances.size(), values.size() / width));
        for (std::size_t i = 0; i < values.size(); ++i)
            (instances[i / width].*member)[i % width] = static_cast<double>(values[i]);
    };
    read("TRANSLATION", &Trs::translation);
    read("ROTATION", &Trs::rotation);
    read("SCALE", &Trs::scale);
    for (const Trs& instance : instances) {
        part.instance = instance.Matrix();
        m_parts.push_back(part);
    }
}

void Drawn::ReadSkin(std::size_t skin) {
    const auto [known, isNew] = m_skins.try_emplace(skin);
    if (!isNew) return;
    const gltf::Document& document = m_evaluator.Document();
    const Json& json = document.Elements(Kind::kSkin)[skin];
    std::vector<float> binds;
    if (const Json* accessor = json.Find("inverseBindMatrices"))
        if (gltf::HasData(document, *accessor->Index()))
            binds = gltf::ReadFloats(document, *accessor->Index());
    for (const Json& joint : json.Find("joints")->Items()) {
        const std::size_t at = 16 * known->second.joints.size();
        known->second.joints.push_back(*joint.Index());
        known->second.binds.push_back(
            at + 16 <= binds.size() ? AffineOf(std::span<const float>(binds).subspan(at, 16)) : Affine());
    }
}

std::size_t Drawn::Faces() const {
    std::size_t faces = 0;
    for (const Part& part : m_parts) faces += part.shape->faces.size() / part.shape->corners;
    return faces;
}

std::vector<Affine> Drawn::JointWorlds(const Part& part) const {
    std::vector<Affine> worlds;
    if (part.skin == kNone || part.shape->influences == 0) return worlds;
    const Skin& skin = m_skins.at(part.skin);
    for (std::size_t i = 0; i < skin.joints.size(); ++i)
        worlds.push_back(m_evaluator.World(skin.joints[i]) * skin.binds[i]);
    return worlds;
}

std::vector<double> Drawn::Vertices(const Part& part) const {
    const Primitive& shape = *part.shape;
    const std::size_t stride = shape.stride;
    std::vector<double> out(shape.vertices * stride);
    const std::vector<double> morph = m_evaluator.Weights(part.node);
    const Affine placed = m_evaluator.World(part.node) * part.instance;
    const std::vector<Affine> joints = JointWorlds(part);
    std::vector<Affine> skinned;
    if (!joints.empty()) {
        skinned.resize(shape.vertices);
        for (std::size_t vertex = 0; vertex < shape.vertices; ++vertex) {
            Affine blend{{}, {}, {}, {}};
            for (std::size_t i = vertex * shape.influences; i < (vertex + 1) * shape.influences; ++i) {
                const double weight = static_cast<double>(shape.weights[i]);
                if (weight == 0 || shape.joints[i] >= joints.size()) continue;
                const Affine& joint = joints[shape.joints[i]];
                blend = {blend.x + joint.x * weight, blend.y + joint.y * weight, blend.z + joint.z * weight,
                         blend.origin + joint.origin * weight};
            }
            skinned[vertex] = blend;
        }
    }
    std::size_t offset = 0;
    for (const Attribute& attribute : shape.attributes) {
        const std::size_t width = attribute.width;
        const std::size_t vertices = std::min(shape.vertices, attribute.values.size() / width);
        for (std::size_t vertex = 0; vertex < vertices; ++vertex) {
            double* to = out.data() + vertex * stride + offset;
            for (std::size_t i = 0; i < width; ++i)
                to[i] = static_cast<double>(attribute.values[vertex * width + i]);
            for (std::size_t target = 0; target < attribute.targets.size() && target < morph.size();
                 ++target) {
                const std::span<const float> moved = attribute.targets[target];
                // Morph targets move tangents by three numbers; the handedness stays.
                const std::size_t moves = moved.size() / shape.vertices;
                if (morph[target] == 0) continue;
                for (std::size_t i = 0; i < std::min(width, moves); ++i)
                    to[i] += morph[target] * static_cast<double>(moved[vertex * moves + i]);
            }
            if (attribute.role == Role::kValue || width < 3) continue;
            const Affine& world = joints.empty() ? placed : skinned[vertex];
            const Vec3 from{to[0], to[1], to[2]};
            const Vec3 at = attribute.role == Role::kPosition ? world.Point(from)
                            : attribute.role == Role::kNormal ? Unit(world.Normal(from))
                                                              : Unit(world.Direction(from));
            to[0] = at.x, to[1] = at.y, to[2] = at.z;
        }
        offset += width;
    }
    return out;
}

}  // namespace zr::compare
