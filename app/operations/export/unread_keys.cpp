// SPDX-License-Identifier: MIT
#include "app/operations/export/unread_keys.h"

#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "app/operations/export/record_rest.h"
#include "app/scene/world_lengths.h"
#include "base/file.h"

namespace zr {
namespace {

[[noreturn]] void Refuse(const LoadedScene& loaded, const SkippedChannel& channel) {
    throw std::runtime_error(PathToUtf8(loaded.Document().File()) + ": " + channel.Place() +
                             ": its keys are stored in a form that cannot be read, and the export would have "
                             "to change them; --no-animation exports the scene without them");
}

bool IsScaled(const gltf::Document& document, const SkippedChannel& skipped, const ExportOptions& options) {
    const gltf::Json& animation = document.Elements(gltf::Kind::kAnimation)[skipped.animation];
    const gltf::Json& channel = animation.Find("channels")->Items()[skipped.channel];
    return LengthFactor(document, channel, options.Scale()) != 1;
}

}  // namespace

std::string CheckUnreadKeys(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options) {
    std::unordered_set<const vl::zr::Animation*> exported;
    for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(tool->m_pScene->m_pAnimations))
        exported.insert(animation);
    const bool changesAll = options.clip.MovesKeys() || options.Has(vl::tk::kRescaleTime) ||
                            options.Has(vl::tk::kSetLength) || options.Has(vl::tk::kReverseTime) ||
                            !options.Has(vl::tk::kExtractKeys);
    std::unordered_map<const vl::zr::Node*, const ExportNode*> records;
    const SkippedChannel* first = nullptr;
    std::size_t count = 0;
    for (const SkippedChannel& channel : loaded.Skipped()) {
        if (channel.reason != Skipped::kUnreadable) continue;
        if (exported.count(loaded.Animation(channel.animation)) == 0) continue;
        if (records.empty()) {
            for (const ExportNode* record : AllRecords(tool)) records.insert({record->pSourceNode, record});
        }
        const auto found = channel.node ? records.find(loaded.Node(*channel.node)) : records.end();
        const bool isMoved = found != records.end() && !KeepsRestTransform(*found->second, options);
        if (changesAll || isMoved || IsScaled(loaded.Document(), channel, options)) Refuse(loaded, channel);
        if (first == nullptr) first = &channel;
        ++count;
    }
    if (first == nullptr) return {};
    return first->Place() + (count > 1 ? " and " + std::to_string(count - 1) + " more" : "") +
           ": keys that cannot be read are exported unchanged";
}

void CheckUnreadRecordKeys(const LoadedScene& loaded, const kernix::AnimationModel* animation,
                           const ExportOptions& options) {
    if (options.Has(vl::tk::kIgnoreAnimation) || !options.Has(vl::tk::kExtractKeys)) return;
    for (const SkippedChannel& channel : loaded.Skipped()) {
        const bool isPlayed = loaded.Animation(channel.animation) == animation;
        if (channel.reason == Skipped::kUnreadable && isPlayed && channel.node) Refuse(loaded, channel);
    }
}

}  // namespace zr
