// SPDX-License-Identifier: MIT
#include "base/file_transaction.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "base/error.h"
#include "base/fatal_signals.h"
#include "tests/base/temporary_folder.h"

namespace zr {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using test::TemporaryFolder;

// More than a process keeps without a name.
constexpr int kManyFiles = 132;

// How a process ended that did this: a signal's number, or 0.
template <typename Do>
int SignalThatEnds(Do what) {
    const pid_t child = fork();
    if (child == 0) {
        what();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

TEST(FileTransaction, FilesAppearTogetherOrNotAtAll) {
    const TemporaryFolder folder;
    folder.Write("old", "old");
    {
        FileTransaction files;
        files.Add(folder / "old", BytesOf("new"));
        files.AddNew(folder / "a/b/new", BytesOf("new"));
        EXPECT_EQ(folder.Files(), (Names{"old"}));
        EXPECT_FALSE(fs::exists(folder / "a"));
    }
    EXPECT_EQ(folder.Read("old"), "old");
    FileTransaction files;
    OutputFile& file = files.Create(folder / "old");
    std::string content(1000000, 'x');
    for (std::size_t i = 0; i < content.size(); i += 1000)
        file.Write(std::string_view(content).substr(i, 1000));
    file.Write(content);
    file.Overwrite(999999, BytesOf("yy"));
    file.Write("z");
    files.AddNew(folder / "a/b/new", BytesOf("new"));
    files.RemoveAfterwards(folder / "none");
    files.Commit();
    EXPECT_EQ(folder.Files(), (Names{"a/b/new", "old"}));
    content += content + "z";
    content[999999] = content[1000000] = 'y';
    EXPECT_EQ(folder.Read("old"), content);
}

TEST(FileTransaction, AFailedCommitLeavesEverythingAsItWas) {
    const TemporaryFolder folder;
    folder.Write("first", "old");
    const auto attempt = [&](const char* taken) {
        FileTransaction files;
        files.Add(folder / "first", BytesOf("new"));
        files.Add(folder / "second", BytesOf("new"));
        files.AddNew(folder / "sub/third", BytesOf("new"));
        files.Add(folder / "last", BytesOf("new"));
        // Somebody else is faster.
        fs::create_directories(folder / taken / "inside");
        EXPECT_THROW(files.Commit(), Error);
        EXPECT_EQ(folder.Read("first"), "old");
        EXPECT_EQ(folder.Files(), (Names{"first"}));
        fs::remove_all(folder / taken);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder / "."), fs::directory_iterator()),
                  1 + fs::exists(folder / "sub"));
        fs::remove_all(folder / "sub");
    };
    for (const char* taken : {"second", "sub/third", "last"}) attempt(taken);
}

TEST(FileTransaction, NewNamesAreNotTakenFromOthers) {
    const TemporaryFolder folder;
    FileTransaction files;
    files.AddNew(folder / "b", BytesOf("mine"));
    files.Add(folder / "a", BytesOf("mine"));
    folder.Write("b", "theirs");
    EXPECT_THROW(files.Commit(), Error);
    EXPECT_EQ(folder.Files(), (Names{"b"}));
    EXPECT_EQ(folder.Read("b"), "theirs");
}

TEST(FileTransaction, TwoWaysToOneFileAreSeen) {
    const TemporaryFolder folder;
    folder.Write("d/x", "old");
    fs::create_symlink("x", folder / "d/link");
    fs::create_directory_symlink("d", folder / "e");
    FileTransaction files;
    files.Add(folder / "d/x", BytesOf("new"));
    for (const char* same : {"d/x", "d/../d/./x", "d/link", "e/x"}) {
        EXPECT_TRUE(files.Has(folder / same)) << same;
        EXPECT_THROW(files.Create(folder / same), Error) << same;
    }
    EXPECT_FALSE(files.Has(folder / "d/y"));
}

TEST(FileTransaction, PermissionsAndLinksStay) {
    const TemporaryFolder folder;
    folder.Write("real/file", "old");
    chmod((folder / "real/file").c_str(), 0640);
    fs::create_symlink("real/file", folder / "link");
    fs::create_symlink("real/none", folder / "dangling");
    FileTransaction files;
    files.Add(folder / "link", BytesOf("new"));
    files.Add(folder / "dangling", BytesOf("new"));
    files.Commit();
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(folder.Read("real/file"), "new");
    EXPECT_EQ(folder.Read("real/none"), "new");
    EXPECT_EQ(fs::status(folder / "real/file").permissions(), fs::perms{0640});
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(fs::status(folder / "real/none").permissions(), fs::perms{0666 & ~mask});

    fs::create_symlink("round", folder / "round");
    for (const char* refused : {"round", "real", "real/file/below"})
        EXPECT_THROW(FileTransaction().Add(folder / refused, BytesOf("x")), Error) << refused;
    EXPECT_THROW(FileTransaction().Add("/dev/null", BytesOf("x")), Error);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(FileTransaction, ManyFilesAndLongNames) {
    const TemporaryFolder folder;
    const std::string longest(255, 'n');
    FileTransaction files;
    files.Add(folder / longest, BytesOf("x"));
    for (int i = 0; i < kManyFiles; ++i) files.AddNew(folder / std::to_string(i), BytesOf("x"));
    files.Add(folder / "last", BytesOf("x"));
    files.Commit();
    EXPECT_EQ(folder.Files().size(), kManyFiles + 2U);
    EXPECT_EQ(folder.Read(longest), "x");
}

TEST(FileTransaction, ASignalLeavesNothing) {
    const TemporaryFolder folder;
    for (const auto& [number, count] :
         {std::pair(SIGTERM, kManyFiles), std::pair(SIGHUP, 2), std::pair(SIGINT, kManyFiles)}) {
        const int ended = SignalThatEnds([&] {
            FileTransaction files;
            for (int i = 0; i < count; ++i) files.Create(folder / std::to_string(i)).Write("x");
            raise(number);
        });
        EXPECT_EQ(ended, number);
        EXPECT_TRUE(fs::is_empty(folder / ".")) << number;
    }
    // What must not be torn apart is done first.
    const int ended = SignalThatEnds([&] {
        const HoldFatalSignals hold;
        raise(SIGTERM);
        folder.Write("done", "");
    });
    EXPECT_EQ(ended, SIGTERM);
    EXPECT_EQ(folder.Files(), (Names{"done"}));
}

// However long the work would go on, and only as long as it can be stopped.
TEST(FileTransaction, AWishToStopEndsTheWork) {
    const TemporaryFolder folder;
    const auto stop = [&](bool commits) {
        BeginWork();
        FileTransaction files;
        files.Create(folder / "a").Write("x");
        if (commits) files.Commit();
        EndSoon(130, "stopped\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(commits ? 200 : 10'000));
        _exit(0);
    };
    EXPECT_EXIT(stop(false), testing::ExitedWithCode(130), "stopped");
    EXPECT_TRUE(fs::is_empty(folder / "."));
    EXPECT_EXIT(stop(true), testing::ExitedWithCode(0), "");
    EXPECT_EQ(folder.Files(), (Names{"a"}));
}

TEST(FileTransaction, AFileBeyondTheLimitFailsAsOnAFullDisk) {
    const TemporaryFolder folder;
    const int ended = SignalThatEnds([&] {
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        FileTransaction files;
        EXPECT_THROW(files.Add(folder / "x", BytesOf(std::string(5000, 'x'))), Error);
        if (testing::Test::HasFailure()) raise(SIGABRT);
    });
    EXPECT_EQ(ended, 0);
    EXPECT_TRUE(fs::is_empty(folder / "."));
}

}  // namespace
}  // namespace zr
