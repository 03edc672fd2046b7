// SPDX-License-Identifier: MIT
#include "base/filesystem.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

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

bool IsWriteProtected(const path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return false;
    const bool isReadOnly = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    return isReadOnly || (access(file.c_str(), W_OK) != 0 && (errno == EACCES || errno == EPERM));
}

std::FILE* OpenToRead(const path& file) {
    return std::fopen(file.c_str(), "rb");
}

}  // namespace zr::fs
