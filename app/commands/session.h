// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "app/services/host.h"
#include "gltf/document.h"
#include "host/context.h"

namespace zr {

// The user asked to stop; the program ends with status 130.
struct Stopped {};

// A wrong use of the command line that the parser cannot see; the program ends with status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the commands of one run of the program share.
class Session {
public:
    Session();
    ~Session();

    // The host with the module loaded, made at the first call.
    Host& GetHost();

    // Its break flag is set when the user presses Ctrl-C.
    vl::Context* GetContext() const { return m_context.Get(); }
    bool IsStopRequested() const { return m_context->IsBreak(); }
    // On any thread.
    void ThrowIfStopped() const {
        if (IsStopRequested()) throw Stopped();
    }

    // Reads a scene as the command line asks. Its warnings are printed when the command is done. On any thread.
    gltf::Document LoadDocument(const std::filesystem::path& file);

    // A command gives here what it does; it runs when the command line has been read. Its result is the
    // program's status.
    void SetCommand(std::function<int()> run) { m_run = std::move(run); }
    int Run();

    std::string m_language;  // empty: the user's
    gltf::LoadOptions m_loadOptions;

private:
    vl::Ref<vl::Context> m_context;
    std::unique_ptr<Host> m_host;
    std::function<int()> m_run;
    std::mutex m_warningsMutex;
    std::vector<std::string> m_warnings;
};

}  // namespace zr
