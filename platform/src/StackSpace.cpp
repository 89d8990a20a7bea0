#include <TovoPlatform/StackSpace.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace tovo {

#if defined(_WIN32)

StackRange StackOfThread() noexcept
{
    ULONG_PTR lowest = 0;
    ULONG_PTR end = 0;
    GetCurrentThreadStackLimits(&lowest, &end);
    return {lowest, end};
}

#elif defined(__APPLE__)

StackRange StackOfThread() noexcept
{
    const pthread_t self = pthread_self();
    const auto end = reinterpret_cast<std::uintptr_t>(pthread_get_stackaddr_np(self));
    return {end - pthread_get_stacksize_np(self), end};
}

#elif defined(__linux__)

StackRange StackOfThread() noexcept
{
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return {};
    void* address = nullptr;
    std::size_t size = 0;
    const bool isKnown = pthread_attr_getstack(&attributes, &address, &size) == 0;
    pthread_attr_destroy(&attributes);
    const auto lowest = reinterpret_cast<std::uintptr_t>(address);
    return isKnown ? StackRange{lowest, lowest + size} : StackRange{};
}

#else

StackRange StackOfThread() noexcept
{
    return {};
}

#endif

} // namespace tovo
