// SPDX-License-Identifier: MIT
// Wherever the command line takes a file, it may be given something else: an endless device, a folder, a
// socket, a dangling or cyclic link, a write-protected file. One line says so, and nothing is left behind.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/text.h"
#include "tests/app/commands/command_kit.h"

namespace zr::test {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// FILE stands for the special file.
constexpr const char* kReaders[] = {
    "info FILE.glb",
    "compare a.glb FILE.glb",
    "clean FILE.glb out.glb",
    "merge a.glb out.glb --from FILE.glb",
    "merge a.glb out.glb --from a.glb --match FILE.json",
    "export a.glb out.glb --settings FILE.ini",
    "text A out.svg --font-file FILE.ttf",
    "text --file FILE.txt out.svg",
};
constexpr const char* kWriters[] = {
    "export a.glb FILE.glb",
    "export a.glb FILE.json",
    "clean a.glb FILE.gltf",
    "split a.glb FILE.glb --animation walk --each",
    "text A FILE.svg",
    "clean a.glb out.glb --report FILE.html",
    "export a.glb out.glb --names unique --rename-map FILE.json",
};

std::string With(std::string line, const std::string& name) {
    return line.replace(line.find("FILE"), 4, name);
}

class SpecialFiles : public testing::Test {
protected:
    SpecialFiles() { m_folder.WriteAnimated("a.glb"); }

    // A name of each kind with each ending.
    void Make() {
        for (const char* ending : {".glb", ".gltf", ".json", ".ini", ".ttf", ".txt", ".svg", ".html"}) {
            const auto at = [&](const char* name) { return m_folder / Join(name, ending); };
            fs::create_directory(at("folder"));
            fs::create_symlink(Join("loop", ending), at("loop"));
            fs::create_symlink(Join("nowhere", ending), at("dangling"));
            fs::create_symlink("/dev/zero", at("endless"));
            fs::create_symlink(m_folder / "a.glb" / "inside", at("below"));
            mkfifo(at("pipe").c_str(), 0600);
            m_folder.Write(Join("protected", ending), "kept");
            fs::permissions(at("protected"), fs::perms::owner_read);
            sockaddr_un address{AF_UNIX, {}};
            std::strncpy(address.sun_path, at("socket").c_str(), sizeof address.sun_path - 1);
            const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
            ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
            close(socket);
        }
    }

    void ExpectRefused(const char* line, const std::string& name) const {
        SCOPED_TRACE(With(line, name));
        const Names before = Files();
        const Outcome run = m_folder.Zr(With(line, name) + " --max-memory 1");
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(IsOneLine(run.err) && run.err.starts_with("zr: ")) << run.err;
        EXPECT_NE(run.err.find(name), std::string::npos) << run.err;
        EXPECT_EQ(Files(), before);
    }

    // Entries of every kind; links are not followed.
    Names Files() const {
        Names names;
        for (const auto& entry : fs::directory_iterator(m_folder / ""))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    CommandFolder m_folder;
};

TEST_F(SpecialFiles, AreNotRead) {
    Make();
    for (const char* line : kReaders)
        for (const char* name : {"folder", "loop", "dangling", "endless", "below", "socket"})
            ExpectRefused(line, name);
}

TEST_F(SpecialFiles, AreNotReplaced) {
    Make();
    for (const char* line : kWriters)
        for (const char* name : {"folder", "loop", "endless", "below", "pipe", "socket", "protected"})
            ExpectRefused(line, name);
    EXPECT_EQ(m_folder.Read("protected.glb"), "kept");
}

TEST_F(SpecialFiles, NamesMayBeAsLongAsTheSystemAllows) {
    for (const char* line : kReaders) ExpectRefused(line, std::string(256, 'x'));
    for (const char* line : kWriters) ExpectRefused(line, std::string(256, 'x'));
    const std::string longest(251, 'x');
    EXPECT_EQ(m_folder.Zr("clean a.glb " + longest + ".glb").status, 0);
    EXPECT_EQ(m_folder.Zr("info " + longest + ".glb").status, 0);
}

TEST_F(SpecialFiles, EmptyNamesAreAUsageError) {
    const auto expect = [&](std::string line) {
        SCOPED_TRACE(line);
        line = line.replace(line.find("FILE"), line.find(' ', line.find("FILE")) - line.find("FILE"), "''");
        const Outcome run = m_folder.Zr(line);
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(IsOneLine(run.err)) << run.err;
        EXPECT_EQ(Files(), Names{"a.glb"});
    };
    for (const char* line : kReaders) expect(line);
    for (const char* line : kWriters) expect(line);
}

// A shell's <(...) is such a name.
TEST_F(SpecialFiles, PipesAreReadToTheirEnd) {
    const std::string plain = m_folder.Zr("info a.glb").out;
    EXPECT_EQ(m_folder.Shell("mkfifo pipe; cat a.glb >pipe & zr info pipe").out, plain);
    EXPECT_EQ(m_folder.Shell("cat a.glb | zr info /dev/stdin").out, plain);
}

}  // namespace
}  // namespace zr::test
