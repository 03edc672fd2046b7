// SPDX-License-Identifier: MIT
#include "app/operations/inspect/inspect_document.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "app/operations/compare/content.h"
#include "app/operations/compare/drawn.h"
#include "app/operations/inspect/image_info.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/references.h"

namespace zr::inspect {

using compare::kNone;
using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

std::string NameOf(const Json& json) {
    const Json* name = json.Find("name");
    return name != nullptr ? std::string(name->String()) : std::string();
}

const Json* Extension(const Json& json, std::string_view name) {
    const Json* extensions = json.Find("extensions");
    return extensions != nullptr ? extensions->Find(name) : nullptr;
}

Cell Optional(std::size_t index) {
    return index == kNone ? Cell() : Cell(std::uint64_t{index});
}

Cell Count(std::size_t count) {
    return std::uint64_t{count};
}

// "a, b, c", each once.
std::string Listed(const std::set<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) list += Join(list.empty() ? "" : ", ", text);
    return list;
}

// A box in words: the least and the greatest coordinate of each axis.
struct Box {
    compare::Vec3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};

    void Widen(compare::Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    bool IsEmpty() const { return !(low.x <= high.x); }
    static Cell Text(compare::Vec3 p) {
        char text[96];
        std::snprintf(text, sizeof text, "%.6g %.6g %.6g", p.x, p.y, p.z);
        return std::string(text);
    }
    Cell Low() const { return IsEmpty() ? Cell() : Text(low); }
    Cell High() const { return IsEmpty() ? Cell() : Text(high); }
};

struct ExtensionUse {
    std::size_t count = 0;
    std::string first;
};

// Every object under "extensions", wherever it stands. The document bounds how deep this goes.
void CollectExtensions(const Json& value, const std::string& place,
                       std::map<std::string, ExtensionUse>& uses) {
    for (std::size_t i = 0; i < value.Items().size(); ++i) {
        const Json& item = value.Items()[i];
        if (item.IsObject() || item.IsArray()) CollectExtensions(item, Join(place, "/", i), uses);
    }
    for (const JsonMember& member : value.Members()) {
        if (member.Name() == "extras" || (!member.value.IsObject() && !member.value.IsArray())) continue;
        const std::string at = Join(place, "/", member.Name());
        if (member.Name() == "extensions")
            for (const JsonMember& extension : member.value.Members()) {
                ExtensionUse& use = uses[std::string(extension.Name())];
                if (use.count++ == 0) use.first = Join(at, "/", extension.Name());
            }
        CollectExtensions(member.value, at, uses);
    }
}

// What an accessor's or view's bytes are used for.
enum class Part { kVertices, kTargets, kIndices, kKeys, kBinds, kImages, kPacked, kOther, kUnused, kCount };
constexpr std::string_view kPartNames[] = {"vertex data",     "morph targets", "vertex indices",
                                           "animation keys",  "inverse binds", "images",
                                           "compressed data", "other",         "not referred to"};

class Inspection {
public:
    explicit Inspection(gltf::Document& document)
        : m_document(document), m_evaluator(document), m_drawn(m_evaluator, AllNodes()) {}

    std::vector<Table> Run() {
        Measure();
        Summary();
        Scenes();
        Nodes();
        Meshes();
        Materials();
        Textures();
        Skins();
        Cameras();
        Lights();
        Animations();
        Extensions();
        BytesByPart();
        std::erase_if(m_tables, [](const Table& table) { return table.rows.empty(); });
        Warnings();
        return std::move(m_tables);
    }

private:
    std::span<const Json> Elements(Kind kind) const { return m_document.Elements(kind); }
    std::vector<std::size_t> AllNodes() const { return m_evaluator.ParentsFirst(); }

    Table& Add(std::string name, std::vector<std::string> columns) {
        return m_tables.emplace_back(Table{std::move(name), std::move(columns), {}});
    }
    void Warn(std::string place, std::string text) {
        m_warnings.emplace_back(std::move(place), std::move(text));
    }

