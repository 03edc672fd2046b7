// SPDX-License-Identifier: MIT
#include "platform/resources/embedded.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

namespace platform {
namespace {

using namespace std::string_view_literals;

// An ELF note's name size includes the terminator.
constexpr std::string_view kOwner = "zrtools.rsrc\0"sv;

struct Search {
    ElfW(Addr) base;
    std::span<const std::byte> found;
};

std::optional<ElfW(Addr)> LoadAddress(HMODULE module) {
    void* handle = module ? static_cast<void*>(module) : dlopen(nullptr, RTLD_LAZY);
    link_map* map = nullptr;
    const bool known = handle && dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0;
    const std::optional<ElfW(Addr)> address = known ? std::optional(map->l_addr) : std::nullopt;
    if (!module && handle) dlclose(handle);
    return address;
}

std::span<const std::byte> FindNote(std::span<const std::byte> notes, std::size_t alignment) {
    const auto align = [alignment](std::size_t size) { return (size + alignment - 1) & ~(alignment - 1); };
    ElfW(Nhdr) header;
    while (notes.size() >= sizeof(header)) {
        std::memcpy(&header, notes.data(), sizeof(header));
        notes = notes.subspan(sizeof(header));
        const std::size_t nameSize = align(header.n_namesz);
        if (nameSize > notes.size() || header.n_descsz > notes.size() - nameSize) break;
        if (header.n_namesz == kOwner.size() &&
            std::memcmp(notes.data(), kOwner.data(), kOwner.size()) == 0) {
            return notes.subspan(nameSize, header.n_descsz);
        }
        notes = notes.subspan(std::min(nameSize + align(header.n_descsz), notes.size()));
    }
    return {};
}

int VisitModule(dl_phdr_info* info, std::size_t, void* context) {
    Search& search = *static_cast<Search*>(context);
    if (info->dlpi_addr != search.base) return 0;
    for (const ElfW(Phdr) & header : std::span(info->dlpi_phdr, info->dlpi_phnum)) {
        if (header.p_type != PT_NOTE) continue;
        const auto* begin = reinterpret_cast<const std::byte*>(info->dlpi_addr + header.p_vaddr);
        search.found = FindNote({begin, header.p_memsz}, header.p_align == 8 ? 8 : 4);
        if (!search.found.empty()) break;
    }
    return 1;
}

}  // namespace

std::span<const std::byte> EmbeddedResources(HMODULE module) {
    const std::optional<ElfW(Addr)> base = LoadAddress(module);
    if (!base) return {};
    Search search{*base, {}};
    dl_iterate_phdr(VisitModule, &search);
    return search.found;
}

}  // namespace platform
