// SPDX-License-Identifier: MIT
// zr_reference KIND FOLDER: writes pages or scripts generated from the program's own options. KIND: man,
// completions, or docs (the pages of docs/commands).
#include <cstdio>
#include <filesystem>
#include <string>

#include "app/commands/reference/completions.h"
#include "app/commands/reference/pages.h"
#include "base/file_transaction.h"

namespace {

class Writer {
public:
    explicit Writer(std::string folder) : m_folder(std::move(folder)) {}

    void Write(const std::string& name, const std::string& text) {
        m_files.Add(zr::PathFromUtf8(m_folder + "/" + name), zr::BytesOf(text));
    }
    void Commit() { m_files.Commit(); }

private:
    std::string m_folder;
    zr::FileTransaction m_files;
};

bool WriteAll(const std::string& kind, Writer& writer) {
    const zr::CommandTable program = zr::ReadCommandTable();
    if (kind == "completions") {
        writer.Write("bash-completion/completions/zr", zr::BashCompletion(program));
        writer.Write("zsh/site-functions/_zr", zr::ZshCompletion(program));
        writer.Write("fish/vendor_completions.d/zr.fish", zr::FishCompletion(program));
    } else if (kind == "man") {
        writer.Write("man/man1/zr.1", zr::ManualPage(program, program));
        for (const zr::CommandTable& command : program.commands)
            writer.Write("man/man1/zr-" + command.name + ".1", zr::ManualPage(program, command));
    } else if (kind == "docs") {
        writer.Write("README.md", zr::DocumentPage(program, program));
        for (const zr::CommandTable& command : program.commands)
            writer.Write(command.name + ".md", zr::DocumentPage(program, command));
    } else {
        return false;
    }
    writer.Commit();
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 3) {
            Writer writer(argv[2]);
            if (WriteAll(argv[1], writer)) return 0;
        }
        std::fprintf(stderr, "usage: zr_reference man|completions|docs FOLDER\n");
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zr_reference: %s\n", error.what());
        return 1;
    }
}
