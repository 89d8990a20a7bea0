#include "Pass.h"

#include <atomic>

namespace tovo::detail {

thread_local CString StrError::last;

Stamp Pass::NextBlock()
{
    static std::atomic<Stamp> blocks = 0;
    return ++blocks * kStampsInBlock;
}

} // namespace tovo::detail