    // The bounds of everything at rest.
    void Measure() {
        m_meshBoxes.resize(Elements(Kind::kMesh).size());
        for (const compare::Part& part : m_drawn.Parts()) {
            const std::vector<double> vertices = m_drawn.Vertices(part);
            const std::size_t stride = part.shape->Stride();
            for (std::size_t i = 0; stride > 0 && i < vertices.size(); i += stride)
                m_box.Widen({vertices[i], vertices[i + 1], vertices[i + 2]});
            for (const compare::Attribute& attribute : part.shape->attributes) {
                if (attribute.role != compare::Role::kPosition) continue;
                for (std::size_t i = 0; i + 2 < attribute.values.size(); i += 3)
                    m_meshBoxes[part.mesh].Widen({static_cast<double>(attribute.values[i]),
                                                  static_cast<double>(attribute.values[i + 1]),
                                                  static_cast<double>(attribute.values[i + 2])});
            }
        }
    }

    void Summary() {
        Table& table = Add("summary", {"what", "value"});
        const auto add = [&](std::string what, Cell value) {
            table.rows.push_back({std::move(what), std::move(value)});
        };
        const Json* asset = m_document.Root().Find("asset");
        for (const char* member : {"version", "generator", "copyright"})
            if (const Json* text = asset->Find(member)) add(member, std::string(text->String()));
        constexpr std::pair<const char*, Kind> kCounted[] = {
            {"scenes", Kind::kScene},        {"nodes", Kind::kNode},       {"meshes", Kind::kMesh},
            {"materials", Kind::kMaterial},  {"textures", Kind::kTexture}, {"images", Kind::kImage},
            {"skins", Kind::kSkin},          {"cameras", Kind::kCamera},   {"lights", Kind::kLight},
            {"animations", Kind::kAnimation}};
        for (const auto& [name, kind] : kCounted) add(name, Count(Elements(kind).size()));
        add("faces drawn", Count(m_drawn.Faces()));
        if (m_box.IsEmpty()) return;
        add("bounds low", m_box.Low());
        add("bounds high", m_box.High());
        add("size", Box::Text(m_box.high - m_box.low));
    }

    void Scenes() {
        Table& table = Add("scenes", {"scene", "name", "roots", "default"});
        const std::size_t shown = IndexMember(m_document.Root(), "scene", kNone);
        for (std::size_t i = 0; i < Elements(Kind::kScene).size(); ++i) {
            const Json& scene = Elements(Kind::kScene)[i];
            const Json* nodes = scene.Find("nodes");
            table.rows.push_back({Count(i), NameOf(scene),
                                  Count(nodes != nullptr ? nodes->Items().size() : 0),
                                  i == shown ? Cell(std::string("yes")) : Cell()});
        }
    }

    void Nodes() {
        std::vector<std::size_t> channels(m_evaluator.Nodes(), 0);
        for (const compare::Animation& animation : m_evaluator.Animations())
            for (const compare::Channel& channel : animation.channels)
                if (channel.node != kNone) ++channels[channel.node];
        Table& table = Add(
            "nodes", {"node", "name", "parent", "children", "mesh", "skin", "camera", "light", "channels"});
        for (std::size_t i = 0; i < Elements(Kind::kNode).size(); ++i) {
            const Json& node = Elements(Kind::kNode)[i];
            const Json* children = node.Find("children");
            const Json* light = Extension(node, "KHR_lights_punctual");
            table.rows.push_back({Count(i), NameOf(node), Optional(m_evaluator.Parent(i)),
                                  Count(children != nullptr ? children->Items().size() : 0),
                                  Optional(IndexMember(node, "mesh", kNone)),
                                  Optional(IndexMember(node, "skin", kNone)),
                                  Optional(IndexMember(node, "camera", kNone)),
                                  light != nullptr ? Optional(IndexMember(*light, "light", kNone)) : Cell(),
                                  Count(channels[i])});
            if (!m_evaluator.Shown()[i] && m_evaluator.Parent(i) == kNone)
                Warn(Join("/nodes/", i), "is in no scene");
        }
    }

