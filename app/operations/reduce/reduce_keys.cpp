// SPDX-License-Identifier: MIT
#include "app/operations/reduce/reduce_keys.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "app/operations/reduce/motion.h"
#include "app/operations/reduce/shares.h"
#include "app/operations/reduce/straight_curve.h"
#include "app/operations/reduce/thinned_curve.h"
#include "base/parallel.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/collect.h"
#include "gltf/key_accessors.h"

namespace zr {
namespace {

using compare::KeyCurve;
using compare::kNone;
using compare::Path;
using gltf::Json;
using gltf::Kind;
using reduce::Motion;
using reduce::Stray;
using reduce::Track;

// A measurement that plays more transforms than this is not worth its time.
constexpr std::size_t kGreatestCost = 40'000'000;

bool IsSame(const KeyCurve& a, const KeyCurve& b) {
    return std::ranges::equal(a.Times(), b.Times()) && std::ranges::equal(a.Values(), b.Values());
}

class Reducer {
public:
    Reducer(gltf::Document& document, const ReduceOptions& options)
        : m_document(document),
          m_options(options),
          m_evaluator(document),
          m_watched(reduce::WatchedPoints(m_evaluator)),
          m_keys(document) {}

    ReduceReport Run() {
        const std::vector<compare::Animation>& animations = m_evaluator.Animations();
        std::vector<Reduced> reduced(animations.size());
        std::mutex mutex;
        std::size_t done = 0;
        ParallelFor(animations.size(), m_options.jobs, [&](std::size_t animation) {
            reduced[animation] = Reduce(animation);
            const std::lock_guard lock(mutex);
            m_options.progress(static_cast<double>(++done) / static_cast<double>(animations.size()));
        });
        for (std::size_t animation = 0; animation < animations.size(); ++animation) {
            Note(animations[animation], reduced[animation]);
            Write(animation, reduced[animation].curves);
        }
        gltf::CollectGarbage(m_document, {Kind::kAccessor, Kind::kBufferView, Kind::kBuffer}, false);
        return m_report;
    }

private:
    struct Reduced {
        std::map<std::size_t, KeyCurve> curves;  // by channel
        std::size_t keysBefore = 0;
        double length = 0;
        double angle = 0;
        std::size_t node = kNone;
        double time = 0;
        bool isBound = false;
    };

    std::vector<Track> TracksOf(std::size_t number) const {
        std::map<std::pair<std::size_t, Path>, const KeyCurve*> originals;
        if (number < m_options.originals.size()) {
            for (const compare::Channel& channel : m_options.originals[number].channels)
                originals.emplace(std::pair(channel.node, channel.path), &channel.curve);
        }
        std::vector<Track> tracks;
        for (const compare::Channel& channel : m_evaluator.Animations()[number].channels) {
            if (channel.path > Path::kScale) continue;
            const auto found = originals.find({channel.node, channel.path});
            const KeyCurve& original = found != originals.end() ? *found->second : channel.curve;
            tracks.push_back({&channel, &original,
                              reduce::Straightened(original, channel.path == Path::kRotation),
                              channel.curve});
        }
        return tracks;
    }

    Reduced Reduce(std::size_t number) const {
        const ReduceTolerance& tolerance = m_options.tolerance;
        Reduced reduced;
        for (const compare::Channel& channel : m_evaluator.Animations()[number].channels) {
            if (channel.path <= Path::kScale) continue;
            reduced.keysBefore += channel.curve.KeyCount();
            const KeyCurve straight = reduce::Straightened(channel.curve, false);
            reduced.curves.emplace(channel.index,
                                   reduce::ThinnedCurve(channel.curve, straight, false, tolerance.value));
        }
        std::vector<Track> tracks = TracksOf(number);
        for (const Track& track : tracks) reduced.keysBefore += track.original->KeyCount();
        if (!tracks.empty()) ReduceTracks(tracks, reduced);
        for (Track& track : tracks) reduced.curves.emplace(track.channel->index, std::move(track.reduced));
        return reduced;
    }

