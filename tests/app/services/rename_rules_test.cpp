// SPDX-License-Identifier: MIT
#include "app/services/rename_rules.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/string.h"

namespace {

TEST(RenameRules, ApplyInTheirOrder) {
    zr::RenameRules rules;
    rules.Add("^node_(\\d+)=N\\1");
    rules.Add("N=M");
    EXPECT_EQ(rules.Apply("node_12"), "M12");
    EXPECT_EQ(rules.Apply("NoNe"), "MoMe");
    EXPECT_EQ(rules.Apply(""), "");
}

TEST(RenameRules, EqualsSignsAndCharacters) {
    zr::RenameRules rules;
    rules.Add("a\\=b=c=d");
    rules.Add(".$=");
    EXPECT_EQ(rules.Apply("a=b\xC3\xBC"), "c=d");
}

TEST(RenameRules, RejectInvalidRules) {
    zr::RenameRules rules;
    EXPECT_THROW(rules.Add("abc"), std::invalid_argument);
    EXPECT_THROW(rules.Add("a\\="), std::invalid_argument);
    EXPECT_THROW(rules.Add("(=x"), std::invalid_argument);
    EXPECT_THROW(rules.Add("a=\\1"), std::invalid_argument);
    EXPECT_EQ(rules.Apply("abc"), "abc");
}

TEST(RenameRules, RenameAsCallback) {
    zr::RenameRules rules;
    rules.Add("\\s+=_");
    vl::String name;
    name.Set("a  \xC3\xBC b");
    zr::RenameRules::Rename(nullptr, &name, &rules);
    EXPECT_EQ(name.Text(), u"a_\u00FC_b");
}

}  // namespace