    void Meshes() {
        std::vector<std::size_t> uses(Elements(Kind::kMesh).size(), 0);
        for (const Json& node : Elements(Kind::kNode))
            if (const std::size_t mesh = IndexMember(node, "mesh", kNone); mesh != kNone) ++uses[mesh];
        Table& table = Add("meshes", {"mesh", "name", "primitives", "vertices", "faces", "attributes",
                                      "targets", "nodes", "stored", "low", "high"});
        for (std::size_t i = 0; i < uses.size(); ++i) {
            const Json& mesh = Elements(Kind::kMesh)[i];
            const auto primitives = mesh.Find("primitives")->Items();
            std::size_t vertices = 0, faces = 0;
            std::set<std::string> attributes, forms;
            for (std::size_t k = 0; k < primitives.size(); ++k)
                Primitive(primitives[k], vertices, faces, attributes, forms);
            table.rows.push_back({Count(i), NameOf(mesh), Count(primitives.size()), Count(vertices),
                                  Count(faces), Listed(attributes), Count(compare::TargetCount(mesh)),
                                  Count(uses[i]), Listed(forms), m_meshBoxes[i].Low(),
                                  m_meshBoxes[i].High()});
            if (uses[i] == 0) Warn(Join("/meshes/", i), "no node shows it");
        }
    }

    void Primitive(const Json& primitive, std::size_t& vertices, std::size_t& faces,
                   std::set<std::string>& attributes, std::set<std::string>& forms) {
        std::size_t count = 0;
        for (const JsonMember& member : primitive.Find("attributes")->Members()) {
            const gltf::AccessorInfo info = gltf::Describe(m_document, *member.value.Index());
            attributes.insert(std::string(member.Name()));
            count = info.count;
            if (info.component != gltf::Component::kFloat && member.Name() == "POSITION")
                forms.insert("quantized");
        }
        vertices += count;
        if (primitive.Find("indices") != nullptr)
            count = gltf::Describe(m_document, IndexMember(primitive, "indices")).count;
        const std::size_t mode = IndexMember(primitive, "mode", 4);
        faces += mode == 4 ? count / 3 : mode > 4 && count > 2 ? count - 2 : 0;
        if (Extension(primitive, "KHR_draco_mesh_compression") != nullptr) forms.insert("Draco");
        if (const Json* positions = primitive.Find("attributes")->Find("POSITION")) {
            const Json& accessor = Elements(Kind::kAccessor)[*positions->Index()];
            const std::size_t view = IndexMember(accessor, "bufferView", kNone);
            if (view != kNone && IsMeshopt(Elements(Kind::kBufferView)[view])) forms.insert("meshopt");
            if (accessor.Find("sparse") != nullptr) forms.insert("sparse");
        }
    }

    static bool IsMeshopt(const Json& view) {
        return Extension(view, "EXT_meshopt_compression") != nullptr ||
               Extension(view, "KHR_meshopt_compression") != nullptr;
    }

    void Materials() {
        std::vector<std::size_t> uses(Elements(Kind::kMaterial).size(), 0);
        for (const Json& mesh : Elements(Kind::kMesh))
            for (const Json& primitive : mesh.Find("primitives")->Items())
                if (const std::size_t material = IndexMember(primitive, "material", kNone); material != kNone)
                    ++uses[material];
        Table& table = Add("materials", {"material", "name", "alpha", "doubleSided", "textures", "extensions",
                                         "primitives"});
        for (std::size_t i = 0; i < uses.size(); ++i) {
            const Json& material = Elements(Kind::kMaterial)[i];
            std::set<std::string> textures, extensions;
            ListTextures(material, textures);
            if (const Json* list = material.Find("extensions"))
                for (const JsonMember& member : list->Members())
                    extensions.insert(std::string(member.Name()));
            const Json* alpha = material.Find("alphaMode");
            const Json* sides = material.Find("doubleSided");
            table.rows.push_back({Count(i), NameOf(material),
                                  std::string(alpha != nullptr ? alpha->String() : "OPAQUE"),
                                  sides != nullptr && sides->Bool() ? Cell(std::string("yes")) : Cell(),
                                  Listed(textures), Listed(extensions), Count(uses[i])});
        }
    }

    static void ListTextures(const Json& value, std::set<std::string>& textures) {
        for (const JsonMember& member : value.Members()) {
            if (member.Name() == "extras") continue;
            if (member.Name().ends_with("Texture") && member.value.Find("index") != nullptr)
                textures.insert(Join(member.Name().substr(0, member.Name().size() - 7), " ",
                                     IndexMember(member.value, "index")));
            ListTextures(member.value, textures);
        }
    }

