// SPDX-License-Identifier: MIT
#include "platform/ui/dialog_template.h"

#include "platform/resources/byte_reader.h"

namespace platform {
namespace {

constexpr std::uint16_t kExtendedVersion = 1;
constexpr std::uint16_t kExtendedSignature = 0xFFFF;
constexpr std::uint32_t kHasFont = 0x40;

DialogPlace ReadPlace(ByteReader& reader) {
    DialogPlace place;
    place.x = reader.Read<std::int16_t>();
    place.y = reader.Read<std::int16_t>();
    place.width = reader.Read<std::int16_t>();
    place.height = reader.Read<std::int16_t>();
    return place;
}

DialogControl ReadControl(ByteReader& reader) {
    DialogControl control;
    reader.Align(4);
    reader.Read<std::uint32_t>();  // help id
    control.exStyle = reader.Read<std::uint32_t>();
    control.style = reader.Read<std::uint32_t>();
    control.place = ReadPlace(reader);
    control.id = reader.Read<std::uint32_t>();
    control.windowClass = reader.ReadId();
    control.caption = reader.ReadId().text;
    reader.Skip(reader.Read<std::uint16_t>());  // creation data
    return control;
}

}  // namespace

std::optional<DialogTemplate> ParseDialogTemplate(std::span<const std::byte> resource) {
    ByteReader reader(resource);
    if (reader.Read<std::uint16_t>() != kExtendedVersion) return std::nullopt;
    if (reader.Read<std::uint16_t>() != kExtendedSignature) return std::nullopt;
    DialogTemplate dialog;
    reader.Read<std::uint32_t>();  // help id
    reader.Read<std::uint32_t>();  // extended style
    dialog.style = reader.Read<std::uint32_t>();
    const std::uint16_t controlCount = reader.Read<std::uint16_t>();
    dialog.place = ReadPlace(reader);
    reader.ReadId();  // menu
    reader.ReadId();  // window class
    dialog.caption = reader.ReadId().text;
    if (dialog.style & kHasFont) {
        dialog.fontPoints = reader.Read<std::uint16_t>();
        dialog.fontWeight = reader.Read<std::uint16_t>();
        dialog.fontItalic = reader.Read<std::uint8_t>() != 0;
        reader.Read<std::uint8_t>();  // character set
        dialog.fontFace = reader.ReadId().text;
    }
    for (std::uint16_t i = 0; i < controlCount && !reader.Failed(); ++i) {
        dialog.controls.push_back(ReadControl(reader));
    }
    if (reader.Failed()) return std::nullopt;
    return dialog;
}

}  // namespace platform
