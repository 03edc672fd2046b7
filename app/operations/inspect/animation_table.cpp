// SPDX-License-Identifier: MIT
#include "app/operations/inspect/inspection.h"
#include "base/text.h"
#include "gltf/accessor.h"

namespace zr::inspect {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

void WarnOfConstant(Inspection& in, const compare::Animation& animation, std::size_t index) {
    std::size_t still = 0;
    for (const compare::Channel& channel : animation.channels)
        still += channel.curve.Times().size() > 2 && channel.curve.IsConstant();
    if (still > 0)
        in.Warn(Join("/animations/", index), Join(Counted(still, "channel has", "channels have"),
                                                  " the same value in more than two keys"));
}

}  // namespace

void AddAnimations(Inspection& in) {
    Table& table = in.Add("animations", {"animation", "name", "start", "end", "channels", "keys",
                                         "interpolation", "nodes", "bytes"});
    for (std::size_t i = 0; i < in.evaluator.Animations().size(); ++i) {
        const compare::Animation& animation = in.evaluator.Animations()[i];
        const Json& json = in.Elements(Kind::kAnimation)[i];
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
            const gltf::AccessorInfo info = gltf::Describe(in.document, accessor);
            bytes += info.count * info.ElementSize();
        }
        for (const compare::Channel& channel : animation.channels) {
            keys += channel.curve.Times().size();
            if (channel.node != kNone) nodes.insert(channel.node);
        }
        table.rows.push_back({Count(i), animation.name, animation.start, animation.end,
                              Count(animation.channels.size()), Count(keys), Listed(ways),
                              Count(nodes.size()), Count(bytes)});
        for (const std::string& place : animation.unread) in.Warn(place, "the keys cannot be read");
        WarnOfConstant(in, animation, i);
    }
}

}  // namespace zr::inspect
