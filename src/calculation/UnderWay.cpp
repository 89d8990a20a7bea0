#include "UnderWay.h"

#include <algorithm>
#include <vector>

namespace tovo::detail {
namespace {

// Innermost last. A chain of references is short, so a search of it is cheap.
thread_local std::vector<const void*> objectsUnderWay;

} // namespace

UnderWay::UnderWay(const void* object) : m_IsFirst(!Marks(object))
{
    objectsUnderWay.push_back(object);
}

UnderWay::~UnderWay()
{
    objectsUnderWay.pop_back();
}

bool UnderWay::IsTooDeep() const
{
    return objectsUnderWay.size() > kDeepestNesting;
}

bool UnderWay::Marks(const void* object)
{
    return std::find(objectsUnderWay.rbegin(), objectsUnderWay.rend(), object) !=
           objectsUnderWay.rend();
}

} // namespace tovo::detail
