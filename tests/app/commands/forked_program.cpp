// SPDX-License-Identifier: MIT
#include "tests/app/commands/forked_program.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "app/commands/program.h"

namespace zr::test {
namespace {

constexpr rlim_t kSeconds = 5;      // of CPU time
constexpr unsigned kPatience = 60;  // seconds, on a busy machine

std::string Content(int file) {
    std::string content(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    if (pread(file, content.data(), content.size(), 0) != static_cast<ssize_t>(content.size())) std::abort();
    close(file);
    return content;
}

}  // namespace

ForkedRun RunForked(const std::filesystem::path& folder, const std::vector<std::string>& words,
                    const std::function<int(const std::function<int()>& run)>& around) {
    std::vector<const char*> arguments{"zr"};
    for (const std::string& word : words) arguments.push_back(word.c_str());
    const int out = memfd_create("out", MFD_CLOEXEC), err = memfd_create("err", MFD_CLOEXEC);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0 || out < 0 || err < 0) std::abort();
    if (child == 0) {
        alarm(kPatience);
        const rlimit limit{kSeconds, kSeconds};
        if (setrlimit(RLIMIT_CPU, &limit) != 0) _exit(99);
        const int null = open("/dev/null", O_RDONLY);
        if (dup2(null, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0 || chdir(folder.c_str()) != 0)
            _exit(99);
        const auto run = [&] { return RunProgram(static_cast<int>(arguments.size()), arguments.data()); };
        _exit(around(run));
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), Content(out), Content(err),
            usage.ru_maxrss};
}

}  // namespace zr::test
