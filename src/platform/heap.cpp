// SPDX-License-Identifier: MIT
#include "platform/heap.h"

#include <malloc.h>

namespace {

// Vectors of 1080p need 2.5 MB. A heap keeps so much at its end, or it would give them back.
constexpr int heap_block_bytes = 2816 * 1024;
constexpr int heap_surplus_bytes = 3328 * 1024;

}  // namespace

void set_up_heap() {
    mallopt(M_MMAP_THRESHOLD, heap_block_bytes);
    mallopt(M_TRIM_THRESHOLD, heap_surplus_bytes);
}

void trim_heap() {
    malloc_trim(0);
}
