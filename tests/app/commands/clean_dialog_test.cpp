// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "module/resources/resource.h"
#include "tests/app/commands/command_kit.h"
#include "tests/app/commands/forked_program.h"
#include "tests/platform/ui_driver.h"

// zr clean --dialog, whose user clicks.
namespace zr::test {
namespace {

class CleanDialogTest : public testing::Test {
protected:
    CleanDialogTest() {
        m_folder.Write("scene.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0,1]}],
            "nodes":[{"name":"empty"},{"name":"eye","camera":0}],
            "cameras":[{"type":"perspective","perspective":{"yfov":1,"znear":1}}],
            "materials":[{"name":"unused"}],"samplers":[{}]})");
    }

    // Runs zr with these words; the steps happen in the dialog.
    ForkedRun Run(const std::vector<std::string>& words, const std::function<void()>& steps) const {
        return RunForked(m_folder / "", words, [&](const std::function<int()>& run) {
            if (!driver::Start().empty()) return 99;
            driver::WhenDialogOpens(steps);
            return run();
        });
    }

    static void Process() {
        driver::Click(IDC_PROCESS);
        driver::WaitFor([] { return driver::IsVisible(IDC_CLOSE); });
        driver::Click(IDC_CLOSE);
    }
    static void Cancel() { driver::CloseDialog(); }

    CommandFolder m_folder;
};

TEST_F(CleanDialogTest, WritesWhatTheUserCleaned) {
    const ForkedRun run = Run({"clean", "--dialog", "--json", "scene.gltf", "out.gltf"}, Process);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find(R"("bytesAfter")"), std::string::npos) << run.out;
    const std::string out = m_folder.Read("out.gltf");
    EXPECT_NE(out.find("eye"), std::string::npos);
    EXPECT_EQ(out.find("empty"), std::string::npos) << out;
    EXPECT_EQ(out.find("unused"), std::string::npos) << out;
    EXPECT_EQ(out.find("samplers"), std::string::npos) << out;

    const ForkedRun piped = Run({"clean", "--dialog", "--format", "gltf", "scene.gltf", "-"}, Process);
    EXPECT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(piped.out, out);
}

TEST_F(CleanDialogTest, WritesNothingWhenCancelledOrNotAllowedTo) {
    const ForkedRun cancelled = Run({"clean", "--dialog", "scene.gltf", "out.gltf"}, Cancel);
    EXPECT_EQ(cancelled.status, 130);
    EXPECT_EQ(cancelled.err, "zr: cancelled; nothing was written\n");
    EXPECT_FALSE(m_folder.Exists("out.gltf"));

    m_folder.Write("out.gltf", "precious");
    const ForkedRun refused = Run({"clean", "--dialog", "--no-clobber", "scene.gltf", "out.gltf"}, Process);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(m_folder.Read("out.gltf"), "precious");
}

}  // namespace
}  // namespace zr::test
