// SPDX-License-Identifier: MIT
#include "app/operations/report/report_page.h"

#include <stdexcept>

#include "app/operations/compare/node_matching.h"
#include "app/operations/report/page_source.h"
#include "gltf/uri.h"

namespace zr::report {

using gltf::Json;
using gltf::JsonTree;

namespace {

class Writer {
public:
    explicit Writer(Page& page) : m_page(page) {}

    std::string Run() {
        Json root = JsonTree::MakeObject();
        Set(root, "kind", Text(m_page.kind));
        Set(root, "title", Text(m_page.title));
        Set(root, "subtitle", Text(m_page.subtitle));
        Set(root, "summary", Pairs(m_page.summary));
        Set(root, "times", Times());
        Matching(root);
        Json scenes = JsonTree::MakeArray();
        for (Scene& scene : m_page.scenes) m_tree.Append(scenes, SceneJson(scene));
        Set(root, "scenes", scenes);
        if (!m_page.result.empty()) Set(root, "result", m_tree.Build(m_page.result));
        if (!m_page.drawing.empty()) Set(root, "drawing", Text(m_page.drawing));
        Set(root, "measures", Pairs(m_page.measures));
        return gltf::WriteJson(root, false);
    }

private:
    Json Text(std::string_view text) { return m_tree.MakeString(text); }
    void Set(Json& object, std::string_view name, Json value) { m_tree.Member(object, name) = value; }

    Json Pairs(const std::vector<std::pair<std::string, std::string>>& pairs) {
        Json list = JsonTree::MakeArray();
        for (const auto& [label, value] : pairs) {
            Json pair = JsonTree::MakeArray();
            m_tree.Append(pair, Text(label));
            m_tree.Append(pair, Text(value));
            m_tree.Append(list, pair);
        }
        return list;
    }

    Json Indices(const std::vector<std::size_t>& indices) {
        Json list = JsonTree::MakeArray();
        for (const std::size_t index : indices) m_tree.Append(list, m_tree.MakeIndex(index));
        return list;
    }

    Json Times() {
        Json list = JsonTree::MakeArray();
        for (const ClipTime& time : m_page.times) {
            Json json = JsonTree::MakeObject();
            Set(json, "animation", Text(time.animation));
            Set(json, "scale", m_tree.MakeNumber(time.scale));
            Set(json, "offset", m_tree.MakeNumber(time.offset));
            Set(json, "from", m_tree.MakeNumber(time.from));
            Set(json, "to", m_tree.MakeNumber(time.to));
            m_tree.Append(list, json);
        }
        return list;
    }

    // Which nodes of the two scenes match.
    void Matching(Json& root) {
        if (m_page.scenes.size() != 2) return;
        const compare::Evaluator before(m_page.scenes[0].document), after(m_page.scenes[1].document);
        const compare::NodeMatching matching = compare::MatchNodes(before, after);
        Json pairs = JsonTree::MakeArray();
        for (const auto& [a, b] : matching.pairs) m_tree.Append(pairs, Indices({a, b}));
        Set(root, "pairs", pairs);
        Set(root, "onlyBefore", Indices(matching.onlyA));
        Set(root, "onlyAfter", Indices(matching.onlyB));
    }

    Json SceneJson(Scene& scene) {
        Json object = JsonTree::MakeObject();
        Set(object, "label", Text(scene.label));
        const std::vector<std::byte> container = PackContainer(scene.document);
        const std::string_view bytes(reinterpret_cast<const char*>(container.data()), container.size());
        const std::string uri = gltf::EncodeDataUri("model/gltf-binary", bytes);
        Set(object, "glb", Text(std::string_view(uri).substr(uri.find(',') + 1)));
        if (!scene.matrix) return object;
        Json matrix = JsonTree::MakeArray();
        for (const double number : *scene.matrix) m_tree.Append(matrix, m_tree.MakeNumber(number));
        Set(object, "matrix", matrix);
        return object;
    }

    Page& m_page;
    JsonTree m_tree;
};

std::string Replaced(std::string_view text, std::string_view what, const std::string& with) {
    const std::size_t at = text.find(what);
    if (at == std::string_view::npos) return std::string(text);
    std::string replaced(text.substr(0, at));
    replaced += with;
    return replaced.append(text.substr(at + what.size()));
}

std::string Escaped(std::string_view text, std::string_view special, const auto& escape) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (special.find(c) != std::string_view::npos)
            escaped += escape(c);
        else
            escaped += c;
    }
    return escaped;
}

}  // namespace

bool HasPages() {
    return !PageSource().empty();
}

std::string PageText(Page page) {
    if (!HasPages()) throw std::runtime_error("this program was built without report pages");
    const std::string title = Escaped(page.title, "<>&", [](char c) {
        return c == '<' ? "&lt;" : c == '>' ? "&gt;" : "&amp;";
    });
    // A script ends at the first "</script", even within a string.
    const std::string data = Escaped(Writer(page).Run(), "<", [](char) { return "\\u003c"; });
    return Replaced(Replaced(PageSource(), "<!--TITLE-->", title), "<!--DATA-->", data);
}

}  // namespace zr::report
