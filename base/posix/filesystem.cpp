// SPDX-License-Identifier: MIT
#include "base/filesystem.h"

namespace zr::fs {

path Folded(const path& file) {
    return file;
}

std::vector<path> NamesIn(const path& folder, std::error_code& failure) {
    std::vector<path> names;
    for (directory_iterator at(folder, failure); !failure && at != directory_iterator();
         at.increment(failure))
        names.push_back(at->path().filename());
    return names;
}

std::vector<path> Expanded(const path& file) {
    return {file};
}

std::FILE* OpenToRead(const path& file) {
    return std::fopen(file.c_str(), "rb");
}

}  // namespace zr::fs
