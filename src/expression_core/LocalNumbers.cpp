#include "LocalNumbers.h"

#include <atomic>

namespace tovo::detail {
namespace {

std::atomic<WCHAR> decimalSeparator{u'.'};
std::atomic<std::uint64_t> namesState{1};

} // namespace

WCHAR LocalDecimalSeparator()
{
    return decimalSeparator.load(std::memory_order_relaxed);
}

void SetLocalDecimalSeparator(WCHAR separator)
{
    decimalSeparator.store(separator, std::memory_order_relaxed);
    ++namesState;
}

std::uint64_t TokenNamesState()
{
    return namesState.load(std::memory_order_relaxed);
}

} // namespace tovo::detail
