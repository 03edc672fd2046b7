// SPDX-License-Identifier: MIT
#include "gltf/interactivity.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zr::gltf {
namespace {

constexpr Rule kPointerRule{"pointer", Shape::kPointer};

const SchemaNode& Literal(Kind kind) {
    struct Table {
        std::array<Rule, kKinds> rules;
        std::array<SchemaNode, kKinds> nodes;
    };
    static const Table* const table = [] {
        static Table built;
        for (std::size_t i = 0; i < kKinds; ++i) {
            built.rules[i] = {"value", Shape::kIndex, static_cast<Kind>(i)};
            built.nodes[i].rule = &built.rules[i];
        }
        return &built;
    }();
    return table->nodes[Ordinal(kind)];
}

const SchemaNode& PointerNode() {
    static const SchemaNode node = [] {
        SchemaNode built;
        built.rule = &kPointerRule;
        return built;
    }();
    return node;
}

struct Parameter {
    std::string_view name;
    Kind kind;
};

// The parameters of a pointer template that stand for the index of an element.
std::vector<Parameter> Parameters(std::string_view pointer) {
    std::vector<Parameter> parameters;
    for (std::size_t i = 0; i < kKinds; ++i) {
        std::string prefix;
        for (std::string_view step : kKindInfo[i].Path()) prefix.append("/").append(step);
        prefix += "/{";
        if (!pointer.starts_with(prefix)) continue;
        const std::string_view rest = pointer.substr(prefix.size());
        parameters.push_back({rest.substr(0, rest.find('}')), static_cast<Kind>(i)});
    }
    // "children/{c}" and the like pick from lists of references; which node they reach is unknown.
    return parameters;
}

class Graph {
public:
    Graph(Json& graph, Visitor& visitor, Place& place) : m_graph(graph), m_visitor(visitor), m_place(place) {}

    void Visit() {
        Json* nodes = m_graph.Find("nodes");
        if (nodes == nullptr) return;
        m_place.Push("nodes", *nodes);
        const auto items = nodes->Items();
        for (std::size_t i = 0; i < items.size(); ++i) {
            m_place.Push(i, items[i]);
            Node(items[i]);
            m_place.Pop();
        }
        m_place.Pop();
    }

private:
    void Node(Json& node) {
        const std::string_view op = Operation(node);
        if (op.starts_with("animation/")) Socket(node, "values", "animation", Kind::kAnimation);
        if (Json* configuration = node.Find("configuration")) {
            if (configuration->Find("nodeIndex") != nullptr)
                Socket(node, "configuration", "nodeIndex", Kind::kNode);
            if (Json* pointer = configuration->Find("pointer")) Pointer(node, *configuration, *pointer);
        }
    }

    std::string_view Operation(const Json& node) const {
        const Json* declaration = node.Find("declaration");
        const Json* declarations = m_graph.Find("declarations");
        if (declaration == nullptr || declarations == nullptr) return {};
        const auto index = declaration->Index();
        if (!index || *index >= declarations->Items().size()) return {};
        const Json* op = declarations->Items()[*index].Find("op");
        return op != nullptr ? op->String() : std::string_view();
    }

    void Pointer(Json& node, Json& configuration, Json& pointer) {
        Json* literal = FirstValue(pointer);
        if (literal == nullptr) return;
        for (const Parameter& parameter : Parameters(literal->String()))
            Socket(node, "values", parameter.name, parameter.kind);
        if (!PointerTarget(literal->String())) return;
        m_place.Push("configuration", configuration);
        m_place.Push("pointer", pointer);
        m_visitor.Value(PointerNode(), *literal, m_place);
        m_place.Pop();
        m_place.Pop();
    }

    void Socket(Json& node, std::string_view group, std::string_view name, Kind kind) {
        Json* sockets = node.Find(group);
        Json* socket = sockets != nullptr ? sockets->Find(name) : nullptr;
        Json* literal = socket != nullptr ? FirstValue(*socket) : nullptr;
        if (socket == nullptr) return;
        m_place.Push(group, *sockets);
        m_place.Push(name, *socket);
        const auto index = literal != nullptr ? literal->Index() : std::nullopt;
        if (index)
            m_visitor.Value(Literal(kind), *literal, m_place);
        else if (literal == nullptr)
            m_visitor.Dynamic(kInteractivity, kind, m_place);
        m_place.Pop();
        m_place.Pop();
    }

    static Json* FirstValue(Json& socket) {
        Json* value = socket.Find("value");
        return value != nullptr && !value->Items().empty() ? value->Items().data() : nullptr;
    }

    Json& m_graph;
    Visitor& m_visitor;
    Place& m_place;
};

}  // namespace

void VisitInteractivity(Json& extension, Visitor& visitor, Place& place) {
    Json* graphs = extension.Find("graphs");
    if (graphs == nullptr) return;
    place.Push("graphs", *graphs);
    const auto items = graphs->Items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        place.Push(i, items[i]);
        Graph(items[i], visitor, place).Visit();
        place.Pop();
    }
    place.Pop();
}

}  // namespace zr::gltf
