// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>
#include <vector>

#include "app/commands/program.h"
#include "base/file.h"
#include "platform/windows.h"

// Stops the C runtime from expanding * and ? in the arguments, not all of which are file names.
extern "C" int _dowildcard;
int _dowildcard = 0;

namespace {

// Switches the console to UTF-8 until the program ends.
class ConsoleText {
public:
    ConsoleText() { SetConsoleOutputCP(CP_UTF8); }
    ~ConsoleText() { SetConsoleOutputCP(m_before); }

private:
    UINT m_before = GetConsoleOutputCP();
};

}  // namespace

int wmain(int argc, wchar_t** argv) {
    constexpr std::size_t kBuffer = 1 << 16;
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    std::setvbuf(stdout, nullptr, _IOFBF, kBuffer);
    const ConsoleText text;
    std::vector<std::string> words;
    for (int i = 0; i < argc; ++i) words.push_back(zr::PathToUtf8(argv[i]));
    std::vector<const char*> arguments;
    for (const std::string& word : words) arguments.push_back(word.c_str());
    return zr::RunProgram(argc, arguments.data());
}
