// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "gltf/json.h"

namespace zr::gltf {

// Writes a text as WriteJson does a pretty one, container by container, so that neither the text nor its
// values stand in memory as a whole. Names are written as they are.
class JsonStream {
public:
    explicit JsonStream(JsonSink sink) : m_sink(std::move(sink)) {}

    // Begins an object ('{') or a list ('['): the whole text, a member of that name, or an item.
    void Open(char bracket, std::string_view name = {});
    void Close();
    // A value that stands complete: a member of that name, or an item.
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
