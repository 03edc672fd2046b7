// SPDX-License-Identifier: MIT
#include "tests/app/operations/compare/scene_plan.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include "app/operations/compare/affine.h"
#include "base/text.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

float Uniform(Random& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

std::array<float, 4> Rotation(Random& random) {
    std::array<float, 4> q;
    float norm = 0;
    for (float& part : q) part = Uniform(random, -1, 1), norm += part * part;
    for (float& part : q) part /= std::sqrt(norm);
    return q;
}

ScenePlan::Track MakeTrack(Random& random, std::size_t node, const std::string& path, const char* way) {
    ScenePlan::Track track{node, path, way, {}, {}};
    const int parts = std::string_view(way) == "CUBICSPLINE" ? 3 : 1;
    for (int key = 0; key < 5; ++key) {
        track.times.push_back(static_cast<float>(key) * 0.5F + Uniform(random, 0, 0.2F));
        for (int part = 0; part < parts; ++part) {
            if (path == "rotation") {
                for (const float value : Rotation(random))
                    track.values.push_back(part == 1 || parts == 1 ? value : 0);
            } else {
                for (int i = 0; i < (path == "weights" ? 1 : 3); ++i)
                    track.values.push_back(Uniform(random, 0.5F, 1));
            }
        }
    }
    return track;
}

// The order in which elements of one kind are written.
struct Order {
    std::vector<std::size_t> place;     // index of each element in the document
    std::vector<std::size_t> elements;  // the element at each index

    Order(std::size_t count, Random& random) : place(count), elements(count) {
        std::iota(elements.begin(), elements.end(), std::size_t{0});
        std::shuffle(elements.begin(), elements.end(), random);
        for (std::size_t i = 0; i < count; ++i) place[elements[i]] = i;
    }
};

std::string Numbers(std::span<const float> values) {
    std::string text = "[";
    for (const float value : values) {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%s%.9g", text.size() > 1 ? "," : "",
                      static_cast<double>(value));
        text += digits;
    }
    return text + "]";
}

class Writer {
public:
    Writer(const ScenePlan& plan, Random& random)
        : m_plan(plan),
          m_random(random),
          m_materials(plan.materials.size(), random),
          m_meshes(plan.meshes.size(), random),
          m_nodes(plan.nodes.size(), random),
          m_cameras(plan.cameras.size(), random),
          m_lights(plan.lights.size(), random),
          m_animations(plan.animations.size(), random) {}

    gltf::Document Run() {
        std::string json = R"({"asset":{"version":"2.0"},"extensionsUsed":)"
                           R"(["KHR_lights_punctual","KHR_animation_pointer","ZR_scene"],)";
        json += List("nodes", m_nodes, [&](std::size_t i) { return Node(i); });
        json += List("meshes", m_meshes, [&](std::size_t i) { return Mesh(m_plan.meshes[i]); });
        json += List("materials", m_materials, [&](std::size_t i) { return Material(m_plan.materials[i]); });
        json += List("cameras", m_cameras, [&](std::size_t i) {
            return R"({"type":"perspective","perspective":{"znear":0.1,"yfov":)" + Number(m_plan.cameras[i]) +
                   "}}";
        });
        json +=
            List("animations", m_animations, [&](std::size_t i) { return Animation(m_plan.animations[i]); });
        json += R"("extensions":{"KHR_lights_punctual":{)" + List("lights", m_lights, [&](std::size_t i) {
                    return R"({"type":"point","intensity":)" + Number(m_plan.lights[i]) + "}";
                });
        json.back() = '}';
        json += HostScene() + "}," + Skins() + Scenes();
        json += Join("\"accessors\":[", m_accessors, "],\"bufferViews\":[", m_views, "],");
        json +=
            Join("\"buffers\":[{\"name\":\"", m_random() % 1000U, "\",\"byteLength\":", m_bin.size(), "}]}");
        return gltf::Document::FromBytes(BytesOf(gltf::test::Glb(json, m_bin)), "plan.glb");
    }

private:
    static std::string Number(float value) {
        const std::string list = Numbers(std::span(&value, 1));
        return list.substr(1, list.size() - 2);
    }

    template <typename Element>
    static std::string List(const char* name, const Order& order, Element element) {
        if (order.elements.empty()) return "";
        std::string text = Join("\"", name, "\":[");
        for (const std::size_t i : order.elements) text += (text.back() == '[' ? "" : ",") + element(i);
        return text + "],";
    }

    bool Chance() { return m_random() % 2U == 0; }

