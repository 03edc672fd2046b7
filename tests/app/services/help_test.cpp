// SPDX-License-Identifier: MIT
#include "app/services/help.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "app/services/host.h"

namespace {

std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A system whose only program "opens" files by recording their names.
class OpensFiles : public testing::Test {
protected:
    OpensFiles() : m_path(std::getenv("PATH")) {
        std::filesystem::create_directories(m_folder);
        std::ofstream(m_folder / "xdg-open")
            << "#!/bin/sh\nprintf %s \"$1\" > " << (m_folder / "part") << "\n/bin/mv " << (m_folder / "part")
            << ' ' << m_opened << '\n';
        chmod((m_folder / "xdg-open").c_str(), 0755);
        setenv("PATH", m_folder.c_str(), 1);
    }
    ~OpensFiles() override {
        setenv("PATH", m_path.c_str(), 1);
        std::filesystem::remove_all(m_folder);
    }

    std::string m_path;
    std::filesystem::path m_folder = testing::TempDir() + "/zr_help_test";
    std::filesystem::path m_opened = m_folder / "opened";
};

TEST_F(OpensFiles, HelpOpensThePageThatTheDialogAsksFor) {
    zr::Host host("en");
    host.ShowHelpTopic("flush_unused_objects.htm", 0);
    for (int i = 0; i < 1000 && !std::filesystem::exists(m_opened); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const std::string page = ReadFile(m_opened);
    EXPECT_EQ(page, zr::HelpPage("flush_unused_objects.htm"));
    EXPECT_NE(ReadFile(page).find("<title>Cleaning scenes</title>"), std::string::npos);
}

TEST_F(OpensFiles, WithoutABrowserThePageIsNamed) {
    std::filesystem::remove(m_folder / "xdg-open");
    zr::Host host("en");
    testing::internal::CaptureStderr();
    host.ShowHelpTopic("flush_unused_objects.htm", 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "zr: help: " + zr::HelpPage("flush_unused_objects.htm").string() + "\n");
}

}  // namespace
