#include "StaticScan.h"

namespace tovo::detail {
namespace {

thread_local StaticScan* innermostScan = nullptr;

} // namespace

StaticScan::StaticScan(const CScannedVariables& list)
    : m_List(&list),
      m_Outer(innermostScan),
      m_Depth(m_Outer ? m_Outer->m_Depth + 1 : 1),
      m_Seen(&m_Own)
{
    // A host's object may have started a scan of its own in between, into another list.
    for (const StaticScan* scan = m_Outer; scan; scan = scan->m_Outer)
        if (scan->m_List == m_List) {
            m_Seen = scan->m_Seen;
            break;
        }
    innermostScan = this;
}

StaticScan::~StaticScan()
{
    innermostScan = m_Outer;
}

} // namespace tovo::detail
