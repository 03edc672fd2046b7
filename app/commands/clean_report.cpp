// SPDX-License-Identifier: MIT
#include "app/commands/clean_report.h"

#include "app/commands/refusals.h"
#include "base/text.h"

namespace zr {

namespace {

std::string Plural(std::string_view noun) {
    return std::string(noun) + (noun.ends_with("h") ? "es" : "s");
}

JsonArray JsonOf(const std::vector<gltf::OpaqueUse>& uses) {
    JsonArray array;
    for (const gltf::OpaqueUse& use : uses)
        array.Append(JsonObject().Set("extension", use.extension).Set("place", use.place));
    return array;
}

}  // namespace

std::string CleanReportText(const CleanReport& report, bool withNames, bool explain) {
    std::string text = Printable(report.scene);
    if (!report.output.empty()) text += " -> " + Printable(report.output);
    text += "\n";
    const std::size_t start = text.size();
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        const StepResult& result = report.result.steps[step];
        if (result.count == 0) continue;
        text += Join("  ", kCleanStepInfo[step].name, ": ", result.count, "\n");
        if (!withNames) continue;
        for (const std::string& name : result.names) text += "    " + Printable(name) + "\n";
    }
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
        if (const std::size_t count = report.result.collected.removed[kind]) {
            text += Join("  unreferenced ", Plural(gltf::kKindInfo[kind].noun), ": ", count, "\n");
        }
    }
    if (text.size() == start) text += "  nothing to clean\n";
    if (explain) {
        for (const HeldElement& held : report.result.held) {
            text += Join("  kept ", gltf::Info(held.kind).noun, " ", Printable(held.name), ": ",
                         Printable(held.holder), "\n");
        }
    }
    if (report.bytesAfter != 0)
        text += Join("  bytes: ", report.bytesBefore, " -> ", report.bytesAfter, "\n");
    return text;
}

JsonObject CleanReportJson(const CleanReport& report, bool explain) {
    JsonObject root;
    JsonArray operations;
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        const StepResult& result = report.result.steps[step];
        if (!result.ran && result.refusals.empty()) continue;
        JsonObject item;
        item.Set("name", kCleanStepInfo[step].name).Set("count", result.count).Set("names", result.names);
        if (!result.refusals.empty()) item.Set("refusedBy", JsonOf(result.refusals));
        operations.Append(item);
    }
    root.Set("operations", operations);
    JsonObject unreferenced;
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
        if (const std::size_t count = report.result.collected.removed[kind])
            unreferenced.Set(Plural(gltf::kKindInfo[kind].noun), count);
    }
    root.Set("unreferenced", unreferenced);
    if (!report.result.collected.refusals.empty())
        root.Set("unreferencedRefusedBy", JsonOf(report.result.collected.refusals));
    if (explain) {
        JsonArray kept;
        for (const HeldElement& held : report.result.held) {
            JsonObject item;
            item.Set("kind", gltf::Info(held.kind).noun).Set("name", held.name).Set("by", held.holder);
            kept.Append(item);
        }
        root.Set("kept", kept);
    }
    root.Set("bytesBefore", report.bytesBefore);
    if (report.bytesAfter != 0) root.Set("bytesAfter", report.bytesAfter);
    return root;
}

std::vector<std::string> CleanRefusals(const CleanReport& report) {
    std::vector<std::string> lines;
    const auto add = [&](std::string_view what, const std::vector<gltf::OpaqueUse>& uses) {
        for (const std::string& line : RefusalLines(what, uses))
            lines.push_back(Join(report.scene, ": ", line));
    };
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        add(kCleanStepInfo[step].name, report.result.steps[step].refusals);
    }
    add("unreferenced data", report.result.collected.refusals);
    return lines;
}

}  // namespace zr
