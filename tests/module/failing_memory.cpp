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

void* Allocate(std::size_t size) {
    void* block = Fails() ? nullptr : std::malloc(size);
    if (block != nullptr) ++g_live;
    return block;
}

void Free(void* block) {
    if (block != nullptr) --g_live;
    std::free(block);
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

// These take the place of the standard library's and the core library's for the whole process.
void* operator new(std::size_t size) {
    if (void* block = Allocate(size)) return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}

namespace vl::mem {

void* allocate(std::size_t size) noexcept {
    return Allocate(size);
}
void free(void* storage) noexcept {
    Free(storage);
}

}  // namespace vl::mem