    void ReduceTracks(std::vector<Track>& tracks, Reduced& reduced) const {
        const ReduceTolerance& tolerance = m_options.tolerance;
        const bool mayStray = tolerance.length > 0 || tolerance.angle > 0;
        const Motion motion(m_evaluator, m_watched, tracks);
        reduced.isBound = mayStray && motion.Cost() > kGreatestCost;
        if (reduced.isBound) {
            reduce::ThinByBound(motion, tracks, tolerance);
            reduced.length = tolerance.length;
            reduced.angle = tolerance.angle;
        } else if (mayStray || motion.Cost() <= kGreatestCost) {
            const std::vector<Stray> strays =
                mayStray ? reduce::ThinByMotion(motion, tracks, tolerance) : motion.Measure();
            for (std::size_t watch = 0; watch < strays.size(); ++watch) {
                reduced.angle = std::max(reduced.angle, strays[watch].angle);
                if (strays[watch].length <= reduced.length) continue;
                reduced.length = strays[watch].length;
                reduced.node = motion.Watches()[watch].node;
                reduced.time = strays[watch].lengthTime;
            }
        }
    }

    void Note(const compare::Animation& animation, const Reduced& reduced) {
        m_report.keysBefore += reduced.keysBefore;
        for (const auto& [channel, curve] : reduced.curves) m_report.keysAfter += curve.KeyCount();
        m_report.isBound |= reduced.isBound;
        m_report.angle = std::max(m_report.angle, reduced.angle);
        if (reduced.length <= m_report.length) return;
        m_report.length = reduced.length;
        m_report.animation = animation.name;
        m_report.time = reduced.time;
        if (reduced.node == kNone) return;
        const Json* name = m_document.Elements(Kind::kNode)[reduced.node].Find("name");
        m_report.node = name != nullptr ? std::string(name->String()) : Join("#", reduced.node);
    }

    void Write(std::size_t animation, const std::map<std::size_t, KeyCurve>& reduced) {
        for (const compare::Channel& channel : m_evaluator.Animations()[animation].channels) {
            const KeyCurve& curve = reduced.at(channel.index);
            if (IsSame(curve, channel.curve)) continue;
            gltf::JsonTree& tree = m_document.Tree();
            const auto element = [&]() -> Json& { return m_document.Elements(Kind::kAnimation)[animation]; };
            const std::size_t oldSampler =
                gltf::IndexMember(element().Find("channels")->Items()[channel.index], "sampler");
            const Json& old = element().Find("samplers")->Items()[oldSampler];
            const std::string type(m_document.Elements(Kind::kAccessor)[gltf::IndexMember(old, "output")]
                                       .Find("type")
                                       ->String());
            const std::size_t input = m_keys.Times(curve.Times());
            const std::size_t output = m_keys.Values(type, curve.Values());
            Json sampler = tree.Clone(element().Find("samplers")->Items()[oldSampler]);
            tree.Member(sampler, "input") = tree.MakeIndex(input);
            tree.Member(sampler, "output") = tree.MakeIndex(output);
            if (curve.IsLinear() && !channel.curve.IsLinear()) sampler.EraseMember("interpolation");
            Json& samplers = *element().Find("samplers");
            tree.Append(samplers, sampler);
            tree.Member(element().Find("channels")->Items()[channel.index], "sampler") =
                tree.MakeIndex(samplers.Items().size() - 1);
        }
    }

    gltf::Document& m_document;
    const ReduceOptions& m_options;
    compare::Evaluator m_evaluator;
    std::vector<reduce::Watched> m_watched;
    gltf::KeyAccessors m_keys;
    ReduceReport m_report;
};

}  // namespace

ReduceReport ReduceKeys(gltf::Document& document, const ReduceOptions& options) {
    return Reducer(document, options).Run();
}

}  // namespace zr
