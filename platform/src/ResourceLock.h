#ifndef TOVOPLATFORM_SRC_RESOURCELOCK_H
#define TOVOPLATFORM_SRC_RESOURCELOCK_H

#include <mutex>

namespace tovo {

// The lock of string resources and locale settings. No other lock is taken within it.
std::mutex& ResourceLock() noexcept;

} // namespace tovo

#endif
