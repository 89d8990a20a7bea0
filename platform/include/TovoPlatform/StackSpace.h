#ifndef TOVOPLATFORM_STACKSPACE_H
#define TOVOPLATFORM_STACKSPACE_H

#include <cstdint>

#include <TovoPlatform/Types.h>

namespace tovo {

// The addresses of a thread's stack, which is used from the highest down. Both are 0 where the
// system does not tell.
struct StackRange {
    std::uintptr_t lowest = 0;
    std::uintptr_t end = 0; // above the highest

    bool Contains(std::uintptr_t address) const { return address >= lowest && address < end; }
};

// That of the calling thread. It takes the system up to some ten microseconds to tell, and the
// answer does not change. Where a host runs code on a stack of its own, as coroutines do, that is
// another one than the thread's.
TOVO_PLATFORM_API StackRange StackOfThread() noexcept;

} // namespace tovo

#endif
