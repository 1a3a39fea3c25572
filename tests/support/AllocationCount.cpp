// SPDX-License-Identifier: GPL-3.0-or-later
// Replaces the global operator new and delete of the test program.
#include "tests/support/AllocationCount.h"

#include <cstdlib>
#include <new>

static thread_local std::size_t allocations = 0;
static thread_local const std::function<void()>* passage = nullptr;

std::size_t zarno::allocationsOfThisThread() {
    return allocations;
}

zarno::AllocationsPass::AllocationsPass(std::function<void()> through)
    : through_(std::move(through)) {
    passage = &through_;
}

zarno::AllocationsPass::~AllocationsPass() {
    passage = nullptr;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void* operator new(std::size_t size) {
    ++allocations;
    if (passage != nullptr) (*passage)();
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#endif
