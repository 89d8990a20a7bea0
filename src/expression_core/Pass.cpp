#include "Pass.h"

#include <atomic>

namespace tovo::detail {

PassNumber Pass::NextBlock()
{
    static std::atomic<PassNumber> blocks = 0;
    return ++blocks * kNumbersInBlock;
}

} // namespace tovo::detail
