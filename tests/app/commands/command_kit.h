// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/gltf/sample.h"

namespace zr::test {

// The shell command of the program under test: ZR_TEST_PROGRAM, by default the program of this build.
std::string Program();

// The outcome of a run of the program.
struct Outcome {
    int status;  // -1: ended by a signal
    std::string out;
    std::string err;
};

// Whether the text is exactly one line, as every error message must be.
bool IsOneLine(const std::string& text);

// A fresh folder in which the program runs.
class CommandFolder : public gltf::test::TemporaryFolder {
public:
    // Runs zr. arguments: as a shell reads them. input: the content of standard input.
    Outcome Zr(const std::string& arguments, const std::string& input = {}) const;
    // Runs a shell line in which zr is the program.
    Outcome Shell(const std::string& line) const;

    bool Exists(const std::string& name) const { return std::filesystem::exists(*this / name); }
    // Writes a scene of two nodes. The animations "walk" (0 to 1 s) and "run, fast" (0 to 2 s, not in any
    // viewport) move the first; a third, "still", moves nothing.
    void WriteAnimated(const std::string& name) const;
};

}  // namespace zr::test
