// SPDX-License-Identifier: MIT
#include "app/commands/clean_report.h"

#include <algorithm>

#include "base/text.h"

namespace zr {

using gltf::Json;
using gltf::JsonTree;

namespace {

std::string Plural(std::string_view noun) {
    return std::string(noun) + (noun.ends_with("h") ? "es" : "s");
}

// One line for each extension, with the first of its places.
std::vector<gltf::OpaqueUse> ByExtension(const std::vector<gltf::OpaqueUse>& uses) {
    std::vector<gltf::OpaqueUse> first;
    for (const gltf::OpaqueUse& use : uses) {
        const bool known = std::any_of(first.begin(), first.end(), [&](const gltf::OpaqueUse& other) {
            return other.extension == use.extension;
        });
        if (!known) first.push_back(use);
    }
    return first;
}

class Writer {
public:
    Json Number(std::size_t value) { return m_tree.MakeIndex(value); }
    Json Text(std::string_view text) { return m_tree.MakeString(text); }
    void Set(Json& object, std::string_view name, Json value) { m_tree.Member(object, name) = value; }
    void Append(Json& array, Json value) { m_tree.Append(array, value); }

    Json Uses(const std::vector<gltf::OpaqueUse>& uses) {
        Json array = JsonTree::MakeArray();
        for (const gltf::OpaqueUse& use : uses) {
            Json item = JsonTree::MakeObject();
            Set(item, "extension", Text(use.extension));
            Set(item, "place", Text(use.place));
            Append(array, item);
        }
        return array;
    }

private:
    JsonTree m_tree;
};

}  // namespace

std::string CleanReportText(const CleanReport& report, bool withNames, bool explain) {
    std::string text = report.scene.string();
    if (!report.output.empty()) text += " -> " + report.output.string();
    text += "\n";
    const std::size_t start = text.size();
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        const StepResult& result = report.result.steps[step];
        if (result.count == 0) continue;
        text += Join("  ", kCleanStepInfo[step].name, ": ", result.count, "\n");
        if (!withNames) continue;
        for (const std::string& name : result.names) text += "    " + name + "\n";
    }
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
        if (const std::size_t count = report.result.collected.removed[kind]) {
            text += Join("  unreferenced ", Plural(gltf::kKindInfo[kind].noun), ": ", count, "\n");
        }
    }
    if (text.size() == start) text += "  nothing to clean\n";
    if (explain) {
        for (const HeldElement& held : report.result.held) {
            text += Join("  kept ", gltf::Info(held.kind).noun, " ", held.name, ": ", held.holder, "\n");
        }
    }
    if (report.bytesAfter != 0)
        text += Join("  bytes: ", report.bytesBefore, " -> ", report.bytesAfter, "\n");
    return text;
}

std::string CleanReportJson(const CleanReport& report, bool explain) {
    Writer writer;
    Json root = JsonTree::MakeObject();
    writer.Set(root, "scene", writer.Text(report.scene.string()));
    if (!report.output.empty()) writer.Set(root, "output", writer.Text(report.output.string()));
    Json operations = JsonTree::MakeArray();
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        const StepResult& result = report.result.steps[step];
        if (!result.ran && result.refusals.empty()) continue;
        Json item = JsonTree::MakeObject();
        writer.Set(item, "name", writer.Text(kCleanStepInfo[step].name));
        writer.Set(item, "count", writer.Number(result.count));
        Json names = JsonTree::MakeArray();
        for (const std::string& name : result.names) writer.Append(names, writer.Text(name));
        writer.Set(item, "names", names);
        if (!result.refusals.empty()) writer.Set(item, "refusedBy", writer.Uses(result.refusals));
        writer.Append(operations, item);
    }
    writer.Set(root, "operations", operations);
    Json unreferenced = JsonTree::MakeObject();
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
        if (const std::size_t count = report.result.collected.removed[kind]) {
            writer.Set(unreferenced, Plural(gltf::kKindInfo[kind].noun), writer.Number(count));
        }
    }
    writer.Set(root, "unreferenced", unreferenced);
    if (!report.result.collected.refusals.empty()) {
        writer.Set(root, "unreferencedRefusedBy", writer.Uses(report.result.collected.refusals));
    }
    if (explain) {
        Json kept = JsonTree::MakeArray();
        for (const HeldElement& held : report.result.held) {
            Json item = JsonTree::MakeObject();
            writer.Set(item, "kind", writer.Text(gltf::Info(held.kind).noun));
            writer.Set(item, "name", writer.Text(held.name));
            writer.Set(item, "by", writer.Text(held.holder));
            writer.Append(kept, item);
        }
        writer.Set(root, "kept", kept);
    }
    writer.Set(root, "bytesBefore", writer.Number(report.bytesBefore));
    if (report.bytesAfter != 0) writer.Set(root, "bytesAfter", writer.Number(report.bytesAfter));
    return gltf::WriteJson(root, true);
}

std::string CleanRefusals(const CleanReport& report) {
    std::string text;
    const auto add = [&](std::string_view what, const std::vector<gltf::OpaqueUse>& uses) {
        for (const gltf::OpaqueUse& use : ByExtension(uses)) {
            text += Join(report.scene.string(), ": ", what, " left alone: the extension ", use.extension,
                         " at ", use.place, " could refer to it (--force takes it all the same)\n");
        }
    };
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        add(kCleanStepInfo[step].name, report.result.steps[step].refusals);
    }
    add("unreferenced data", report.result.collected.refusals);
    return text;
}

}  // namespace zr
