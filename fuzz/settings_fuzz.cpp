// SPDX-License-Identifier: MIT
#include "app/services/settings_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>

// Reads a settings file in memory and looks up what the exporter does.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const int file = memfd_create("settings", 0);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) __builtin_trap();
    try {
        zr::SettingsFile settings("/proc/self/fd/" + std::to_string(file));
        for (const char* section : {"", "anim", "user\\anim"}) {
            settings.GetInt(section, "mergekeys", 0);
            settings.GetFloat(section, "RESCALE", 1);
        }
        settings.GetInt(nullptr, "anim\\mergekeys", 0);
    } catch (const std::runtime_error&) {
    }
    close(file);
    return 0;
}
