// SPDX-License-Identifier: MIT
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
#include "base/file_transaction.h"
#include "tests/base/temporary_folder.h"

namespace zr {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using test::TemporaryFolder;

// More files than a process keeps unnamed.
constexpr int kNamedFiles = 132;

// The signal that ends a child process running `what`, or 0.
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

TEST(FileTransaction, TwoPathsToOneFileAreRecognised) {
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

TEST(FileTransaction, ASignalLeavesNothing) {
    const TemporaryFolder folder;
    for (const auto& [number, count] :
         {std::pair(SIGTERM, kNamedFiles), std::pair(SIGHUP, 2), std::pair(SIGINT, kNamedFiles)}) {
        const int ended = SignalThatEnds([&, number = number, count = count] {
            FileTransaction files;
            for (int i = 0; i < count; ++i) files.Create(folder / std::to_string(i)).Write("x");
            raise(number);
        });
        EXPECT_EQ(ended, number);
        EXPECT_TRUE(fs::is_empty(folder / ".")) << number;
    }
    // Steps that must not be separated finish first.
    const int ended = SignalThatEnds([&] {
        const HoldFatalSignals hold;
        raise(SIGTERM);
        folder.Write("done", "");
    });
    EXPECT_EQ(ended, SIGTERM);
    EXPECT_EQ(folder.Files(), (Names{"done"}));
}

// However long the work would take, but not once it is committed.
TEST(FileTransaction, ARequestToStopEndsTheWork) {
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

// Their size is not known before they are read.
TEST(File, DevicesAreReadUpToALimit) {
    EXPECT_GT(ReadFile("/proc/self/maps").size, 7U);
    EXPECT_THROW(ReadFile("/proc/self/maps", 7), Error);
    EXPECT_THROW(ReadFile("/dev/zero", 1000), Error);
    EXPECT_THROW(ReadFile("/dev/zero", 1 << 20), Error);
    EXPECT_EQ(ReadFile("/dev/null").size, 0U);
}

}  // namespace
}  // namespace zr
