#include "UnderWay.h"

#include <algorithm>
#include <vector>

namespace tovo::detail {
namespace {

// Innermost last. A chain of references is short, so a search of it is cheap.
thread_local std::vector<const void*> objectsUnderWay;

} // namespace

UnderWay::UnderWay(const void* object)
    : m_IsFirst(std::find(objectsUnderWay.rbegin(), objectsUnderWay.rend(), object) ==
                objectsUnderWay.rend())
{
    objectsUnderWay.push_back(object);
}

UnderWay::~UnderWay()
{
    objectsUnderWay.pop_back();
}

} // namespace tovo::detail
