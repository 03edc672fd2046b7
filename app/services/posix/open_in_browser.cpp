// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "app/services/help.h"

namespace zr {

bool OpenInBrowser(const std::filesystem::path& file) {
    std::string command = "xdg-open";
    std::string argument = file.string();
    char* arguments[] = {command.data(), argument.data(), nullptr};

    // Keeps the browser's messages out of the program's output.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    pid_t process = 0;
    const bool started = posix_spawnp(&process, command.c_str(), &actions, nullptr, arguments, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (started) std::thread([process] { waitpid(process, nullptr, 0); }).detach();
    return started;
}

}  // namespace zr