    void Textures() {
        Table& table =
            Add("textures", {"texture", "name", "image", "type", "width", "height", "bytes", "file"});
        for (std::size_t i = 0; i < Elements(Kind::kTexture).size(); ++i) {
            const Json& texture = Elements(Kind::kTexture)[i];
            std::size_t image = IndexMember(texture, "source", kNone);
            if (const Json* extensions = texture.Find("extensions"); extensions != nullptr)
                for (const JsonMember& member : extensions->Members())
                    image = IndexMember(member.value, "source", image);
            if (image >= Elements(Kind::kImage).size()) {
                table.rows.push_back({Count(i), NameOf(texture), {}, {}, {}, {}, {}, {}});
                continue;
            }
            const Json& json = Elements(Kind::kImage)[image];
            const std::vector<std::byte> bytes = compare::ImageBytes(m_document, json);
            const ImageInfo info = ReadImageInfo(bytes);
            const Json* uri = json.Find("uri");
            const bool isFile = uri != nullptr && !uri->String().starts_with("data:");
            table.rows.push_back({Count(i), NameOf(texture), Count(image), std::string(info.type),
                                  info.width > 0 ? Count(info.width) : Cell(),
                                  info.height > 0 ? Count(info.height) : Cell(), Count(bytes.size()),
                                  isFile ? Cell(std::string(uri->String())) : Cell()});
            if (bytes.empty()) Warn(Join("/images/", image), "the image data is missing");
        }
    }

    void Skins() {
        Table& table = Add("skins", {"skin", "name", "joints", "skeleton"});
        for (std::size_t i = 0; i < Elements(Kind::kSkin).size(); ++i) {
            const Json& skin = Elements(Kind::kSkin)[i];
            table.rows.push_back({Count(i), NameOf(skin), Count(skin.Find("joints")->Items().size()),
                                  Optional(IndexMember(skin, "skeleton", kNone))});
        }
    }

    void Cameras() {
        Table& table = Add("cameras", {"camera", "name", "type", "near", "far"});
        for (std::size_t i = 0; i < Elements(Kind::kCamera).size(); ++i) {
            const Json& camera = Elements(Kind::kCamera)[i];
            const std::string type(camera.Find("type")->String());
            const Json* lens = camera.Find(type);
            const auto number = [&](const char* name) {
                const Json* member = lens != nullptr ? lens->Find(name) : nullptr;
                return member != nullptr ? Cell(member->Number()) : Cell();
            };
            table.rows.push_back({Count(i), NameOf(camera), type, number("znear"), number("zfar")});
        }
    }

    void Lights() {
        Table& table = Add("lights", {"light", "name", "type", "intensity", "range"});
        for (std::size_t i = 0; i < Elements(Kind::kLight).size(); ++i) {
            const Json& light = Elements(Kind::kLight)[i];
            const Json* intensity = light.Find("intensity");
            const Json* range = light.Find("range");
            table.rows.push_back({Count(i), NameOf(light), std::string(light.Find("type")->String()),
                                  intensity != nullptr ? intensity->Number() : 1.0,
                                  range != nullptr ? Cell(range->Number()) : Cell()});
        }
    }

    void Animations() {
        Table& table = Add("animations", {"animation", "name", "start", "end", "channels", "keys",
                                          "interpolation", "nodes", "bytes"});
        for (std::size_t i = 0; i < m_evaluator.Animations().size(); ++i) {
            const compare::Animation& animation = m_evaluator.Animations()[i];
            const Json& json = Elements(Kind::kAnimation)[i];
            std::set<std::string> ways;
            std::set<std::size_t> nodes, accessors;
            std::size_t keys = 0, bytes = 0;
            const Json* samplers = json.Find("samplers");
            const auto list = samplers != nullptr ? samplers->Items() : std::span<const Json>();
            for (const Json& sampler : list) {
                const Json* way = sampler.Find("interpolation");
                ways.insert(std::string(way != nullptr ? way->String() : "LINEAR"));
                accessors.insert(IndexMember(sampler, "input"));
                accessors.insert(IndexMember(sampler, "output"));
            }
            for (const std::size_t accessor : accessors) {
                const gltf::AccessorInfo info = gltf::Describe(m_document, accessor);
                bytes += info.count * info.ElementSize();
            }
            for (const compare::Channel& channel : animation.channels) {
                keys += channel.curve.Times().size();
                if (channel.node != kNone) nodes.insert(channel.node);
            }
            table.rows.push_back({Count(i), animation.name, animation.start, animation.end,
                                  Count(animation.channels.size()), Count(keys), Listed(ways),
                                  Count(nodes.size()), Count(bytes)});
            for (const std::string& place : animation.unread) Warn(place, "the keys cannot be read");
            WarnOfStill(animation, i);
        }
    }

