#include <TovoPlatform/StackSpace.h>

#include "UnderWay.h"

namespace tovo::detail {
namespace {

// With sanitizers, and without optimisation, a level takes several times as much.
#ifdef NDEBUG
constexpr std::uintptr_t kReserve = 48 << 10;
#else
constexpr std::uintptr_t kReserve = 256 << 10;
#endif

} // namespace

bool StackSpace::IsShortAt(std::uintptr_t here)
{
    static constinit thread_local StackRange stack;
    if (enough == std::numeric_limits<std::uintptr_t>::max()) {
        stack = StackOfThread();
        enough = stack.lowest + kReserve;
    }
    return here < enough && stack.Contains(here);
}

} // namespace tovo::detail
