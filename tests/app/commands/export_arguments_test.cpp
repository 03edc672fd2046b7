// SPDX-License-Identifier: MIT
#include "app/commands/export_arguments.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include <cmath>

#include "app/commands/session.h"
#include "app/services/host.h"

namespace zr {
namespace {

ExportOptions Read(const std::string& line) {
    static Host host("en");
    CLI::App command;
    ExportArguments arguments;
    arguments.AddTo(command);
    command.parse(line + " in.glb out.json");
    return arguments.Finish(host);
}

struct Case {
    const char* line;
    std::uint32_t exportFlags;  // the bits that differ from the default
    std::uint32_t nameFlags = 0;
    std::uint32_t animFlags = 0;
};

constexpr Case kCases[] = {
    {"--no-lights", 0x2},
    {"--no-cameras", 0x4},
    {"--drop-empty", 0x8},
    {"--system-camera", 0x10},
    {"--no-bones", 0x20},
    {"--skeleton-only", 0x40},
    {"--no-notes", 0x80},
    {"--root", 0x100},
    {"--geometry-split", 0x200},
    {"--group-split", 0x400},
    {"--no-static-pivot", 0x800},
    {"--static-pivot", 0x1000},
    {"--no-animation", 0x2000},
    {"--no-lines", 0x4000},
    {"--decompose-rest", 0x10000},
    {"--targets light-records", 0x40000},
    {"--targets light-keys", 0x80000},
    {"--targets camera-records", 0x100000},
    {"--targets camera-keys", 0x200000},
    {"--targets records,light-keys", 0x1C0000},
    {"--merge-keys", 0x400000},
    {"--flip", 0x800000},
    {"--no-empty-meshes", 0x1000000},
    {"--chosen-only", 0x2000000},
    {"--no-offset-controllers", 0x4000000},
    {"--assign-names", 0x10000000},
    {"--no-keys", 0x20000000},
    {"--names unique --names digits,wide", 0x10000000, 0xE},
    {"--names exact-case", 0x10000000, 0x1},
    {"--names unique", 0x10000000, 0x2},
    {"--names wide", 0x10000000, 0x4},
    {"--names digits", 0x10000000, 0x8},
    {"--names keep-characters", 0x10000000, 0x10},
    {"--resample", 0, 0, 0x4},
    {"--angle-axis", 0, 0, 0x8},
    {"--group-keys-only", 0, 0, 0x20},
    {"--at-least-one-key", 0, 0, 0x40},
    {"--rescale 2", 0, 0, 0x80},
    {"--length 2", 0, 0, 0x100},
    {"--reverse", 0, 0, 0x200},
};

TEST(ExportArguments, EveryBitOfTheToolsHasAnOption) {
    const ExportOptions plain = Read("");
    Case all{"", 0};
    for (const Case& expected : kCases) {
        const ExportOptions options = Read(expected.line);
        EXPECT_EQ(options.exportFlags ^ plain.exportFlags, expected.exportFlags) << expected.line;
        EXPECT_EQ(options.nameFlags ^ plain.nameFlags, expected.nameFlags) << expected.line;
        EXPECT_EQ(options.animFlags ^ plain.animFlags, expected.animFlags) << expected.line;
        all.exportFlags |= expected.exportFlags;
        all.nameFlags |= expected.nameFlags;
        all.animFlags |= expected.animFlags;
    }
    EXPECT_EQ(all.exportFlags, 0x37FD7FFEu);
    EXPECT_EQ(all.nameFlags, 0x1Fu);
    EXPECT_EQ(all.animFlags, 0x3ECu);
}

TEST(ExportArguments, FieldsAndOptionWordsAreRead) {
    const ExportOptions options =
        Read("--pivot-mode 2 --length 3 --max-name 40 --max-material-name 8 --rename a=b --scale 10 --up z");
    EXPECT_EQ(options.pivotMode, 2);
    EXPECT_EQ(options.rescale, 3);
    EXPECT_EQ(options.maxNameLength, 40);
    EXPECT_EQ(options.maxMaterialNameLength, 8);
    EXPECT_NE(options.rename, nullptr);
    EXPECT_NEAR(options.sceneMatrix.PointTransform(vl::Vector3<double>{0, 1, 0}).z, 10, 1e-9);

    const ExportOptions clip = Read("--from 1 --to 2.5 --speed 2 --start-at-zero --fps 24");
    EXPECT_EQ(clip.clip.from, 1);
    EXPECT_EQ(clip.clip.to, 2.5F);
    EXPECT_EQ(clip.clip.speed, 2);
    EXPECT_TRUE(clip.clip.startsAtZero);
    EXPECT_EQ(clip.clip.frameRate, 24);
    EXPECT_TRUE(std::isinf(clip.maxDeviation));
    EXPECT_EQ(Read("--fps 24 --max-deviation 0.1").maxDeviation, 0.1);
    EXPECT_THROW(Read("--from 2 --to 2"), UsageError);
    EXPECT_FALSE(Read("").clip.MovesKeys());

    const ExportOptions words = Read("--no-lights --option-words 2000000e,1f,3ec");
    EXPECT_EQ(words.exportFlags, 0x2000000Eu);
    EXPECT_EQ(words.nameFlags, 0x1Fu);
    EXPECT_EQ(words.animFlags, 0x3ECu);
}

}  // namespace
}  // namespace zr