    void WarnOfStill(const compare::Animation& animation, std::size_t index) {
        std::size_t still = 0;
        for (const compare::Channel& channel : animation.channels)
            still += channel.curve.Times().size() > 2 && channel.curve.IsConstant();
        if (still > 0)
            Warn(Join("/animations/", index), Join(still, still == 1 ? " channel holds" : " channels hold",
                                                   " one value in more keys than it needs"));
    }

    void Extensions() {
        std::map<std::string, ExtensionUse> uses;
        CollectExtensions(m_document.Root(), "", uses);
        const auto named = [&](const char* list) {
            std::set<std::string> names;
            if (const Json* array = m_document.Root().Find(list))
                for (const Json& name : array->Items()) names.insert(std::string(name.String()));
            return names;
        };
        const std::set<std::string> used = named("extensionsUsed"), required = named("extensionsRequired");
        for (const std::string& name : used) uses.try_emplace(name);
        Table& table = Add("extensions", {"extension", "uses", "required", "known", "first"});
        for (const auto& [name, use] : uses) {
            const bool isKnown = gltf::IsKnownExtension(name);
            table.rows.push_back({name, Count(use.count),
                                  required.contains(name) ? Cell(std::string("yes")) : Cell(),
                                  isKnown ? Cell(std::string("yes")) : Cell(), use.first});
            if (!used.contains(name)) Warn(use.first, "the extension is not listed in extensionsUsed");
            if (use.count == 0 && name != "KHR_mesh_quantization")
                Warn("/extensionsUsed", Join(name, " is listed but not used"));
            if (!isKnown && use.count > 0)
                Warn(use.first, "is unknown: what it refers to cannot be followed");
        }
    }

    // ---- Bytes.

