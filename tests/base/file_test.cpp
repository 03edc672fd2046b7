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
    // The size of these is not known before they are read.
    EXPECT_GT(ReadFile("/proc/self/maps").size, 7U);
    EXPECT_THROW(ReadFile("/proc/self/maps", 7), Error);
    EXPECT_THROW(ReadFile("/dev/zero", 1000), Error);
    EXPECT_THROW(ReadFile("/dev/zero", 1 << 20), Error);
    EXPECT_EQ(ReadFile("/dev/null").size, 0U);
    EXPECT_THROW(ReadFile(folder / "none"), Error);
    EXPECT_THROW(ReadFile(folder / "."), Error);
}

}  // namespace
}  // namespace zr
