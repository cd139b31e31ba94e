#include "tests/support/FreedBlocks.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>

namespace {

const char* gText = nullptr;
int gWithText = 0;

void* Allocate(std::size_t size) {
    if (void* const block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}

void Free(void* block) {
    if (gText != nullptr && block != nullptr &&
        memmem(block, malloc_usable_size(block), gText, std::strlen(gText)) != nullptr) {
        ++gWithText;
    }
    std::free(block);
}

}  // namespace

FreedBlocks::FreedBlocks(const char* text) {
    gWithText = 0;
    gText = text;
}

FreedBlocks::~FreedBlocks() {
    gText = nullptr;
}

int FreedBlocks::WithText() {
    return gWithText;
}

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
// The standard library's own calls the one above, but a sanitizer's would not.
void* operator new(std::size_t size, const std::nothrow_t& /*isNothrow*/) noexcept {
    return std::malloc(size);
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
