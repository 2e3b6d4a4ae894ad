// SPDX-License-Identifier: MIT
// Stands in front of the C library's allocator and counts. A sanitizer has an allocator of its own
// and offers a hook instead.
#include "audio/allocation_counter.h"

#include <cerrno>
#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define COUNT_BY_HOOK 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define COUNT_BY_HOOK 1
#endif

namespace {
thread_local long count = 0;
}

long heap_allocations() {
    return count;
}

#ifdef COUNT_BY_HOOK

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {
void on_malloc(const volatile void* /*block*/, std::size_t /*size*/) {
    ++count;
}
void on_free(const volatile void* /*block*/) {}
[[maybe_unused]] const int installed =
    __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free);
}  // namespace

#else

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t members, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) noexcept {
    ++count;
    return __libc_malloc(size);
}

void* calloc(std::size_t members, std::size_t size) noexcept {
    ++count;
    return __libc_calloc(members, size);
}

void* realloc(void* block, std::size_t size) noexcept {
    ++count;
    return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    ++count;
    return __libc_memalign(alignment, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
    ++count;
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    ++count;
    void* memory = __libc_memalign(alignment, size);
    if (!memory) return ENOMEM;
    *block = memory;
    return 0;
}

}  // extern "C"

#endif
