// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>

#include "app/commands/commands.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/services/font_list.h"
#include "host/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// Folds the case of ASCII letters.
std::u16string Folded(std::u16string text) {
    for (char16_t& c : text) c = vl::FoldCase(c);
    return text;
}

std::vector<FontFamily> ChosenFonts(const std::string& part) {
    std::vector<FontFamily> fonts = ListFonts();
    const std::u16string wanted = Folded(kernix::ToUtf16(part));
    std::erase_if(fonts,
                  [&](const FontFamily& family) { return Folded(family.name).find(wanted) == wanted.npos; });
    return fonts;
}

Report Describe(const std::vector<FontFamily>& fonts) {
    Report report;
    report.isAnswer = true;
    JsonArray families;
    for (const FontFamily& family : fonts) {
        const std::string name = kernix::ToUtf8(family.name);
        std::string line = name;
        JsonArray styles;
        const char* separator = ": ";
        for (const FontStyle& style : family.styles) {
            const std::string styleName = kernix::ToUtf8(style.name);
            line += separator + styleName;
            separator = ", ";
            styles.Append(JsonObject()
                              .Set("name", styleName)
                              .Set("weight", style.weight)
                              .Set("italic", style.isItalic));
        }
        report.Line(line);
        families.Append(JsonObject().Set("family", name).Set("styles", styles));
    }
    report.json.Set("fonts", families);
    return report;
}

}  // namespace

void AddFontsCommand(CLI::App& app, Session& session) {
    CLI::App* command = app.add_subcommand("fonts", "List the fonts that a text can be drawn with");
    const auto part = std::make_shared<std::string>();
    command->add_option("name", *part, "Only families with this in their name")->type_name("NAME");
    AddExamples(*command, {{"fonts", "List all families and their styles."},
                           {"fonts sans", "Those with \"sans\" in their name."},
                           {"fonts --json", "The same for a program, with the weights."}});
    OnRun(*command, session, [part, &session] {
        PrintReport(session, "fonts", Describe(ChosenFonts(*part)));
        return 0;
    });
}

}  // namespace zr
