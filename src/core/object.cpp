// SPDX-License-Identifier: MIT
#include "core/object.h"

#include <cstdlib>
#include <new>

object& object::operator=(const object& other) {
    references_ = other.references_;  // NOLINT: assigning to itself changes nothing
    return *this;
}

int object::release() {
    --references_;
    if (references_ > 0) return references_;
    delete this;
    return 0;
}

void* object::queryInterface(unsigned long long /*id*/, void* /*out*/) {
    return nullptr;
}

void* object::operator new(std::size_t size) {
    void* memory = std::calloc(1, size);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void object::operator delete(void* memory) {
    std::free(memory);
}