    // The first use in the order of the parts decides.
    void BytesByPart() {
        std::vector<Part> parts(Elements(Kind::kBufferView).size(), Part::kUnused);
        const auto mark = [&](std::size_t view, Part part) {
            if (view < parts.size()) parts[view] = std::min(parts[view], part);
        };
        const auto markAccessor = [&](std::size_t accessor, Part part) {
            const Json& json = Elements(Kind::kAccessor)[accessor];
            mark(IndexMember(json, "bufferView", kNone), part);
            if (const Json* sparse = json.Find("sparse"))
                for (const char* member : {"indices", "values"})
                    mark(IndexMember(*sparse->Find(member), "bufferView", kNone), part);
        };
        MarkMeshes(mark, markAccessor);
        for (const Json& animation : Elements(Kind::kAnimation))
            if (const Json* samplers = animation.Find("samplers"))
                for (const Json& sampler : samplers->Items())
                    for (const char* member : {"input", "output"})
                        markAccessor(IndexMember(sampler, member), Part::kKeys);
        for (const Json& skin : Elements(Kind::kSkin))
            if (skin.Find("inverseBindMatrices") != nullptr)
                markAccessor(IndexMember(skin, "inverseBindMatrices"), Part::kBinds);
        for (const Json& image : Elements(Kind::kImage))
            mark(IndexMember(image, "bufferView", kNone), Part::kImages);
        gltf::ForEachReference(
            const_cast<gltf::Document&>(m_document), {Kind::kBufferView},
            [&](const gltf::Reference& reference) { mark(reference.target.index, Part::kOther); });

        std::vector<std::uint64_t> bytes(static_cast<std::size_t>(Part::kCount), 0);
        std::vector<std::uint64_t> counts(bytes.size(), 0);
        std::uint64_t inViews = 0, inBuffers = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const Json& view = Elements(Kind::kBufferView)[i];
            const Json* packed = Extension(view, "EXT_meshopt_compression");
            if (packed == nullptr) packed = Extension(view, "KHR_meshopt_compression");
            const std::size_t length = IndexMember(packed != nullptr ? *packed : view, "byteLength");
            bytes[static_cast<std::size_t>(parts[i])] += length;
            ++counts[static_cast<std::size_t>(parts[i])];
            inViews += length;
        }
        for (std::size_t i = 0; i < Elements(Kind::kBuffer).size(); ++i)
            if (const auto buffer = m_document.BufferBytes(i)) inBuffers += buffer->size();
        Table& table = Add("bytes", {"part", "views", "bytes"});
        table.rows.push_back(
            {std::string("JSON"), {}, Count(gltf::WriteJson(m_document.Root(), false).size())});
        for (std::size_t i = 0; i < bytes.size(); ++i)
            if (counts[i] > 0) table.rows.push_back({std::string(kPartNames[i]), counts[i], bytes[i]});
        if (inBuffers > inViews) table.rows.push_back({std::string("in no view"), {}, inBuffers - inViews});
    }

    template <typename Mark, typename MarkAccessor>
    void MarkMeshes(Mark mark, MarkAccessor markAccessor) const {
        for (const Json& mesh : Elements(Kind::kMesh)) {
            for (const Json& primitive : mesh.Find("primitives")->Items()) {
                for (const JsonMember& member : primitive.Find("attributes")->Members())
                    markAccessor(*member.value.Index(), Part::kVertices);
                if (primitive.Find("indices") != nullptr)
                    markAccessor(IndexMember(primitive, "indices"), Part::kIndices);
                if (const Json* targets = primitive.Find("targets"))
                    for (const Json& target : targets->Items())
                        for (const JsonMember& member : target.Members())
                            markAccessor(*member.value.Index(), Part::kTargets);
                if (const Json* packed = Extension(primitive, "KHR_draco_mesh_compression"))
                    mark(IndexMember(*packed, "bufferView", kNone), Part::kPacked);
            }
        }
    }

    // ---- Warnings.

    void Warnings() {
        for (const std::string& place : m_drawn.Unread()) Warn(place, "the vertex data cannot be read");
        for (const compare::Part& part : m_drawn.Parts()) WarnOfVertices(part);
        Table& table = Add("warnings", {"place", "warning"});
        for (const auto& [place, text] : m_warnings) table.rows.push_back({place, text});
    }

    void WarnOfVertices(const compare::Part& part) {
        if (!m_warned.emplace(part.shape.get()).second) return;
        const std::string place = Join("/meshes/", part.mesh, "/primitives/", part.primitive);
        const compare::Primitive& shape = *part.shape;
        for (const compare::Attribute& attribute : shape.attributes) {
            const auto broken = std::count_if(attribute.values.begin(), attribute.values.end(),
                                              [](float value) { return !std::isfinite(value); });
            if (broken > 0)
                Warn(Join(place, "/attributes/", attribute.name), Join(broken, " numbers are not finite"));
        }
        std::size_t thin = 0;
        for (std::size_t i = 0; shape.corners == 3 && i + 2 < shape.faces.size(); i += 3)
            thin += shape.faces[i] == shape.faces[i + 1] || shape.faces[i + 1] == shape.faces[i + 2] ||
                    shape.faces[i] == shape.faces[i + 2];
        if (thin > 0)
            Warn(place, Join(thin, thin == 1 ? " triangle uses" : " triangles use", " a vertex twice"));
        std::vector<bool> used(shape.vertices, false);
        for (const std::uint32_t vertex : shape.faces) used[vertex] = true;
        const auto unused = std::count(used.begin(), used.end(), false);
        if (unused > 0)
            Warn(place, Join(unused, unused == 1 ? " vertex is" : " vertices are", " in no face"));
    }

    gltf::Document& m_document;
    compare::Evaluator m_evaluator;
    compare::Drawn m_drawn;
    Box m_box;
    std::vector<Box> m_meshBoxes;
    std::vector<Table> m_tables;
    std::vector<std::pair<std::string, std::string>> m_warnings;
    std::set<const compare::Primitive*> m_warned;
};

}  // namespace

std::vector<Table> InspectDocument(gltf::Document& document) {
    return Inspection(document).Run();
}

}  // namespace zr::inspect
