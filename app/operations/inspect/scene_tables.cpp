// SPDX-License-Identifier: MIT
#include "app/operations/inspect/inspection.h"
#include "base/text.h"
#include "gltf/members.h"

namespace zr::inspect {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

void AddSummary(Inspection& in) {
    Table& table = in.Add("summary", {"what", "value"});
    const auto add = [&](std::string what, Cell value) {
        table.rows.push_back({std::move(what), std::move(value)});
    };
    const Json* asset = in.document.Root().Find("asset");
    for (const char* member : {"version", "generator", "copyright"})
        if (const Json* text = asset->Find(member)) add(member, std::string(text->String()));
    constexpr std::pair<const char*, Kind> kCounted[] = {
        {"scenes", Kind::kScene},        {"nodes", Kind::kNode},       {"meshes", Kind::kMesh},
        {"materials", Kind::kMaterial},  {"textures", Kind::kTexture}, {"images", Kind::kImage},
        {"skins", Kind::kSkin},          {"cameras", Kind::kCamera},   {"lights", Kind::kLight},
        {"animations", Kind::kAnimation}};
    for (const auto& [name, kind] : kCounted) add(name, Count(in.Elements(kind).size()));
    add("faces drawn", Count(in.drawn.Faces()));
    if (in.box.IsEmpty()) return;
    add("bounds low", Low(in.box));
    add("bounds high", High(in.box));
    add("size", Point(in.box.high - in.box.low));
}

void AddScenes(Inspection& in) {
    Table& table = in.Add("scenes", {"scene", "name", "roots", "default"});
    const std::size_t shown = IndexMember(in.document.Root(), "scene", kNone);
    for (std::size_t i = 0; i < in.Elements(Kind::kScene).size(); ++i) {
        const Json& scene = in.Elements(Kind::kScene)[i];
        const Json* nodes = scene.Find("nodes");
        table.rows.push_back(
            {Count(i), Name(scene), Count(nodes != nullptr ? nodes->Items().size() : 0), Yes(i == shown)});
    }
}

void AddNodes(Inspection& in) {
    std::vector<std::size_t> channels(in.evaluator.Nodes(), 0);
    for (const compare::Animation& animation : in.evaluator.Animations())
        for (const compare::Channel& channel : animation.channels)
            if (channel.node != kNone) ++channels[channel.node];
    Table& table = in.Add(
        "nodes", {"node", "name", "parent", "children", "mesh", "skin", "camera", "light", "channels"});
    for (std::size_t i = 0; i < in.Elements(Kind::kNode).size(); ++i) {
        const Json& node = in.Elements(Kind::kNode)[i];
        const Json* children = node.Find("children");
        const Json* light = gltf::FindExtension(node, "KHR_lights_punctual");
        table.rows.push_back(
            {Count(i), Name(node), Optional(in.evaluator.Parent(i)),
             Count(children != nullptr ? children->Items().size() : 0),
             Optional(IndexMember(node, "mesh", kNone)), Optional(IndexMember(node, "skin", kNone)),
             Optional(IndexMember(node, "camera", kNone)),
             light != nullptr ? Optional(IndexMember(*light, "light", kNone)) : Cell(), Count(channels[i])});
        if (!in.evaluator.Shown()[i] && in.evaluator.Parent(i) == kNone)
            in.Warn(Join("/nodes/", i), "is in no scene");
    }
}

void AddSkins(Inspection& in) {
    Table& table = in.Add("skins", {"skin", "name", "joints", "skeleton"});
    for (std::size_t i = 0; i < in.Elements(Kind::kSkin).size(); ++i) {
        const Json& skin = in.Elements(Kind::kSkin)[i];
        table.rows.push_back({Count(i), Name(skin), Count(skin.Find("joints")->Items().size()),
                              Optional(IndexMember(skin, "skeleton", kNone))});
    }
}

void AddCameras(Inspection& in) {
    Table& table = in.Add("cameras", {"camera", "name", "type", "near", "far"});
    for (std::size_t i = 0; i < in.Elements(Kind::kCamera).size(); ++i) {
        const Json& camera = in.Elements(Kind::kCamera)[i];
        const std::string type(camera.Find("type")->String());
        const Json* lens = camera.Find(type);
        const auto number = [&](const char* name) {
            const Json* member = lens != nullptr ? lens->Find(name) : nullptr;
            return member != nullptr ? Cell(member->Number()) : Cell();
        };
        table.rows.push_back({Count(i), Name(camera), type, number("znear"), number("zfar")});
    }
}

void AddLights(Inspection& in) {
    Table& table = in.Add("lights", {"light", "name", "type", "intensity", "range"});
    for (std::size_t i = 0; i < in.Elements(Kind::kLight).size(); ++i) {
        const Json& light = in.Elements(Kind::kLight)[i];
        const Json* intensity = light.Find("intensity");
        const Json* range = light.Find("range");
        table.rows.push_back({Count(i), Name(light), std::string(light.Find("type")->String()),
                              intensity != nullptr ? intensity->Number() : 1.0,
                              range != nullptr ? Cell(range->Number()) : Cell()});
    }
}

}  // namespace zr::inspect
