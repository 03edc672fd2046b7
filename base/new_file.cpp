// SPDX-License-Identifier: MIT
#include "base/new_file.h"

#include <random>

namespace zr {

std::filesystem::path TemporaryName(const std::filesystem::path& folder) {
    constexpr char kHex[] = "0123456789abcdef";
    std::random_device random;
    std::string name = ".zr-";
    for (int i = 0; i < 16; ++i) name += kHex[random() & 15];
    return folder / (name + ".tmp");
}

}  // namespace zr
