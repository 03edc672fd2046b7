// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/gltf/sample.h"

namespace zr::test {

// The program that is tested, as a shell calls it: what ZR_TEST_PROGRAM says, else the one of this build.
std::string Program();

// What a run of the program gave.
struct Outcome {
    int status;  // -1: ended by a signal
    std::string out;
    std::string err;
};

// Whether a text is one line, as every failure is told.
bool IsOneLine(const std::string& text);

// A fresh folder in which the program runs.
class CommandFolder : public gltf::test::TemporaryFolder {
public:
    // arguments: as a shell reads them. input: of standard input.
    Outcome Zr(const std::string& arguments, const std::string& input = {}) const;
    // What the shell makes of the line, in which zr is the program.
    Outcome Shell(const std::string& line) const;

    bool Exists(const std::string& name) const { return std::filesystem::exists(*this / name); }
    // Two nodes of which the animations "walk" (0 to 1 s) and "run, fast" (0 to 2 s) move the first; the
    // second has no viewport. A third, "still", moves nothing.
    void WriteAnimated(const std::string& name) const;
};

}  // namespace zr::test
