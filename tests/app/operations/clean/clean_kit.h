// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/operations/clean/clean_scene.h"
#include "app/services/host.h"
#include "kernix/host_app_base.h"

namespace zr {

using Strings = std::vector<std::string>;

inline Strings Names(const gltf::Document& document, gltf::Kind kind) {
    Strings names;
    for (const gltf::Json& element : document.Elements(kind)) {
        const gltf::Json* name = element.Find("name");
        names.emplace_back(name != nullptr ? name->String() : "");
    }
    return names;
}

class CleanTest : public testing::Test {
protected:
    CleanTest() { m_host.LoadModule(); }

    static CleanOptions Unseen() {
        CleanOptions options;
        for (std::size_t i = 0; i < kCleanSteps; ++i) options.steps[i] = kCleanStepInfo[i].unseen;
        options.explain = true;
        return options;
    }

    CleanResult Clean(gltf::Document& document, const CleanOptions& options) {
        const auto cleaner = m_host.Create<zr_CLEANER>(kTypeCleaner);
        return CleanDocument(document, *cleaner, m_environment, m_context.Get(), options, [](double) {});
    }

    static const Strings& NamesOf(const CleanResult& result, CleanStep step) {
        return result.steps[static_cast<std::size_t>(step)].names;
    }

    // "leaf: metadata", without the places in parentheses.
    static Strings Held(const CleanResult& result) {
        Strings held;
        for (const HeldElement& element : result.held)
            held.push_back(element.name + ": " + element.holder.substr(0, element.holder.find(" (")));
        return held;
    }

    Host m_host{"en"};
    EnvironmentService m_environment{m_host};
    vl::Ref<vl::Context> m_context = vl::Ref<vl::Context>::Adopt(kernix::CreateContext());
};

}  // namespace zr
