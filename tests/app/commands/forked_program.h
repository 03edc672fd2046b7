// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zr::test {

// What a run in a copy of this process gave.
struct ForkedRun {
    int status = 0;  // of exit; less than 0: minus the signal that ended it
    std::string out;
    std::string err;
    long peak = 0;  // memory at the most, KiB
};

// Runs the program's words ("info", "a.glb") in `folder`, in a copy of this process: what was loaded before
// need not be loaded again, and whatever happens happens to the copy. It is ended after five seconds of work.
// `around` calls what it is given, which runs the program and returns its status; it may do more, and returns
// the status to exit with.
ForkedRun RunForked(
    const std::filesystem::path& folder, const std::vector<std::string>& words,
    const std::function<int(const std::function<int()>& run)>& around = [](const auto& run) {
        return run();
    });

}  // namespace zr::test
