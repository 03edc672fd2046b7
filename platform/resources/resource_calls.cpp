// SPDX-License-Identifier: MIT
#include <cstring>

#include "platform/resources/embedded.h"
#include "platform/resources/res_file.h"
#include "platform/windows/resource.h"

namespace {

platform::ResourceId IdOf(LPCSTR text) {
    const auto value = reinterpret_cast<std::uintptr_t>(text);
    if (value <= 0xFFFF) return {static_cast<std::uint16_t>(value), {}};
    return {0, std::u16string(text, text + std::strlen(text))};
}

// A resource's handle is the address of its record, which begins with the sizes of data and header.
DWORD SizeField(HRSRC resource, std::size_t offset) {
    DWORD size = 0;
    std::memcpy(&size, reinterpret_cast<const std::byte*>(resource) + offset, sizeof(size));
    return size;
}

}  // namespace

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    const auto record =
        platform::FindResourceRecord(platform::EmbeddedResources(module), IdOf(type), IdOf(name));
    if (!record) return nullptr;
    return reinterpret_cast<HRSRC>(const_cast<std::byte*>(record->whole.data()));
}

HGLOBAL LoadResource(HMODULE, HRSRC resource) {
    if (!resource) return nullptr;
    return reinterpret_cast<std::byte*>(resource) + SizeField(resource, sizeof(DWORD));
}

DWORD SizeofResource(HMODULE, HRSRC resource) {
    return resource ? SizeField(resource, 0) : 0;
}

LPVOID LockResource(HGLOBAL data) {
    return data;
}
