// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "app/commands/commands.h"
#include "app/commands/session.h"
#include "host/cleaner.h"
#include "host/xml.h"

namespace zr {

namespace {

std::string Attribute(const vl::xml::Element& element, const char* name) {
    const std::string* value = element.FindAttribute(name);
    return value != nullptr ? *value : std::string();
}

void PrintMethod(const vl::xml::Element& method) {
    std::printf("%s %s: %s\n", Attribute(method, "id").c_str(), Attribute(method, "name").c_str(),
                Attribute(method, "comment").c_str());
    for (const vl::xml::Element& part : method.GetChildren()) {
        if (part.GetName() == "Result") {
            std::printf("  result: %s\n", Attribute(part, "type").c_str());
            continue;
        }
        const std::string fallback = Attribute(part, "default");
        std::printf("  %2s %s: %s%s%s\n", Attribute(part, "id").c_str(), Attribute(part, "name").c_str(),
                    Attribute(part, "type").c_str(), fallback.empty() ? "" : " = ", fallback.c_str());
    }
}

int DescribeCleaner(Session& session) {
    const vl::Ref<zr_CLEANER> cleaner = session.GetHost().Create<zr_CLEANER>(kTypeCleaner);
    vl::xml::Element description;
    if (cleaner->QueryInfo(&description, 0) != vl::kSuccess) {
        throw std::runtime_error("the module's description of the cleaner's methods cannot be read");
    }
    if (const vl::xml::Element* methods = description.FindChild("Methods")) {
        for (const vl::xml::Element& method : methods->GetChildren()) PrintMethod(method);
    }
    return 0;
}

}  // namespace

void AddDescribeCommand(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("describe", "Prints the methods that an extension offers to scripts");
    command->require_subcommand(1);
    command->add_subcommand("cleaner", "The scene cleaner")->callback([&session] {
        session.SetCommand([&session] { return DescribeCleaner(session); });
    });
}

}  // namespace zr
