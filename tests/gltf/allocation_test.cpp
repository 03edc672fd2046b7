// SPDX-License-Identifier: MIT
// Every allocation of a small run fails once: the run must end in std::bad_alloc and leave the files
// unchanged.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <optional>
#include <utility>

#include "gltf/collect.h"
#include "tests/gltf/sample.h"

namespace {

// Allocations until the one that fails; 0: none does.
long g_untilFailure = 0;

}  // namespace

void* operator new(std::size_t size) {
    if (g_untilFailure > 0 && --g_untilFailure == 0) throw std::bad_alloc();
    if (void* const place = std::malloc(size == 0 ? 1 : size)) return place;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (g_untilFailure > 0 && --g_untilFailure == 0) return nullptr;
    return std::malloc(size == 0 ? 1 : size);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"  // the ones above
void operator delete(void* place) noexcept {
    std::free(place);
}

void operator delete(void* place, std::size_t) noexcept {
    std::free(place);
}
#pragma GCC diagnostic pop

namespace zr::gltf {
namespace {

// Repeats the run until no allocation is left to fail; returns how many failed.
// A run may succeed without the memory it was refused. `finish` is told whether it did.
template <typename Run, typename Finish>
int FailEach(Run run, Finish finish) {
    for (int failures = 0;; ++failures) {
        g_untilFailure = failures + 1;
        bool isDone = true;
        try {
            run();
        } catch (const std::bad_alloc&) {
            isDone = false;
        }
        const bool allFailed = std::exchange(g_untilFailure, 0) > 0;
        finish(isDone);
        if (allFailed) return failures;
    }
}

TEST(Allocation, EveryFailureWhileReadingIsReported) {
    const std::string content = test::Glb(test::SampleJson(), test::SampleBin());
    const auto read = [&] {
        Document document = Document::FromBytes(BytesOf(content), "sample.glb");
        CollectGarbage(document, kDataKinds, false);
    };
    EXPECT_GT(FailEach(read, [](bool) {}), 100);
}

TEST(Allocation, AFailedSaveChangesNothing) {
    const test::TemporaryFolder folder;
    folder.Write("old.gltf", "old");
    std::optional<Document> document(test::Sample());
    const auto finish = [&](bool isDone) {
        const bool isOld = folder.Read("old.gltf") == "old";
        EXPECT_NE(isOld, isDone);
        EXPECT_EQ(folder.Files().size(), isOld ? 1U : 2U);
        std::filesystem::remove(folder / "old.bin");
        folder.Write("old.gltf", "old");
        document.emplace(test::Sample());
    };
    EXPECT_GT(FailEach([&] { document->Save(folder / "old.gltf"); }, finish), 20);
}

}  // namespace
}  // namespace zr::gltf
