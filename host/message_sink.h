// SPDX-License-Identifier: MIT
#pragma once

// Takes messages for the user.
class MessageSink {
public:
    virtual void Message(int code, const char16_t* format, ...) = 0;

protected:
    ~MessageSink() = default;
};
