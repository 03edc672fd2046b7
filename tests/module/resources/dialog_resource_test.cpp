// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "module/resources/resource.h"
#include "platform/ui/dialog_template.h"
#include "platform/windows.h"

// The dialog's template as in the module; this program embeds it too.
namespace {

std::span<const std::byte> Template() {
    const HRSRC resource = FindResourceA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), MAKEINTRESOURCEA(5));
    return {static_cast<const std::byte*>(LockResource(LoadResource(nullptr, resource))),
            SizeofResource(nullptr, resource)};
}

// Every control: identifier, style, caption, place.
struct Expected {
    unsigned id;
    unsigned style;
    const char16_t* caption;
    int x, y, width, height;
};

constexpr unsigned kShown = 0x10000000;
constexpr unsigned kChild = 0x40000000;
constexpr unsigned kTab = 0x00010000;
constexpr unsigned kCheck = kChild | kShown | kTab | 3;
constexpr unsigned kPush = kChild | kShown | kTab;

constexpr Expected kControls[] = {
    {1003, kCheck, u"#502", 12, 12, 216, 10},
    {1004, kCheck, u"#503", 12, 26, 216, 10},
    {1006, kCheck, u"#504", 12, 40, 216, 10},
    {1005, kCheck, u"#505", 12, 54, 216, 10},
    {1007, kCheck, u"#506", 12, 68, 216, 10},
    {1008, kCheck, u"#507", 12, 82, 216, 10},
    {1010, kCheck, u"#510", 12, 96, 216, 10},
    {1009, kCheck, u"#511", 12, 110, 216, 10},
    {1011, kCheck, u"#508", 12, 124, 216, 10},
    {1012, kCheck, u"#512", 12, 138, 216, 10},
    {1001, kPush | 1, u"#601", 41, 160, 50, 14},
    {2, kPush, u"#602", 95, 160, 50, 14},
    {9, kPush, u"#605", 149, 160, 50, 14},
    {1021, kChild | 0x00800000, u"", 6, 148, 228, 8},
    {1002, kChild | kTab, u"#603", 94, 160, 50, 14},
    {1023, kChild | kShown | 7, u"#501", 6, 1, 228, 152},
    {1022, kChild | 0x00A00844, u"", 190, 5, 44, 137},
};

TEST(CleanerDialog, HasTheLayoutThatTheProcedureNeeds) {
    const auto dialog = platform::ParseDialogTemplate(Template());
    ASSERT_TRUE(dialog.has_value());
    EXPECT_EQ(dialog->style, 0x80C008CCu);
    EXPECT_EQ(dialog->caption, u"#500");
    EXPECT_EQ(dialog->fontFace, u"MS Shell Dlg");
    EXPECT_EQ(dialog->fontPoints, 8);
    EXPECT_EQ(dialog->place.width, 240);
    EXPECT_EQ(dialog->place.height, 180);
    ASSERT_EQ(dialog->controls.size(), std::size(kControls));
    for (std::size_t i = 0; i < std::size(kControls); ++i) {
        const platform::DialogControl& control = dialog->controls[i];
        const Expected& expected = kControls[i];
        EXPECT_EQ(control.id, expected.id) << i;
        EXPECT_EQ(control.style, expected.style) << i;
        EXPECT_EQ(control.caption, expected.caption) << i;
        const platform::DialogPlace& place = control.place;
        EXPECT_EQ((std::vector<int>{place.x, place.y, place.width, place.height}),
                  (std::vector<int>{expected.x, expected.y, expected.width, expected.height}))
            << i;
    }
    EXPECT_EQ(dialog->controls.back().exStyle, 0x200u);
}

TEST(CleanerDialog, TruncatedAnywhereIsRejected) {
    const auto whole = Template();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(platform::ParseDialogTemplate(cut).has_value()) << size;
    }
}

}  // namespace
