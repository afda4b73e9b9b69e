#include "tests/engine/LiveMemory.h"

#ifdef __SANITIZE_ADDRESS__

// From the sanitizer's runtime; its headers are a package of their own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

std::size_t liveMemory()
{
    return __sanitizer_get_current_allocated_bytes();
}

#else

#include <cstdlib>
#include <new>

namespace {

std::size_t alive = 0;

} // namespace

std::size_t liveMemory()
{
    return alive;
}

void* operator new(std::size_t size)
{
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (!memory) {
        throw std::bad_alloc();
    }
    ++alive;
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (memory) {
        --alive;
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    operator delete(memory);
}

#endif
