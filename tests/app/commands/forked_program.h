// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zr::test {

// The outcome of a run in a fork of this process.
struct ForkedRun {
    int status = 0;  // exit status; negative: minus the signal that ended it
    std::string out;
    std::string err;
    long peak = 0;  // peak memory, KiB
};

// Runs the program with the words ("info", "a.glb") in `folder`, in a fork of this process: libraries loaded
// before need not be loaded again, and a crash ends only the fork, which is killed after five seconds of CPU
// time. `around` must call its argument, which runs the program and returns its status; `around` returns the
// status to exit with.
ForkedRun RunForked(
    const std::filesystem::path& folder, const std::vector<std::string>& words,
    const std::function<int(const std::function<int()>& run)>& around = [](const auto& run) {
        return run();
    });

}  // namespace zr::test
