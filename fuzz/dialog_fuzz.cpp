// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/ui/dialog_template.h"

// Dialog templates, which fuzz_resources rarely reaches.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    platform::ParseDialogTemplate(std::as_bytes(std::span(data, size)));
    return 0;
}
