#include "Memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace tovo::test {
namespace {

constinit thread_local int piecesToGo = 0; // until one is refused; 0 when none is
constinit std::atomic<long> piecesInUse = 0;

void* Allocate(std::size_t size)
{
    if (piecesToGo > 0 && --piecesToGo == 0)
        return nullptr;
    void* const memory = std::malloc(size);
    piecesInUse += memory ? 1 : 0;
    return memory;
}

void Free(void* memory)
{
    piecesInUse -= memory ? 1 : 0;
    std::free(memory);
}

} // namespace

Refusal::Refusal(int count)
{
    piecesToGo = count;
}

Refusal::~Refusal()
{
    piecesToGo = 0;
}

bool Refusal::HasHappened() const
{
    return piecesToGo == 0;
}

long PiecesInUse()
{
    return piecesInUse;
}

} // namespace tovo::test

void* operator new(std::size_t size)
{
    if (void* const memory = tovo::test::Allocate(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return tovo::test::Allocate(size);
}

void operator delete(void* memory) noexcept
{
    tovo::test::Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    tovo::test::Free(memory);
}
