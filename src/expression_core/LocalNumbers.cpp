#include "LocalNumbers.h"

#include <atomic>

namespace tovo::detail {
namespace {

std::atomic<WCHAR> decimalSeparator{u'.'};

} // namespace

WCHAR LocalDecimalSeparator()
{
    return decimalSeparator.load(std::memory_order_relaxed);
}

void SetLocalDecimalSeparator(WCHAR separator)
{
    decimalSeparator.store(separator, std::memory_order_relaxed);
}

} // namespace tovo::detail
