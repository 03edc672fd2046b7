// SPDX-License-Identifier: MIT
// Small valid scenes with a few mutations, through every command. Each run exits with 0, or with 1 and
// exactly one line, within five seconds and a gigabyte; it leaks nothing, and a failed run changes no file.
// ZR_MUTATIONS sets the number of runs (default: a few), ZR_MUTATION_SEED the seed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "app/commands/program.h"
#include "base/text.h"
#include "tests/app/commands/command_kit.h"
#include "tests/app/commands/forked_program.h"
#include "tests/app/commands/mutations.h"
#include "tests/app/operations/wild_plan.h"

extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace zr::test {
namespace {

using Words = std::vector<std::string>;

constexpr int kMemoryLost = 51;
constexpr long kGreatestPeak = 1 << 20;  // KiB
constexpr int kMostFaults = 20;          // stop after so many
constexpr const char* kOld = "old";      // content of the file that a result replaces

// IN stands for the scene. A comparison also ends with 1 when it finds a difference.
const Words kRuns[] = {
    {"info", "IN"},
    {"tree", "IN"},
    {"inspect", "IN"},
    {"inspect", "--json", "IN"},
    {"animations", "IN"},
    {"compare", "IN", "IN"},
    {"export", "IN", "out.glb"},
    {"export", "IN", "out.gltf", "--merge-keys", "--resample", "--geometry-split", "--names", "unique"},
    {"export", "IN", "out.json", "--angle-axis", "--animation", "0"},
    {"export", "IN", "out.glb", "--option-words", "ffffffff,7fffffff,ffffffff", "--force"},
    {"export", "IN", "out.glb", "--targets", "records,keys", "--up", "z", "--flip", "--reverse",
     "--tolerance", "1mm"},
    {"clean", "IN", "out.glb"},
    {"clean", "IN", "out.gltf", "--all", "--blended", "--force"},
    {"clean", "--dry-run", "--explain", "IN"},
    {"clean", "IN", "out.glb", "--decode", "--keep-data", "--skip", "materials"},
    {"merge", "IN", "out.glb", "--animations", "0,1"},
    {"merge", "IN", "out.glb", "--animations", "0,1", "--sequence", "--remove-sources", "--force"},
    {"merge", "whole.glb", "out.glb", "--from", "IN"},
    {"split", "IN", "out.glb", "--animation", "0", "--each"},
    {"split", "IN", "out.glb", "--animation", "0", "--at", "0.5"},
    {"remove-animations", "IN", "out.glb", "--unused", "--force"},
    {"reduce", "IN", "out.glb", "--tolerance", "1cm,1deg,0.1"},
};

struct Source {
    const char* name;
    std::string content;
};

std::string Saved(gltf::Document document) {
    const TemporaryFolder folder;
    document.Save(folder / "scene.glb");
    return folder.Read("scene.glb");
}

std::vector<Source> Sources(const CommandFolder& folder) {
    folder.WriteAnimated("whole.glb");
    std::vector<Source> sources{
        {"in.glb", folder.Read("whole.glb")},
        {"in.glb", gltf::test::Glb(gltf::test::SampleJson(), gltf::test::SampleBin())},
        {"in.gltf", gltf::test::TextScene("sample.bin")},
    };
    for (unsigned seed = 0; seed < 4; ++seed) {
        Random random(seed);
        const ScenePlan plan = MakeLivelyPlan(random);
        sources.push_back({"in.glb", Saved(Write(plan, random))});
    }
    folder.Write("sample.bin", gltf::test::SampleBin());
    folder.Write("my images/a.png", "\x89PNG");
    return sources;
}

long Setting(const char* name, long otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr ? std::atol(value) : otherwise;
}

bool IsAmong(const std::string& name, const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string Line(const Words& words) {
    std::string line;
    for (const std::string& word : words) line += " " + word;
    return line;
}

// Why a run is faulty; empty for a correct one.
std::string Fault(const Words& words, const ForkedRun& run, const CommandFolder& folder,
                  const std::vector<std::string>& before) {
    if (run.status == kMemoryLost) return "memory was lost";
    if (run.peak >= kGreatestPeak) return "too much memory was taken";
    if (run.status != 0 && run.status != 1) return "it did not end well";
    const bool differs = words[0] == "compare" && run.status == 1 && !run.out.empty();
    const bool isDone = run.status == 0 || differs;
    if (!isDone && !(IsOneLine(run.err) && run.err.starts_with("zr: "))) return "the failure is not one line";
    if (!isDone && folder.Read("out.glb") != kOld) return "a run that failed replaced a file";
    for (const std::string& name : folder.Files())
        if (!IsAmong(name, before) && !(isDone && name.starts_with("out")) && !name.starts_with("in."))
            return "it left the file " + name;
    return "";
}

TEST(Mutations, GiveAResultOrOneLine) {
    const CommandFolder folder;
    const std::vector<Source> sources = Sources(folder);
    // Loads what is loaded only once, before the forks.
    const char* const version[] = {"zr", "--version"};
    ASSERT_EQ(RunProgram(2, version), 0);
    folder.Write("out.glb", kOld);
    const std::vector<std::string> before = folder.Files();

    const long count = Setting("ZR_MUTATIONS", 200), seed = Setting("ZR_MUTATION_SEED", 1);
    long done = 0;
    int faults = 0;
    for (long i = 0; i < count; ++i) {
        Random random(static_cast<unsigned>(seed * 1'000'000 + i));
        const Source& source = sources[random.Pick(sources.size())];
        const std::string scene = Mutated(source.content, random);
        folder.Write(source.name, scene);
        Words words = kRuns[random.Pick(std::size(kRuns))];
        for (std::string& word : words)
            if (word == "IN") word = source.name;
        const ForkedRun run = RunForked(folder / "", words, [](const auto& program) {
            const int status = program();
            const bool isLost =
                __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
            return isLost ? kMemoryLost : status;
        });
        const std::string fault = Fault(words, run, folder, before);
        done += run.status == 0 ? 1 : 0;
        std::filesystem::remove(folder / source.name);
        for (const std::string& name : folder.Files())
            if (!IsAmong(name, before)) std::filesystem::remove(folder / name);
        folder.Write("out.glb", kOld);
        if (fault.empty()) continue;
        const std::string kept = testing::TempDir() + Join("mutation-", seed, "-", i, "-", source.name);
        std::ofstream(kept, std::ios::binary) << scene;
        ADD_FAILURE() << "zr" << Line(words) << ": " << fault << "; status " << run.status << ", peak "
                      << run.peak << " KiB; the scene is kept as " << kept << "\n"
                      << run.err;
        if (++faults == kMostFaults) break;
    }
    std::printf("%ld scenes, of which %ld gave a result\n", count, done);
}

}  // namespace
}  // namespace zr::test