    std::string Node(std::size_t index) {
        const ScenePlan::Node& node = m_plan.nodes[index];
        std::string json = "{\"name\":\"" + node.name + "\"";
        std::vector<std::size_t> children;
        bool isMoved = false;
        for (std::size_t i = 0; i < m_plan.nodes.size(); ++i)
            if (m_plan.nodes[i].parent == static_cast<int>(index)) children.push_back(m_nodes.place[i]);
        for (const ScenePlan::Animation& animation : m_plan.animations)
            for (const ScenePlan::Track& track : animation.tracks) isMoved = isMoved || track.node == index;
        std::shuffle(children.begin(), children.end(), m_random);
        std::string list;
        for (const std::size_t child : children) list += Join(list.empty() ? "" : ",", child);
        if (!children.empty()) json += Join(",\"children\":[", list, "]");
        if (isMoved || Chance())
            json += Join(",\"translation\":", Numbers(node.translation),
                         ",\"rotation\":", Numbers(node.rotation), ",\"scale\":", Numbers(node.scale));
        else
            json += ",\"matrix\":" + Matrix(node);
        if (node.mesh >= 0) {
            json += Join(",\"mesh\":", m_meshes.place[static_cast<std::size_t>(node.mesh)]);
            json += ",\"weights\":" + Numbers(std::span(&node.weight, 1));
        }
        if (node.isSkinned) json += ",\"skin\":0";
        if (node.camera >= 0)
            json += Join(",\"camera\":", m_cameras.place[static_cast<std::size_t>(node.camera)]);
        if (node.light >= 0)
            json += Join(R"(,"extensions":{"KHR_lights_punctual":{"light":)",
                         m_lights.place[static_cast<std::size_t>(node.light)], "}}");
        if (node.extra != 0) json += Join(",\"extras\":{\"tag\":", node.extra, "}");
        return json + "}";
    }

    static std::string Matrix(const ScenePlan::Node& node) {
        compare::Trs parts;
        std::copy(node.translation.begin(), node.translation.end(), parts.translation.begin());
        std::copy(node.rotation.begin(), node.rotation.end(), parts.rotation.begin());
        std::copy(node.scale.begin(), node.scale.end(), parts.scale.begin());
        const compare::Affine m = parts.Matrix();
        std::vector<float> numbers;
        for (const auto& [column, last] : {std::pair(m.x, 0), {m.y, 0}, {m.z, 0}, {m.origin, 1}})
            for (const double number : {column.x, column.y, column.z, static_cast<double>(last)})
                numbers.push_back(static_cast<float>(number));
        return Numbers(numbers);
    }

    std::string Material(const ScenePlan::Material& material) {
        std::string json = Join("{\"name\":\"", material.name,
                                "\",\"pbrMetallicRoughness\":{\"baseColorFactor\":", Numbers(material.color),
                                ",\"roughnessFactor\":", Number(material.roughness));
        if (Chance()) json += ",\"metallicFactor\":1.0";
        json += "}";
        if (Chance()) json += R"(,"doubleSided":false,"alphaMode":"OPAQUE")";
        return json + "}";
    }

    std::string Mesh(const ScenePlan::Mesh& mesh) {
        const Order vertices(mesh.vertices.size(), m_random), faces(mesh.indices.size() / 3, m_random);
        const auto attribute = [&](auto member, const char* type) {
            std::vector<float> values;
            for (const std::size_t i : vertices.elements)
                for (const auto part : mesh.vertices[i].*member) values.push_back(static_cast<float>(part));
            return Accessor(Bytes(values), 5126, vertices.elements.size(), type);
        };
        std::string joints;
        for (const std::size_t i : vertices.elements)
            for (const unsigned joint : mesh.vertices[i].joints) joints += static_cast<char>(joint);
        std::string indices;
        for (const std::size_t face : faces.elements) {
            const std::size_t turn = m_random() % 3U;
            for (std::size_t k = 0; k < 3; ++k)
                indices += gltf::test::Shorts(
                    {static_cast<unsigned>(vertices.place[mesh.indices[3 * face + (k + turn) % 3]])});
        }
        using V = ScenePlan::Vertex;
        return Join("{\"name\":\"", mesh.name,
                    "\",\"primitives\":[{\"attributes\":{\"POSITION\":", attribute(&V::position, "VEC3"),
                    ",\"NORMAL\":", attribute(&V::normal, "VEC3"),
                    ",\"TEXCOORD_0\":", attribute(&V::texture, "VEC2"),
                    ",\"WEIGHTS_0\":", attribute(&V::weights, "VEC4"),
                    ",\"JOINTS_0\":", Accessor(joints, 5121, vertices.elements.size(), "VEC4"),
                    "},\"targets\":[{\"POSITION\":", attribute(&V::target, "VEC3"),
                    "}],\"indices\":", Accessor(indices, 5123, mesh.indices.size(), "SCALAR"),
                    ",\"material\":", m_materials.place[mesh.material], "}]}");
    }

