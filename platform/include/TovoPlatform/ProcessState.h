#ifndef TOVOPLATFORM_PROCESSSTATE_H
#define TOVOPLATFORM_PROCESSSTATE_H

#include <mutex>

#include <TovoPlatform/Types.h>

// What the libraries keep for the process is there before any static object of a host is made, and
// stays until the last one is gone; and a child of a fork finds no lock taken.

namespace tovo {

// A value that is neither made at a moment nor ever destroyed. Requires: a static object,
// constinit.
template <typename Value>
union Everlasting {
    constexpr Everlasting() : value() {}
    ~Everlasting() {}

    Value value; // made at compile time
};

// The lock under which a library loads anew what it keeps for the process. What it loads may be
// guarded by locks of the platform layer, which are taken within it. Held across a fork.
TOVO_PLATFORM_API std::mutex& LoadingLock() noexcept;

} // namespace tovo

#endif
