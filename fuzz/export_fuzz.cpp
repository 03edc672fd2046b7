// SPDX-License-Identifier: MIT
#include "app/operations/export/export_scene.h"
#include "fuzz/export_choices.h"
#include "fuzz/scenes.h"
#include "tests/app/services/the_host.h"

// Exports random scenes with random option words. The result must load as a scene.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zr;
    test::Random choices = fuzz::ChoicesOf(data, size);
    const ExportOptions options = fuzz::MakeExportOptions(choices);
    std::string map;
    try {
        Exported exported = ExportScene(
            test::TheHost(), LoadedScene(fuzz::MakeDocument(choices)), options, [](double) {},
            choices.Chance() ? &map : nullptr);
        LoadedScene(std::move(exported.document));
    } catch (const std::runtime_error&) {
    }
    return 0;
}
