// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>

#include "app/operations/export/export_records.h"
#include "app/operations/export/export_scene.h"
#include "base/file_transaction.h"
#include "fuzz/export_choices.h"
#include "fuzz/scenes.h"
#include "gltf/json.h"
#include "tests/app/services/the_host.h"
#include "tests/base/temporary_folder.h"

// Writes the records of random scenes with random option words as JSON, which must be well formed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zr;
    static const test::TemporaryFolder& folder = *new test::TemporaryFolder;
    test::Random choices = fuzz::ChoicesOf(data, size);
    const ExportOptions options = fuzz::MakeExportOptions(choices);
    std::string map;
    try {
        LoadedScene loaded(fuzz::MakeDocument(choices));
        FileTransaction files;
        ExportRecords(
            test::TheHost(), loaded, options, [](double) {}, files.Create(folder / "records.json"), &map);
        files.Commit();
    } catch (const std::runtime_error&) {
        return 0;
    }
    for (const std::string& text : {folder.Read("records.json"), map}) {
        try {
            gltf::JsonTree tree;
            tree.Build(text);
        } catch (const std::runtime_error& error) {
            std::fprintf(stderr, "%s\n", error.what());
            std::abort();
        }
    }
    return 0;
}
