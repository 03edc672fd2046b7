// SPDX-License-Identifier: MIT
#include <algorithm>

#include "app/operations/animations/bring_animations.h"
#include "app/operations/animations/merge_animations.h"
#include "app/operations/animations/split_animation.h"
#include "app/operations/reduce/reduce_keys.h"
#include "app/scene/animations_of.h"
#include "fuzz/scenes.h"
#include "tests/app/services/the_host.h"

namespace {

using namespace zr;

void Merge(LoadedScene& loaded, test::Random& choices) {
    MergeOptions options;
    options.keyFlags = 1 + static_cast<std::uint32_t>(choices.Pick(7));
    options.removeSources = choices.Chance();
    options.inSequence = choices.Chance();
    options.gap = choices.Chance() ? 0 : 0.5;
    MergeAnimations(test::TheHost(), loaded, AnimationsOf(loaded.Scene()), options);
}

void Split(LoadedScene& loaded, test::Random& choices) {
    const Animations animations = AnimationsOf(loaded.Scene());
    if (animations.empty()) return;
    kernix::AnimationModel& animation = *animations[choices.Pick(animations.size())];
    if (choices.Chance()) {
        SeparateAnimation(loaded, animation);
        return;
    }
    const float start = loaded.Scene().GetStartTime(&animation), end = loaded.Scene().GetEndTime(&animation);
    std::vector<float> cuts;
    for (std::size_t i = choices.Pick(4); i-- > 0;) {
        const float cut = start + (end - start) * static_cast<float>(choices.Pick(256)) / 256;
        if (start < cut && cut < end) cuts.push_back(cut);
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    CutAnimation(loaded, animation, cuts);
}

void Bring(LoadedScene& loaded, test::Random& choices) {
    LoadedScene other(fuzz::MakeDocument(choices));
    BringAnimations(other, loaded,
                    choices.Chance() ? MatchByName(other.Scene(), loaded.Scene())
                                     : MatchByPath(other.Scene(), loaded.Scene()));
}

void Reduce(gltf::Document& document, test::Random& choices) {
    constexpr double kTolerances[] = {0, 1e-3, 0.1, 10};
    const auto tolerance = [&] { return kTolerances[choices.Pick(std::size(kTolerances))]; };
    ReduceOptions options{{tolerance(), tolerance(), tolerance()}};
    options.jobs = 1;
    ReduceKeys(document, options);
}

}  // namespace

// Merges, cuts, separates, brings, removes and reduces the animations of random scenes, several times over.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::Random choices = fuzz::ChoicesOf(data, size);
    gltf::Document document = fuzz::MakeDocument(choices);
    for (std::size_t steps = 1 + choices.Pick(3); steps-- > 0;) {
        try {
            const std::size_t step = choices.Pick(5);
            if (step == 4) {
                Reduce(document, choices);
                continue;
            }
            SceneOptions options;
            options.force = choices.Chance();
            LoadedScene loaded(std::move(document), options);
            if (step == 0) Merge(loaded, choices);
            if (step == 1) Split(loaded, choices);
            if (step == 2) Bring(loaded, choices);
            if (step == 3) RemoveAnimations(test::TheHost(), loaded, AnimationsOf(loaded.Scene()));
            document = std::move(loaded).WriteBack();
        } catch (const std::runtime_error&) {
            return 0;  // the document is lost
        }
    }
    LoadedScene(std::move(document));
    return 0;
}
