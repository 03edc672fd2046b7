// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <compare>
#include <string>
#include <vector>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/document.h"

namespace zr::gltf {
namespace {

struct Path {
    std::string_view name;
    unsigned components;
};
constexpr Path kPaths[] = {{"translation", 3}, {"rotation", 4}, {"scale", 3}};

// Bytes of memory that a key takes while it is edited, for each byte of its floats.
constexpr std::uint64_t kWeight = 4;

// A sampler or channel, turned into text only when there is a fault to report.
struct Part {
    std::size_t animation;
    std::string_view list;
    std::size_t index;

    std::string Place(std::string_view member) const {
        return Join("/animations/", animation, "/", list, "/", index, member);
    }
};

class Animations {
public:
    explicit Animations(const Document& document)
        : m_document(document), m_timesRead(document.Elements(Kind::kAccessor).size(), false) {}

    void Animation(const Json& animation, std::size_t index) {
        const Json* samplers = animation.Find("samplers");
        const Json* channels = animation.Find("channels");
        if (samplers != nullptr)
            for (std::size_t i = 0; i < samplers->Items().size(); ++i)
                Sampler(samplers->Items()[i], {index, "samplers", i});
        if (channels == nullptr) return;
        std::vector<Driven> driven;
        driven.reserve(channels->Items().size());
        for (std::size_t i = 0; i < channels->Items().size(); ++i) {
            const Json& channel = channels->Items()[i];
            const Part part{index, "channels", i};
            const std::size_t sampler = IndexMember(channel, "sampler");
            if (samplers == nullptr || sampler >= samplers->Items().size())
                m_document.Fail(ErrorKind::kReference, part.Place("/sampler"),
                                Join("there is no sampler ", sampler));
            const Json& target = *channel.Find("target");
            Channel(target, samplers->Items()[sampler], part);
            for (std::string_view data : {"input", "output"})
                Play(IndexMember(samplers->Items()[sampler], data), part);
            if (target.Find("node") == nullptr) continue;
            const std::string_view path = target.Find("path")->String();
            if (path != "pointer") driven.push_back({IndexMember(target, "node"), path, i});
        }
        std::sort(driven.begin(), driven.end());
        const auto twice = std::adjacent_find(driven.begin(), driven.end(), Driven::SameGoal);
        if (twice != driven.end())
            Fail({index, "channels", (twice + 1)->channel}, "/target",
                 "another channel of the animation drives the same property");
    }

private:
    struct Driven {
        std::size_t node;
        std::string_view path;
        std::size_t channel;

        auto operator<=>(const Driven&) const = default;
        static bool SameGoal(const Driven& a, const Driven& b) {
            return a.node == b.node && a.path == b.path;
        }
    };

    void Sampler(const Json& sampler, const Part& part) {
        const Json* interpolation = sampler.Find("interpolation");
        if (interpolation != nullptr && interpolation->String() != "LINEAR" &&
            interpolation->String() != "STEP" && !IsCubic(sampler))
            Fail(part, "/interpolation", "is not LINEAR, STEP or CUBICSPLINE");
        const std::size_t input = IndexMember(sampler, "input");
        const AccessorInfo times = Describe(m_document, input);
        if (times.component != Component::kFloat || times.shape.Components() != 1)
            Fail(part, "/input", "key times are not floats");
        if (times.count < (IsCubic(sampler) ? 2U : 1U))
            Fail(part, "/input",
                 IsCubic(sampler) ? "a cubic sampler needs two keys" : "a sampler needs a key");
        Times(input, part);
    }

    void Times(std::size_t accessor, const Part& part) {
        if (m_timesRead[accessor] || !HasData(m_document, accessor)) return;
        m_timesRead[accessor] = true;
        const std::vector<float> times = ReadFloats(m_document, accessor);
        for (std::size_t i = 0; i < times.size(); ++i) {
            if (std::isfinite(times[i]) && (i == 0 || times[i] > times[i - 1])) continue;
            Fail(part, "/input", Join("key ", i, " is not later than the one before"));
        }
    }

    // In memory each channel has its own keys, even where channels share their bytes in the file.
    void Play(std::size_t accessor, const Part& part) {
        const AccessorInfo info = Describe(m_document, accessor);
        m_played += std::uint64_t{info.count} * info.shape.Components() * sizeof(float) * kWeight;
        if (m_played > m_document.Budget().Total())
            m_document.Fail(ErrorKind::kLimit, part.Place("/sampler"),
                            "more keys than a file of this size may claim");
    }

    void Channel(const Json& target, const Json& sampler, const Part& part) {
        const std::string_view path = target.Find("path")->String();
        const std::size_t keys =
            Describe(m_document, IndexMember(sampler, "input")).count * (IsCubic(sampler) ? 3 : 1);
        const AccessorInfo values = Describe(m_document, IndexMember(sampler, "output"));
        for (const Path& known : kPaths) {
            if (path != known.name) continue;
            if (values.shape.columns != 1 || values.shape.rows != known.components)
                Fail(part, "", Join("the values of a ", path, " have ", known.components, " components"));
            Count(values.count, keys, part);
        }
        if (path == "pointer" && (values.count == 0 || values.count % keys != 0))
            Fail(part, "", Join(values.count, " values cannot be divided evenly among ", keys));
        if (path == "weights" && target.Find("node") != nullptr)
            Count(values.count, keys * Weights(target), part);
    }

    void Count(std::size_t values, std::size_t wanted, const Part& part) {
        if (values != wanted) Fail(part, "", Join(Counted(values, "value"), " where the keys need ", wanted));
    }

    std::size_t Weights(const Json& target) const {
        const Json& node = m_document.Elements(Kind::kNode)[IndexMember(target, "node")];
        const Json* mesh = node.Find("mesh");
        if (mesh == nullptr) return 0;
        const Json& json = m_document.Elements(Kind::kMesh)[*mesh->Index()];
        const Json* targets = json.Find("primitives")->Items()[0].Find("targets");
        return targets != nullptr ? targets->Items().size() : 0;
    }

    static bool IsCubic(const Json& sampler) {
        const Json* interpolation = sampler.Find("interpolation");
        return interpolation != nullptr && interpolation->String() == "CUBICSPLINE";
    }

    [[noreturn]] void Fail(const Part& part, std::string_view member, std::string_view text) {
        m_document.Fail(ErrorKind::kAnimation, part.Place(member), text);
    }

    const Document& m_document;
    std::vector<bool> m_timesRead;
    std::uint64_t m_played = 0;  // bytes of keys
};

}  // namespace

void CheckAnimations(const Document& document) {
    Animations check(document);
    const auto animations = document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) check.Animation(animations[i], i);
}

}  // namespace zr::gltf
