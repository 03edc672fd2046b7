// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "app/operations/decode/compressed_data.h"
#include "app/services/host.h"
#include "gltf/document.h"
#include "host/context.h"

namespace zr {

// The user asked to stop; the program ends with status 130.
struct Stopped {};
inline constexpr int kStoppedStatus = 130;
inline constexpr const char* kStoppedLine = "zr: stopped\n";

// A misuse of the command line that the parser cannot detect; the program ends with status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The options that every command takes.
struct GlobalOptions {
    GlobalOptions() = default;
    GlobalOptions(const GlobalOptions&) = delete;
    GlobalOptions& operator=(const GlobalOptions&) = delete;

    std::string language;    // of the module's texts; empty: the user's
    bool json = false;       // print the report as JSON
    bool quiet = false;      // print errors and answers only
    bool verbose = false;    // also print the module's log
    bool noClobber = false;  // never overwrite a file
    bool strict = false;     // treat a document's warnings as errors
    CompressedData compressedData;
    gltf::LoadOptions load{.decoder = &compressedData};
};

// State shared by the commands of one run of the program.
class Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    GlobalOptions& Options() { return m_options; }
    const GlobalOptions& Options() const { return m_options; }

    // The host with the module loaded; created by the first call.
    Host& GetHost();

    // Its break flag is set when the user presses Ctrl-C. A program that does not end shortly afterwards is
    // terminated.
    vl::Context* GetContext() const { return m_context.Get(); }
    bool IsStopRequested() const { return m_context->IsBreak(); }
    // On any thread.
    void ThrowIfStopped() const {
        if (IsStopRequested()) throw Stopped();
    }

    // Reserves standard output for a result, so that the report goes elsewhere. Throws UsageError when
    // another result or JSON already uses it.
    void TakeStandardOutput();
    bool IsStandardOutputTaken() const { return m_isStandardOutputTaken; }

    // Sets what to run once the command line has been parsed; it returns the exit status.
    void SetCommand(std::function<int()> run) { m_run = std::move(run); }
    int Run() { return m_run ? m_run() : 2; }

private:
    GlobalOptions m_options;
    vl::Ref<vl::Context> m_context;
    std::unique_ptr<Host> m_host;
    std::function<int()> m_run;
    bool m_isStandardOutputTaken = false;
};

}  // namespace zr
