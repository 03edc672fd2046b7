// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "gltf/json.h"

namespace zr::gltf {

// Writes the text that a pretty WriteJson would, piece by piece, so that neither the text nor its values are
// ever in memory as a whole. Names are not escaped.
class JsonStream {
public:
    explicit JsonStream(JsonSink sink) : m_sink(std::move(sink)) {}

    // Begins an object ('{') or a list ('['): the whole text, a member of that name, or an item.
    void Open(char bracket, std::string_view name = {});
    void Close();
    // Writes a complete value: a member of that name, or an item.
    void Put(const Json& value, std::string_view name = {});

private:
    void Begin(std::string_view name);
    void NewLine();

    struct Level {
        char bracket;
        bool isEmpty = true;
    };
    JsonSink m_sink;
    std::vector<Level> m_open;
};

}  // namespace zr::gltf
