// SPDX-License-Identifier: MIT
#include "base/file.h"

#include <gtest/gtest.h>

#include "base/error.h"
#include "tests/base/temporary_folder.h"

namespace zr {
namespace {

TEST(File, IsReadWholeUpToALimit) {
    const test::TemporaryFolder folder;
    folder.Write("f", "content");
    EXPECT_EQ(ReadFile(folder / "f").size, 7U);
    EXPECT_EQ(ReadFile(folder / "f", 7).size, 7U);
    EXPECT_THROW(ReadFile(folder / "f", 6), Error);
    EXPECT_THROW(ReadFile(folder / "none"), Error);
    EXPECT_THROW(ReadFile(folder / "."), Error);
}

}  // namespace
}  // namespace zr