    std::string Animation(const ScenePlan::Animation& animation) {
        const Order order(animation.tracks.size(), m_random);
        std::string channels, samplers;
        std::size_t sampler = 0;
        for (const std::size_t i : order.elements) {
            const ScenePlan::Track& track = animation.tracks[i];
            const bool isScalar = track.path == "weights" || track.path == "roughness";
            const char* type = track.path == "rotation" ? "VEC4" : isScalar ? "SCALAR" : "VEC3";
            const std::size_t width = track.path == "rotation" ? 4 : isScalar ? 1 : 3;
            const std::string input = Accessor(Bytes(track.times), 5126, track.times.size(), "SCALAR");
            const std::string output = Accessor(Bytes(track.values), 5126, track.values.size() / width, type);
            channels += Join(channels.empty() ? "" : ",", "{\"sampler\":", sampler++, ",\"target\":{",
                             Target(track), "}}");
            samplers += Join(samplers.empty() ? "" : ",", "{\"input\":", input, ",\"output\":", output,
                             ",\"interpolation\":\"", track.interpolation, "\"}");
        }
        return Join("{\"name\":\"", animation.name, "\",\"channels\":[", channels, "],\"samplers\":[",
                    samplers, "]}");
    }

    std::string Target(const ScenePlan::Track& track) const {
        if (track.path == "roughness")
            return Join(R"("path":"pointer","extensions":{"KHR_animation_pointer":{"pointer":"/materials/)",
                        m_materials.place[track.material], R"(/pbrMetallicRoughness/roughnessFactor"}})");
        return Join("\"node\":", m_nodes.place[track.node], ",\"path\":\"", track.path, "\"");
    }

    static std::string Places(const Order& order, const std::vector<std::size_t>& elements) {
        std::string list;
        for (const std::size_t i : elements) list += Join(list.empty() ? "" : ",", order.place[i]);
        return list;
    }

    static std::string Member(const char* name, const Order& order,
                              const std::vector<std::size_t>& elements) {
        return elements.empty() ? "" : Join(",\"", name, "\":[", Places(order, elements), "]");
    }

    // The ZR_scene extension with layers and viewports; empty without any.
    std::string HostScene() const {
        if (m_plan.layers.empty() && m_plan.viewports.empty()) return "";
        std::string layers, viewports;
        for (const ScenePlan::Layer& layer : m_plan.layers)
            layers += Join(layers.empty() ? "" : ",", "{\"name\":\"", layer.name, "\"",
                           Member("nodes", m_nodes, layer.nodes), "}");
        for (const ScenePlan::Viewport& viewport : m_plan.viewports)
            viewports += Join(viewports.empty() ? "" : ",", "{\"name\":\"", viewport.name,
                              "\",\"kind\":", viewport.kind,
                              Member("animations", m_animations, viewport.animations), "}");
        return Join(R"(,"ZR_scene":{"layers":[)", layers, R"(],"viewports":[)", viewports, "]}");
    }

    std::string Skins() {
        if (m_plan.joints.empty()) return "";
        return Join("\"skins\":[{\"joints\":[", Places(m_nodes, m_plan.joints), "]}],");
    }

    std::string Scenes() {
        std::string json = Join("\"scene\":", m_plan.shownScene, ",\"scenes\":[");
        for (unsigned scene = 0; scene < 2; ++scene) {
            std::string roots;
            for (const std::size_t i : m_nodes.elements)
                if (m_plan.nodes[i].parent < 0 && m_plan.nodes[i].scene == scene)
                    roots += Join(roots.empty() ? "" : ",", m_nodes.place[i]);
            json += Join(scene == 0 ? "" : ",", "{\"name\":\"scene ", scene, "\",\"nodes\":[", roots, "]}");
        }
        return json + "],";
    }

    static std::string Bytes(std::span<const float> values) {
        return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float)};
    }

    // Gaps between views are part of the layout.
    std::string Accessor(const std::string& bytes, int component, std::size_t count, const char* type) {
        m_bin.resize(((m_bin.size() + 3) & ~std::size_t{3}) + 4 * (m_random() % 3U), '\x55');
        m_views += Join(m_views.empty() ? "" : ",", "{\"buffer\":0,\"byteOffset\":", m_bin.size(),
                        ",\"byteLength\":", bytes.size(), "}");
        m_bin += bytes;
        m_accessors +=
            Join(m_accessors.empty() ? "" : ",", "{\"bufferView\":", m_count,
                 ",\"componentType\":", component, ",\"count\":", count, ",\"type\":\"", type, "\"}");
        return std::to_string(m_count++);
    }

    const ScenePlan& m_plan;
    Random& m_random;
    Order m_materials, m_meshes, m_nodes, m_cameras, m_lights, m_animations;
    std::string m_bin, m_accessors, m_views;
    std::size_t m_count = 0;
};

}  // namespace

