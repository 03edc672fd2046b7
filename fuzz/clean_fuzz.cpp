// SPDX-License-Identifier: MIT
#include "app/operations/clean/clean_scene.h"

#include <cstdio>
#include <cstdlib>

#include "fuzz/scenes.h"
#include "kernix/host_app_base.h"
#include "tests/app/services/the_host.h"

// Cleans random scenes with random options. A second cleaning must find nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zr;
    static EnvironmentService environment(test::TheHost());
    const auto context = vl::Ref<vl::Context>::Adopt(kernix::CreateContext());
    const auto cleaner = test::TheHost().Create<zr_CLEANER>(kTypeCleaner);

    test::Random choices = fuzz::ChoicesOf(data, size);
    CleanOptions options;
    for (bool& step : options.steps) step = choices.Pick(4) != 0;
    if (choices.Chance()) options.keep = {"n*"};
    options.force = choices.Chance();
    options.keepData = choices.Pick(4) == 0;
    options.blended = choices.Chance();
    options.explain = choices.Chance();
    try {
        gltf::Document document = fuzz::MakeDocument(choices);
        const auto clean = [&] {
            return CleanDocument(document, *cleaner, environment, context.Get(), options, [](double) {});
        };
        clean();
        const CleanResult second = clean();
        for (std::size_t i = 0; i < kCleanSteps; ++i) {
            if (second.steps[i].count == 0) continue;
            std::fprintf(stderr, "the second cleaning removed %zu more: %s\n", second.steps[i].count,
                         std::string(kCleanStepInfo[i].name).c_str());
            std::abort();
        }
    } catch (const std::runtime_error&) {
    }
    return 0;
}
