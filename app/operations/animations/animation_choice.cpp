// SPDX-License-Identifier: MIT
#include "app/operations/animations/animation_choice.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "kernix/utf.h"

namespace zr {
namespace {

constexpr std::size_t kMostListed = 20;

}  // namespace

std::string Candidates(const std::vector<kernix::AnimationModel*>& animations) {
    if (animations.empty()) return "the scene has no animation";
    std::string text = "the scene has ";
    for (std::size_t i = 0; i < std::min(animations.size(), kMostListed); ++i) {
        text +=
            (i == 0 ? "" : ", ") + std::to_string(i) + " \"" + kernix::ToUtf8(animations[i]->m_name) + "\"";
    }
    if (animations.size() > kMostListed)
        text += " and " + std::to_string(animations.size() - kMostListed) + " more";
    return text;
}

kernix::AnimationModel* ChooseAnimation(kernix::SceneModel& scene, const std::string& name) {
    const std::vector<kernix::AnimationModel*> animations = AnimationsOf(scene);
    const std::u16string wanted = kernix::ToUtf16(name);
    std::vector<kernix::AnimationModel*> matches;
    for (kernix::AnimationModel* animation : animations) {
        if (animation->m_name == wanted) matches.push_back(animation);
    }
    std::size_t index = 0;
    const char* end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, index);
    if (matches.empty() && read.ec == std::errc() && read.ptr == end && index < animations.size()) {
        return animations[index];
    }
    if (matches.size() == 1) return matches.front();
    throw std::runtime_error(
        (matches.empty() ? "no animation is named \"" : "more than one animation is named \"") + name +
        "\": " + Candidates(animations));
}

std::vector<kernix::AnimationModel*> ChooseAnimations(kernix::SceneModel& scene,
                                                      const std::vector<std::string>& names) {
    std::vector<kernix::AnimationModel*> chosen;
    for (const std::string& name : names) {
        kernix::AnimationModel* animation = ChooseAnimation(scene, name);
        if (std::find(chosen.begin(), chosen.end(), animation) != chosen.end()) {
            throw std::runtime_error("animation \"" + name + "\" is chosen twice");
        }
        chosen.push_back(animation);
    }
    return chosen;
}

}  // namespace zr
