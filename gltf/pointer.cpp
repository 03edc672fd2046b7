// SPDX-License-Identifier: MIT
#include "gltf/pointer.h"

#include <algorithm>
#include <charconv>

namespace zr::gltf {
namespace {

std::string Unescaped(std::string_view step) {
    std::string name;
    for (std::size_t i = 0; i < step.size(); ++i) {
        const bool isEscape = step[i] == '~' && i + 1 < step.size();
        name += !isEscape ? step[i] : step[++i] == '1' ? '/' : '~';
    }
    return name;
}

const Json* Step(const Json& json, std::string_view step) {
    if (!json.IsArray()) return json.Find(Unescaped(step));
    std::size_t index = 0;
    const char* end = step.data() + step.size();
    const auto read = std::from_chars(step.data(), end, index);
    const bool isItem = read.ec == std::errc() && read.ptr == end && index < json.Items().size();
    return isItem ? &json.Items()[index] : nullptr;
}

}  // namespace

const Json* AtPointer(const Json& root, std::string_view pointer) {
    const Json* at = &root;
    while (at != nullptr && !pointer.empty()) {
        if (pointer[0] != '/') return nullptr;
        pointer.remove_prefix(1);
        const std::size_t end = std::min(pointer.find('/'), pointer.size());
        at = Step(*at, pointer.substr(0, end));
        pointer.remove_prefix(end);
    }
    return at;
}

void AppendStep(std::string& pointer, std::string_view name) {
    pointer += '/';
    for (const char c : name) {
        if (c == '~')
            pointer += "~0";
        else if (c == '/')
            pointer += "~1";
        else
            pointer += c;
    }
}

}  // namespace zr::gltf
