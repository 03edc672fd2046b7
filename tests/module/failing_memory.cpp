// SPDX-License-Identifier: MIT
#include "tests/module/failing_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "host/memory.h"

namespace {

std::atomic<long> g_untilFailure = 0;  // 0: none fails
std::atomic<bool> g_failed = false;
std::atomic<long> g_live = 0;

bool Fails() {
    if (g_untilFailure.load(std::memory_order_relaxed) == 0 || --g_untilFailure != 0) return false;
    g_failed = true;
    return true;
}

void* Counted(void* block) {
    if (block != nullptr) ++g_live;
    return block;
}

}  // namespace

namespace failing_memory {

void FailAt(long n) {
    g_failed = false;
    g_untilFailure = n;
}

bool Stop() {
    g_untilFailure = 0;
    return g_failed;
}

long LiveBlocks() {
    return g_live;
}

}  // namespace failing_memory

// The linker redirects every call of the C functions in the program to these, including the calls below. It
// rejects hidden ones if a shared library calls the functions too.
#pragma GCC visibility push(default)
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) {
    return Fails() ? nullptr : Counted(__real_malloc(size));
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Fails() ? nullptr : Counted(__real_calloc(count, size));
}
void* __wrap_realloc(void* block, std::size_t size) {
    if (block == nullptr) return __wrap_malloc(size);
    return Fails() ? nullptr : __real_realloc(block, size);
}
void __wrap_free(void* block) {
    if (block != nullptr) --g_live;
    __real_free(block);
}

}  // extern "C"
#pragma GCC visibility pop

// These replace the standard library's and the core library's for the whole process.
void* operator new(std::size_t size) {
    if (void* block = std::malloc(size)) return block;
    if (const std::new_handler handler = std::get_new_handler()) handler();
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size, std::nothrow);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}

namespace vl::mem {

void* allocate(std::size_t size) noexcept {
    return operator new(size, std::nothrow);
}
void free(void* storage) noexcept {
    std::free(storage);
}

}  // namespace vl::mem
