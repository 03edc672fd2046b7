// SPDX-License-Identifier: MIT
#pragma once

// Receives messages for the user. The caller of an operation owns it.
// The order of functions and fields is the binary interface (host/api.h).
class MessageSink {
public:
    // Formatted as by HostApp::LogLine. code is 0.
    virtual void Message(int code, const char16_t* format, ...) = 0;

protected:
    ~MessageSink() = default;
};
