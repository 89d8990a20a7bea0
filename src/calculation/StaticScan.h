#ifndef TOVOFORMULA_SRC_STATICSCAN_H
#define TOVOFORMULA_SRC_STATICSCAN_H

#include <unordered_set>

#include "UnderWay.h"

class CScannedVariables;

namespace tovo::detail {

// A static scan into one list, which passes once through each object: what refers to itself ends
// it, and what is referred to often costs nothing more. Nested walks into the same list join the
// scan of the outermost one. Kept for each thread.
class StaticScan {
public:
    explicit StaticScan(const CScannedVariables& list);
    ~StaticScan();

    StaticScan(const StaticScan&) = delete;
    StaticScan& operator=(const StaticScan&) = delete;

    // Whether the scan has gone as deep as the stack may carry it.
    bool IsTooDeep() const { return m_Depth > kDeepestNesting || StackSpace::IsShort(); }
    // Whether the scan comes to the object for the first time.
    bool Enters(const void* object) { return m_Seen->insert(object).second; }

private:
    using Objects = std::unordered_set<const void*>;

    const CScannedVariables* const m_List;
    StaticScan* const m_Outer; // the scan that this one was started in
    const int m_Depth;
    Objects m_Own;
    Objects* m_Seen; // this scan's, or that of the scan it joined
};

} // namespace tovo::detail

#endif
