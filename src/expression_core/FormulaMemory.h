#ifndef TOVOFORMULA_SRC_FORMULAMEMORY_H
#define TOVOFORMULA_SRC_FORMULAMEMORY_H

#include <TovoFormula/ExprTree.h>

#include "Pass.h"

namespace tovo::detail {

// What a formula has succeeded in during the present pass. Failures are not remembered: each is
// found anew, by the same steps and with the same chain.
//
// It speaks of one state of the expression's tree, which a host may load and walk by itself; the
// formula says at each question which state that is.
class FormulaMemory {
public:
    // Where the set has the formula under its own name, null for nowhere. Looked up only if the
    // name or the set's names have changed; a set that is no CalcSetImpl tells nothing.
    const CObject* FormulasWith(ICalculationSet& calcSet, const CString& name,
                                const FormulaImpl* formula)
    {
        if (!m_Set)
            m_Set = dynamic_cast<const CalcSetImpl*>(&calcSet);
        if (!m_Set)
            return nullptr;
        const std::uint64_t state = OwnObjects::NestedState(*m_Set);
        if (state != m_NamesState || name != m_Name) {
            m_Formulas = OwnObjects::FormulasWith(*m_Set, name, formula);
            m_NamesState = state;
            m_Name = name;
        }
        return m_Formulas;
    }

    bool IsValidated(std::uint64_t treeState) const { return Holds(m_Validated, treeState); }
    void NoteValidated(std::uint64_t treeState) { Note(m_Validated, treeState); }

    // With a list, only if another walk into it could not change an in-condition flag: a first
    // meeting writes them, a later one raises them if it is inside a condition.
    bool IsCalculated(std::uint64_t treeState, const CScannedVariables* list) const
    {
        if (!list)
            return Holds(m_Calculated, treeState);
        const bool isRaised = m_IsScannedInCondition || !CExprTree::InIfCondition();
        return list == m_List && isRaised && Holds(m_Scanned, treeState);
    }
    void NoteCalculated(std::uint64_t treeState, const CScannedVariables* list)
    {
        const bool wasInCondition =
            m_IsScannedInCondition && list == m_List && m_Scanned == Pass::Now();
        // Validating comes before, and walking the tree has left it just as valid.
        m_Validated = Pass::Now();
        Note(m_Calculated, treeState);
        if (!list)
            return;
        m_Scanned = m_Calculated;
        m_List = list;
        m_IsScannedInCondition = wasInCondition || CExprTree::InIfCondition();
    }

    // What the set's text of a mathematical error would be behind the same success, had again.
    const CString& LeftStrError() const { return m_StrError; }

private:
    bool Holds(Stamp stamp, std::uint64_t treeState) const
    {
        return m_TreeState == treeState && stamp == Pass::Now();
    }
    void Note(Stamp& stamp, std::uint64_t treeState)
    {
        stamp = Pass::Now();
        m_TreeState = treeState;
        StrError::Keep(m_StrError);
    }

    Stamp m_Validated = kNeverStamped;
    Stamp m_Calculated = kNeverStamped;
    Stamp m_Scanned = kNeverStamped;
    std::uint64_t m_TreeState = 0;
    const CScannedVariables* m_List = nullptr; // of the last scan; compared, never followed
    bool m_IsScannedInCondition = false;
    CString m_StrError;

    const CalcSetImpl* m_Set = nullptr;
    // What was found in that state of the set's names, under that name.
    std::uint64_t m_NamesState = 0;
    CString m_Name;
    const CObject* m_Formulas = nullptr;
};

} // namespace tovo::detail

#endif