ScenePlan::Mesh MakeMesh(Random& random, std::size_t number, std::size_t material) {
    ScenePlan::Mesh mesh{Join("mesh ", number), {}, {}, material};
    for (int i = 0; i < 12; ++i) {
        ScenePlan::Vertex vertex;
        for (float& part : vertex.position) part = Uniform(random, -1, 1);
        const std::array<float, 4> direction = Rotation(random);
        const float length = std::hypot(direction[0], direction[1], direction[2]);
        for (std::size_t k = 0; k < 3; ++k) vertex.normal[k] = direction[k] / length;
        for (float& part : vertex.texture) part = Uniform(random, 0, 1);
        for (float& part : vertex.target) part = Uniform(random, -0.2F, 0.2F);
        const float weight = Uniform(random, 0.2F, 0.8F);
        vertex.joints = {static_cast<unsigned>(random() % 4), static_cast<unsigned>(random() % 4), 0, 0};
        vertex.weights = {weight, 1 - weight, 0, 0};
        mesh.vertices.push_back(vertex);
    }
    // Every vertex is in a face; others would not be drawn.
    for (unsigned i = 0; i < 12; ++i) {
        const unsigned other = (i + 1 + random() % 5U) % 12, third = (i + 6 + random() % 5U) % 12;
        mesh.indices.insert(mesh.indices.end(), {i, other, third});
    }
    return mesh;
}

ScenePlan MakePlan(Random& random) {
    ScenePlan plan;
    for (std::size_t i = 0; i < 5; ++i) {
        const auto shade = static_cast<float>(i) / 8;
        plan.materials.push_back({Join("material ", i), {shade, 0.5F, 1 - shade, 1}, 0.1F + shade});
    }
    for (std::size_t i = 0; i < 8; ++i) plan.meshes.push_back(MakeMesh(random, i, i % 5));
    plan.cameras = {0.7F, 0.9F};
    plan.lights = {3, 20};
    for (std::size_t i = 0; i < 40; ++i) {
        ScenePlan::Node node;
        // Half of the names are shared by several nodes; some nodes have none.
        node.name = i % 7 == 6 ? "" : i % 2 == 0 ? Join("node ", i) : Join("part ", i % 5);
        node.parent = i < 4 ? -1 : static_cast<int>(random() % i);
        for (float& part : node.translation) part = Uniform(random, -2, 2);
        node.rotation = Rotation(random);
        for (float& part : node.scale) part = Uniform(random, 0.8F, 1.2F);
        if (i % 3 == 0) node.mesh = static_cast<int>(i / 3 % 8);
        if (i % 3 == 0) node.weight = Uniform(random, 0.1F, 0.9F);
        if (i == 13 || i == 16) node.camera = i == 13 ? 0 : 1;
        if (i == 19 || i == 22) node.light = i == 19 ? 0 : 1;
        node.scene = i == 3 ? 1 : 0;
        plan.nodes.push_back(node);
    }
    // The joints have a common root.
    plan.joints = {5, 8, 10, 11};
    for (const std::size_t joint : plan.joints) plan.nodes[joint].parent = 0;
    plan.nodes[9].isSkinned = true;
    plan.nodes[27].isSkinned = true;
    for (const char* name : {"walk", "turn"}) {
        ScenePlan::Animation animation{name, {}};
        const char* way = animation.name == "walk" ? "LINEAR" : "CUBICSPLINE";
        for (const std::size_t node : {1, 5, 8, 13, 19, 30, 35}) {
            animation.tracks.push_back(MakeTrack(random, node, "rotation", way));
            animation.tracks.push_back(MakeTrack(random, node, "translation", "LINEAR"));
        }
        animation.tracks.push_back(MakeTrack(random, 2, "scale", "STEP"));
        animation.tracks.push_back(MakeTrack(random, 6, "weights", "LINEAR"));
        plan.animations.push_back(animation);
    }
    return plan;
}

gltf::Document Write(const ScenePlan& plan, Random& random) {
    return Writer(plan, random).Run();
}

}  // namespace zr::test
