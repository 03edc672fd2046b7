// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>
#include <stdexcept>
#include <string>

#include "app/commands/commands.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "base/text.h"
#include "host/cleaner.h"
#include "host/xml.h"

namespace zr {

namespace {

std::string Attribute(const vl::xml::Element& element, const char* name) {
    const std::string* value = element.FindAttribute(name);
    return value != nullptr ? *value : std::string();
}

Report DescribeMethod(const vl::xml::Element& method) {
    Report report;
    report.Line(
        Join(Attribute(method, "id"), " ", Attribute(method, "name"), ": ", Attribute(method, "comment")));
    report.json.Set("id", Attribute(method, "id")).Set("name", Attribute(method, "name"));
    report.json.Set("comment", Attribute(method, "comment"));
    JsonArray parameters;
    for (const vl::xml::Element& part : method.GetChildren()) {
        const std::string type = Attribute(part, "type");
        if (part.GetName() == "Result") {
            report.Line("  result: " + type);
            report.json.Set("result", type);
            continue;
        }
        const std::string id = Attribute(part, "id"), name = Attribute(part, "name");
        const std::string initial = Attribute(part, "default");
        report.Line(Join("  ", id.size() < 2 ? " " : "", id, " ", name, ": ", type,
                         initial.empty() ? "" : " = ", initial));
        JsonObject parameter;
        parameter.Set("id", id).Set("name", name).Set("type", type);
        if (!initial.empty()) parameter.Set("default", initial);
        parameters.Append(parameter);
    }
    report.json.Set("parameters", parameters);
    return report;
}

Report DescribeCleaner(Session& session) {
    const vl::Ref<zr_CLEANER> cleaner = session.GetHost().Create<zr_CLEANER>(kTypeCleaner);
    vl::xml::Element description;
    if (cleaner->QueryInfo(&description, 0) != vl::kSuccess) {
        throw std::runtime_error("the module's description of the cleaner's methods cannot be read");
    }
    Report report;
    report.isAnswer = true;
    JsonArray methods;
    if (const vl::xml::Element* list = description.FindChild("Methods")) {
        for (const vl::xml::Element& method : list->GetChildren()) {
            const Report each = DescribeMethod(method);
            report.text += each.text;
            methods.Append(each.json);
        }
    }
    report.json.Set("methods", methods);
    return report;
}

}  // namespace

void AddDescribeCommand(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("describe", "Print the methods that an extension offers to scripts");
    command->require_subcommand(1);
    CLI::App* cleaner = command->add_subcommand("cleaner", "The scene cleaner")->group("Extensions");
    OnRun(*cleaner, session, [&session] {
        PrintReport(session, "describe", DescribeCleaner(session));
        return 0;
    });
    AddExamples(*command, {{"describe cleaner", "List the cleaner's methods and their parameters."},
                           {"describe cleaner --json", "The same for a program."},
                           {"--language de describe cleaner", "The same with the module's German texts."}});
}

}  // namespace zr
