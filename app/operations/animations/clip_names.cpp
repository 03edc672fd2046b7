// SPDX-License-Identifier: MIT
#include "app/operations/animations/clip_names.h"

#include <map>
#include <set>
#include <string_view>

#include "base/text.h"
#include "host/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

constexpr std::size_t kLongest = 100;  // bytes

std::string Cleaned(const std::string& name) {
    std::string cleaned = name.substr(0, kernix::CutUtf8(name, kLongest));
    constexpr std::string_view kRefused = "<>:\"/\\|?*";
    for (char& c : cleaned) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || kRefused.find(c) != kRefused.npos) c = '_';
    }
    // Avoids hidden files, "." and ".."; some systems drop trailing dots and spaces.
    if (cleaned.starts_with('.')) cleaned[0] = '_';
    while (cleaned.ends_with('.') || cleaned.ends_with(' ')) cleaned.pop_back();
    return cleaned;
}

std::string Folded(std::string name) {
    for (char& c : name) c = vl::FoldCase(c);
    return name;
}

}  // namespace

std::vector<std::string> ClipNames(const std::vector<std::string>& animations) {
    std::vector<std::string> names;
    std::set<std::string> taken;
    std::map<std::string, int> numbers;  // by folded name: the last number appended
    for (std::size_t i = 0; i < animations.size(); ++i) {
        std::string name = Cleaned(animations[i]);
        if (name.empty()) name = Join("animation ", i);
        const std::string first = name;
        int& number = numbers.try_emplace(Folded(first), 1).first->second;
        while (!taken.insert(Folded(name)).second) name = Join(first, " ", ++number);
        names.push_back(name);
    }
    return names;
}

}  // namespace zr
