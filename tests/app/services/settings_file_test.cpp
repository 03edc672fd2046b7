// SPDX-License-Identifier: MIT
#include "app/services/settings_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace {

class SettingsFileTest : public testing::Test {
protected:
    std::filesystem::path Write(const std::string& text) {
        const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "zr_settings_test.ini";
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

    std::string Error(const std::filesystem::path& file) {
        try {
            zr::SettingsFile settings(file);
        } catch (const std::runtime_error& error) {
            return std::string(error.what()).substr(file.string().size());
        }
        return "none";
    }
};

TEST_F(SettingsFileTest, FindsSettingsByPath) {
    zr::SettingsFile settings(
        Write("top = 3\n[Anim]\nmergekeys=1 ; on\nRESCALEPERCENT = 0.5\nbig=1e300\n"
              "[user\\anim]\nreverse=2.9\n"));
    EXPECT_EQ(settings.GetInt("", "anim\\mergekeys", 0), 1);
    EXPECT_EQ(settings.GetInt("anim", "mergekeys", 0), 1);
    EXPECT_EQ(settings.GetFloat(nullptr, "anim\\rescalepercent", 1), 0.5f);
    EXPECT_EQ(settings.GetInt("user", "anim\\reverse", 0), 2);
    EXPECT_EQ(settings.GetInt("", "anim\\reverse", 7), 7);
    EXPECT_EQ(settings.GetInt("", "anim\\big", 7), 7);
    EXPECT_EQ(settings.GetFloat("", "anim\\big", 7), 7.0f);
}

TEST_F(SettingsFileTest, NamesTheFault) {
    EXPECT_EQ(Error(Write("[anim]\nmergekeys=1\nwhat is this\n")), ": line 3 is not a setting");
    EXPECT_EQ(Error(Write("[anim]\nmergekeys=yes\n")), ": [anim] mergekeys is not a number: yes");
    EXPECT_LT(Error(Write("[anim]\nmergekeys=" + std::string(10000, 'x'))).size(), 200U);
    EXPECT_EQ(Error(Write(std::string(2 << 20, ';'))), ": is larger than the 1048576 bytes that may be read");
    EXPECT_EQ(Error("/nowhere/settings.ini"), ": cannot be opened: No such file or directory");
    EXPECT_EQ(Error(testing::TempDir()), ": cannot be read: Is a directory");
    EXPECT_EQ(Error(Write("")), "none");
    EXPECT_EQ(Error(Write("\xEF\xBB\xBF; all of it\r\n\r\n# is\n [ x ] \n a : 1;2 ; as it is")),
              ": [ x ] a is not a number: 1;2");
}

}  // namespace
