// SPDX-License-Identifier: MIT
#include "base/file_transaction.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "base/error.h"
#include "tests/base/temporary_folder.h"

namespace zr {
namespace {

using Names = std::vector<std::string>;
using test::TemporaryFolder;

// More files than a process keeps unnamed.
constexpr int kManyFiles = 132;

TEST(FileTransaction, FilesAppearTogetherOrNotAtAll) {
    const TemporaryFolder folder;
    folder.Write("old", "old");
    {
        FileTransaction files;
        files.Add(folder / "old", BytesOf("new"));
        files.AddNew(folder / "a/b/new", BytesOf("new"));
        EXPECT_EQ(folder.NamedFiles(), (Names{"old"}));
        EXPECT_FALSE(std::filesystem::exists(folder / "a"));
    }
    EXPECT_EQ(folder.Files(), (Names{"old"}));
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
        // Something else takes the name first.
        std::filesystem::create_directories(folder / taken / "inside");
        EXPECT_THROW(files.Commit(), Error);
        EXPECT_EQ(folder.Read("first"), "old");
        EXPECT_EQ(folder.Files(), (Names{"first"}));
        std::filesystem::remove_all(folder / taken);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "."),
                                std::filesystem::directory_iterator()),
                  1 + std::filesystem::exists(folder / "sub"));
        std::filesystem::remove_all(folder / "sub");
    };
    for (const char* taken : {"second", "sub/third", "last"}) attempt(taken);
}

TEST(FileTransaction, OneFileGoesToAStreamAndOthersToTheirFolders) {
    const TemporaryFolder folder;
    const std::string content(1000000, 'x');
    const auto send = [&](const char* other) {
        FileTransaction files;
        files.Add(folder / other, BytesOf("other"));
        files.Create(folder / "nowhere/out").Write(content);
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::tmpfile(), std::fclose);
        files.CommitTo(stream.get(), folder / "nowhere/out");
        std::string sent(content.size() + 1, ' ');
        std::rewind(stream.get());
        sent.resize(std::fread(sent.data(), 1, sent.size(), stream.get()));
        return sent;
    };
    EXPECT_EQ(send("other"), content);
    EXPECT_EQ(folder.Files(), (Names{"other"}));
    EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
    EXPECT_THROW(send("nowhere/beside"), Error);
    EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
}

TEST(FileTransaction, ANewFileReplacesNoOther) {
    const TemporaryFolder folder;
    FileTransaction files;
    files.AddNew(folder / "b", BytesOf("mine"));
    files.Add(folder / "a", BytesOf("mine"));
    folder.Write("b", "theirs");
    EXPECT_THROW(files.Commit(), Error);
    EXPECT_EQ(folder.Files(), (Names{"b"}));
    EXPECT_EQ(folder.Read("b"), "theirs");
}

TEST(FileTransaction, WriteProtectedFilesStay) {
    constexpr auto kWriting = std::filesystem::perms::owner_write | std::filesystem::perms::group_write |
                              std::filesystem::perms::others_write;
    const TemporaryFolder folder;
    for (const char* name : {"result", "old data"}) {
        folder.Write(name, "kept");
        std::filesystem::permissions(folder / name, kWriting, std::filesystem::perm_options::remove);
    }
    FileTransaction files;
    EXPECT_THROW(files.Create(folder / "result"), Error);
    files.Add(folder / "other", BytesOf("new"));
    files.RemoveAfterwards(folder / "old data");
    files.Commit();
    EXPECT_EQ(folder.Files(), (Names{"old data", "other", "result"}));
    EXPECT_EQ(folder.Read("result"), "kept");
    for (const char* name : {"result", "old data"})
        std::filesystem::permissions(folder / name, kWriting, std::filesystem::perm_options::add);
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

}  // namespace
}  // namespace zr
