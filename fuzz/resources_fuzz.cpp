// SPDX-License-Identifier: MIT
#include <cstdint>
#include <span>

#include "kernix/module_strings.h"
#include "platform/resources/res_file.h"
#include "platform/ui/dialog_template.h"

// All readers of a module's resources: the file, dialog templates, language tables.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(reinterpret_cast<const std::byte*>(data), size);
    platform::ResourceReader reader(bytes);
    while (const auto record = reader.Next()) platform::ParseDialogTemplate(record->data);
    platform::ParseDialogTemplate(bytes);
    kernix::ParseStringTable({reinterpret_cast<const char*>(data), size});
    return 0;
}
