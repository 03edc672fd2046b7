// SPDX-License-Identifier: MIT
// Small runs of every command in which each allocation fails in turn. In every case the program exits with 0,
// or with 1 and one line, leaks no memory, and the files are either unchanged or those of a run without
// failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>

#include "app/commands/program.h"
#include "base/text.h"
#include "tests/app/commands/command_kit.h"
#include "tests/app/commands/forked_program.h"
#include "tests/module/failing_memory.h"

namespace zr::test {
namespace {

using Words = std::vector<std::string>;
using Contents = std::map<std::string, std::string>;  // content by file name

// Exit statuses that the program itself never uses.
constexpr int kNoneFailed = 50;
constexpr int kMemoryLost = 51;

const Words kRuns[] = {
    {"info", "a.glb"},
    {"tree", "--json", "sample.glb"},
    {"inspect", "--json", "sample.glb"},
    {"compare", "a.glb", "sample.glb"},
    {"animations", "--json", "a.glb"},
    {"export", "a.glb", "out.glb", "--merge-keys", "--names", "unique", "--rename-map", "map.json"},
    {"export", "sample.glb", "out.gltf", "--resample", "--geometry-split", "--targets", "keys"},
    {"export", "a.glb", "out.json", "--animation", "walk", "--angle-axis"},
    {"export", "a.glb", "out.glb", "--json"},
    // With several scenes, all memory is freed before the end.
    {"clean", "-q", "--all", "--explain", "--out-dir", "cleaned", "a.glb", "sample.glb"},
    {"merge", "a.glb", "out.glb", "--animations", "0,1", "--sequence"},
    {"merge", "a.glb", "out.glb", "--from", "b.glb"},
    {"split", "a.glb", "out.glb", "--animation", "walk", "--at", "0.5"},
    {"split", "a.glb", "--out-dir", "clips"},
    {"remove-animations", "a.glb", "out.gltf", "--unused"},
    {"reduce", "a.glb", "out.glb", "--tolerance", "1cm,0.5deg"},
    {"text", "A8", "out.svg"},
    {"text", "A8", "out.stl", "--depth", "2", "--cap-height", "10"},
    {"text", "A8", "out.dxf", "--style", "stroke", "--metrics"},
    {"fonts", "dejavu"},
    {"describe", "cleaner"},
    {"help", "export"},
};

// Parsing the command line makes about this many allocations, the same for all commands.
constexpr long kSetUp = 5000;

// 1 on request, else a larger stride.
long Stride(long usual) {
    if (std::getenv("ZR_EVERY_ALLOCATION") != nullptr) return 1;
#ifdef __SANITIZE_ADDRESS__
    return 20 * usual;  // forking a process with shadow memory is slow
#else
    return usual;
#endif
}

class FailingRuns : public CommandFolder {
public:
    FailingRuns() {
        WriteAnimated("a.glb");
        WriteAnimated("b.glb");
        Write("sample.glb", gltf::test::Glb(gltf::test::SampleJson(), gltf::test::SampleBin()));
        for (const char* old :
             {"out.glb", "out.gltf", "out.json", "out.svg", "out.stl", "out.dxf", "map.json"})
            Write(old, "old");
    }

    Contents Content() const {
        Contents content;
        for (const std::string& name : Files()) content[name] = Read(name);
        return content;
    }

    void Restore(const Contents& before) const {
        for (const std::string& name : Files())
            if (!before.contains(name)) std::filesystem::remove(*this / name);
        for (const char* made : {"cleaned", "clips"}) std::filesystem::remove_all(*this / made);
        for (const auto& [name, content] : before)
            if (Read(name) != content) Write(name, content);
    }
};

std::string Joined(const Words& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

// Runs the words with failing allocations and checks what each run leaves.
class Steps {
public:
    Steps(const FailingRuns& folder, const Words& words) : m_folder(folder), m_words(words) {
        // A first run creates what is created once and kept.
        const auto here = std::filesystem::current_path();
        std::filesystem::current_path(folder / "");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        std::vector<const char*> arguments{"zr"};
        for (const std::string& word : words) arguments.push_back(word.c_str());
        RunProgram(static_cast<int>(arguments.size()), arguments.data());
        testing::internal::GetCapturedStderr();
        testing::internal::GetCapturedStdout();
        std::filesystem::current_path(here);
    }

    void Run(long first, long stride, const Contents& before) {
        m_folder.Restore(before);
        const ForkedRun whole = RunForked(m_folder / "", m_words);
        const Contents after = m_folder.Content();
        const auto fails = [&](long n) { return Fails(n, whole, before, after); };
        long beyond = first;
        while (fails(beyond)) beyond += stride;
        ASSERT_GT(beyond, first) << "the command line takes fewer allocations than before";
        // The last allocations come after the files have been renamed, when the run can no longer be undone.
        constexpr long kTelling = 12;
        long last = beyond - stride;
        while (beyond - last > 1) {
            const long middle = (last + beyond) / 2;
            (fails(middle) ? last : beyond) = middle;
        }
        for (long n = last; n > last - std::min(kTelling, stride); --n) fails(n);
    }

private:
    // Lets the n-th allocation fail and checks the result; false when the run makes fewer allocations.
    bool Fails(long n, const ForkedRun& whole, const Contents& before, const Contents& after) const {
        SCOPED_TRACE(Join(Joined(m_words), ", allocation ", n));
        m_folder.Restore(before);
        const ForkedRun run = RunForked(m_folder / "", m_words, [n](const auto& program) {
            const long live = failing_memory::LiveBlocks();
            failing_memory::FailAt(n);
            const int status = program();
            if (!failing_memory::Stop()) return kNoneFailed;
            return failing_memory::LiveBlocks() == live ? status : kMemoryLost;
        });
        if (run.status == kNoneFailed) return false;
        const Contents left = m_folder.Content();
        if (run.status == whole.status && run.err == whole.err) {
            EXPECT_EQ(run.out, whole.out);
            EXPECT_EQ(left, after);
            return true;
        }
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_TRUE(IsOneLine(run.err) && run.err.starts_with("zr: ")) << run.err;
        EXPECT_NE(run.err.find("memory"), std::string::npos) << run.err;
        const bool saysDone = run.err.find("was done") != std::string::npos;
        if (IsSingle())
            EXPECT_EQ(left, saysDone ? after : before) << run.err;
        else
            EXPECT_TRUE(IsBetween(before, left, after)) << run.err;
        return true;
    }

    bool IsSingle() const { return std::find(m_words.begin(), m_words.end(), "--out-dir") == m_words.end(); }

    // With several results, some of them are there, each complete.
    static bool IsBetween(const Contents& before, const Contents& left, const Contents& after) {
        return std::includes(left.begin(), left.end(), before.begin(), before.end()) &&
               std::includes(after.begin(), after.end(), left.begin(), left.end());
    }

    const FailingRuns& m_folder;
    const Words& m_words;
};

TEST(OutOfMemory, BeforeTheCommandBegins) {
    const FailingRuns folder;
    const Contents before = folder.Content();
    Steps(folder, kRuns[0]).Run(1, Stride(7), before);
}

TEST(OutOfMemory, ChangesNothingAndSaysSo) {
    const FailingRuns folder;
    const Contents before = folder.Content();
    long phase = 0;
    for (const Words& words : kRuns) Steps(folder, words).Run(kSetUp + phase++ % 5, Stride(5), before);
}

}  // namespace
}  // namespace zr::test
