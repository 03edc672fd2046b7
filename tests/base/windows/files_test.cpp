// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "base/error.h"
#include "base/fatal_signals.h"
#include "base/file_transaction.h"
#include "base/filesystem.h"
#include "base/windows/handle.h"
#include "tests/base/temporary_folder.h"

namespace zr {
namespace {

using test::TemporaryFolder;
std::error_code none;

TEST(Files, HaveNamesOfAnyLengthInAnyScript) {
    const TemporaryFolder folder;
    const fs::path outer = folder / std::string(200, 'o');
    const fs::path inner = outer / std::string(200, 'i');
    const fs::path file = inner / u8"\u65E5\u672C\U0001F600.glb";
    for (const char* content : {"first", "second"}) {
        FileTransaction files;
        files.Add(file, BytesOf(content));
        files.Add(inner / "other", BytesOf(content));
        files.Commit();
        EXPECT_EQ(ReadFile(file).size, std::string_view(content).size());
        EXPECT_EQ(fs::file_size(file, none), std::string_view(content).size());
    }
    EXPECT_TRUE(fs::is_regular_file(file, none));
    EXPECT_TRUE(fs::is_directory(inner, none));
    EXPECT_FALSE(fs::exists(inner / "gone", none));
    EXPECT_TRUE(fs::equivalent(file, inner / ".." / inner.filename() / file.filename(), none));
    EXPECT_FALSE(fs::equivalent(file, inner / "other", none));
    EXPECT_EQ(fs::NamesIn(inner, none).size(), 2U);
    EXPECT_EQ(fs::Expanded(inner / "*.glb"), std::vector{file});
    EXPECT_EQ(fs::weakly_canonical(inner / "new" / ".." / "x", none), fs::canonical(inner, none) / "x");
    for (const fs::path& each : {file, inner / "other", inner, outer})
        EXPECT_TRUE(fs::remove(each, none)) << each;
}

TEST(Files, AreRefusedWhereTheyCannotExist) {
    const TemporaryFolder folder;
    for (const fs::path& target : {fs::path("Q:\\no\\such\\drive"), fs::path("NUL"), folder / "."})
        EXPECT_THROW(FileTransaction().Add(target, BytesOf("x")), Error) << target;
    EXPECT_THROW(ReadFile("Q:\\none"), Error);
    EXPECT_TRUE(folder.Files().empty());
}

// Names that differ only in case are the same file.
TEST(Files, TwoPathsToOneFileAreRecognised) {
    const TemporaryFolder folder;
    folder.Write("Name", "old");
    FileTransaction files;
    files.Add(folder / "Name", BytesOf("new"));
    for (const char* same : {"name", "d/../NAME", "./Name"}) EXPECT_TRUE(files.Has(folder / same)) << same;
}

// These tests start the program anew, which then finds the folder by its name.
struct KnownFolder {
    KnownFolder() { std::filesystem::create_directory(path); }
    ~KnownFolder() { std::filesystem::remove_all(path); }
    fs::path path = std::filesystem::temp_directory_path() / "zr-ended-test";
};

TEST(Files, UnfinishedOnesVanishWithTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const KnownFolder folder;
    const auto write = [&] {
        FileTransaction files;
        files.Create(folder.path / "x").Write(std::string(1 << 20, 'x'));
        TerminateProcess(GetCurrentProcess(), 3);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(3), "");
    EXPECT_TRUE(fs::NamesIn(folder.path, none).empty());
}

TEST(Files, HeldStepsFinishBeforeTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const KnownFolder folder;
    const auto commit = [&] {
        std::thread end;
        {
            const HoldFatalSignals hold;
            end = std::thread(EndBySignal, 2);
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            std::filesystem::create_directory(folder.path / "done");
        }
        end.join();
    };
    EXPECT_EXIT(commit(), testing::ExitedWithCode(130), "");
    EXPECT_EQ(fs::NamesIn(folder.path, none), std::vector<fs::path>{"done"});
}

}  // namespace
}  // namespace zr
