#include <TovoPlatform/ProcessState.h>

#if __has_include(<pthread.h>)
#include <pthread.h>
#endif

#include "ResourceLock.h"

namespace {

constinit tovo::Everlasting<std::mutex> loadingLock;
constinit tovo::Everlasting<std::mutex> resourceLock;

#if __has_include(<pthread.h>)

void LockAll()
{
    loadingLock.value.lock();
    resourceLock.value.lock();
}

void UnlockAll()
{
    resourceLock.value.unlock();
    loadingLock.value.unlock();
}

// Where there is no memory left to note it, forks go without.
[[maybe_unused]] const int isHeldAcrossForks = pthread_atfork(LockAll, UnlockAll, UnlockAll);

#endif

} // namespace

std::mutex& tovo::LoadingLock() noexcept
{
    return loadingLock.value;
}

std::mutex& tovo::ResourceLock() noexcept
{
    return resourceLock.value;
}
