// SPDX-License-Identifier: MIT
#include "app/commands/animation_report.h"

#include "base/text.h"
#include "kernix/utf.h"

namespace zr {

AnimationSummary Summarize(kernix::SceneModel& scene, kernix::AnimationModel& animation, std::size_t index) {
    AnimationSummary summary{index,
                             kernix::ToUtf8(animation.m_name),
                             scene.GetStartTime(&animation),
                             scene.GetEndTime(&animation),
                             animation.Tracks().size(),
                             0};
    for (vl::zr::Track* track : animation.Tracks())
        summary.keys += static_cast<std::size_t>(track->GetKeyCount());
    return summary;
}

std::string AnimationSummary::Text() const {
    return Join("\"", name, "\"  ", Short(start), " to ", Short(end), " s, ", Counted(tracks, "track"), ", ",
                Counted(keys, "key"));
}

JsonObject AnimationSummary::Json() const {
    JsonObject json;
    json.Set("index", index).Set("name", name).Set("start", start).Set("end", end);
    return json.Set("tracks", tracks).Set("keys", keys);
}

}  // namespace zr
