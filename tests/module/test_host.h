// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kernix/host_app_base.h"
#include "module/frame/globals.h"

// A host that keeps its messages; log lines begin with "log: ".
class TestHost final : public kernix::HostAppBase {
public:
    std::vector<std::string> messages;

protected:
    void ShowMessage(int severity, const std::string& text) override {
        messages.push_back((severity != 0 ? "" : "log: ") + text);
    }
};

// Fixture that sets the module's host.
class HostTest : public testing::Test {
protected:
    HostTest() { g_pHost = &host; }
    ~HostTest() override { g_pHost = nullptr; }

    TestHost host;
};
