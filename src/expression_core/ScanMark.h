#ifndef TOVOFORMULA_SRC_SCANMARK_H
#define TOVOFORMULA_SRC_SCANMARK_H

#include <TovoFormula/ScannedVariables.h>

namespace tovo::detail {

// Takes back what a scan has recorded in its list, unless it is told that the scan came to its end.
// The in-condition flags of variables and set stay written; the next scan writes them afresh.
class ScanMark {
public:
    // Null for what is no scan.
    explicit ScanMark(CScannedVariables* list) : m_List(list)
    {
        if (!m_List)
            return;
        m_Count = m_List->VariableList().GetCount();
        m_Quantity = m_List->QuantityScanned();
        m_Duration = m_List->DURATIONScanned();
        m_JobSize = m_List->JOBSIZEScanned();
    }
    ~ScanMark()
    {
        if (m_List)
            TakeBack();
    }

    ScanMark(const ScanMark&) = delete;
    ScanMark& operator=(const ScanMark&) = delete;

    void End() { m_List = nullptr; }

private:
    // A scan adds at the end.
    void TakeBack()
    {
        CStringList& names = m_List->VariableList();
        POSITION position = names.GetHeadPosition();
        for (int index = 0; position && index < m_Count; ++index)
            static_cast<void>(names.GetNext(position));
        while (position) {
            const POSITION added = position;
            static_cast<void>(names.GetNext(position));
            names.RemoveAt(added);
        }
        m_List->SetQuantityScanned(m_Quantity);
        m_List->SetDURATIONScanned(m_Duration);
        m_List->SetJOBSIZEScanned(m_JobSize);
    }

    CScannedVariables* m_List;
    int m_Count = 0;
    int m_Quantity = 0;
    int m_Duration = 0;
    int m_JobSize = 0;
};

} // namespace tovo::detail

#endif
