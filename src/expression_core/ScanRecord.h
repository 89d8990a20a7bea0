#ifndef TOVOFORMULA_SRC_SCANRECORD_H
#define TOVOFORMULA_SRC_SCANRECORD_H

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/ScannedVariables.h>

#include "Pass.h"

namespace tovo::detail {

// Whoever is read in a scan records it by one rule: the first meeting writes the in-condition flag
// both ways, a later one can only raise it. So the flag ends up saying whether any meeting was
// inside a condition.
template <typename SetInCondition>
void RecordMeeting(bool isFirst, SetInCondition setInCondition)
{
    const bool inCondition = CExprTree::InIfCondition() != 0;
    if (isFirst || inCondition)
        setInCondition(inCondition ? 1 : 0);
}

// Tells whether the name is new to the list.
inline bool AddOnce(CScannedVariables& list, const CString& name)
{
    if (list.Find(name))
        return false;
    list.AddTail(name);
    return true;
}

// One variable may be met under two names, and the first meeting under the second takes back what a
// meeting under the first has raised. Then no scan counts as done, so that it is raised again.
inline void RecordVariable(CScannedVariables& list, const CString& name, IVarObj& variable)
{
    RecordMeeting(AddOnce(list, name), [&](int inCondition) {
        if (!inCondition && variable.InCond())
            Pass::NoteFlagLowered();
        variable.SetInCond(inCondition);
    });
}

} // namespace tovo::detail

#endif
