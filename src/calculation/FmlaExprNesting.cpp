#include <TovoFormula/FmlaExpression.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "../expression_core/ScanRecord.h"
#include "StaticScan.h"

using namespace tovo::detail;

namespace {

template <typename Object>
int IsSound(Object& object, unsigned int& message)
{
    const NestedCall call(object);
    return object.IsValid(message, 1);
}

// A stock formula is in the pass of the one that names it.
int IsSound(IFormulaObj& formula, unsigned int& message)
{
    return AsOwn(formula) ? OwnObjects::Validate(formula, message)
                          : IsSound<IFormulaObj>(formula, message);
}

struct TreeReference {
    int code;
    CString text; // with its blanks
};

// Taken down before anything is called that might rebuild the tree.
std::vector<TreeReference> ReferencesIn(const CExprTree& tree)
{
    std::vector<TreeReference> references;
    for (POSITION pos = tree.FindFirstVarFmlOrTbl(); pos;) {
        TreeReference found;
        pos = tree.GetNextVarFmlOrTbl(0, pos, found.text, found.code);
        references.push_back(std::move(found));
    }
    return references;
}

} // namespace

int CFmlaExpression::CheckNestedFormula(CString name)
{
    const Pass pass;
    return CheckNestedReference(TOK_FORMULA, name);
}

int CFmlaExpression::CheckNestedFormtbl(CString name)
{
    const Pass pass;
    return CheckNestedReference(TOK_FORMTBL, name);
}

int CFmlaExpression::NestedFormulasOK()
{
    const Pass pass;
    for (const auto& [code, text] : ReferencesIn(m_Tree))
        if (!CheckNestedReference(code, text))
            return 0;
    return 1;
}

// Tokens of another kind have nothing to check.
int CFmlaExpression::CheckNestedReference(int code, const CString& text)
{
    if (code != TOK_FORMULA && code != TOK_FORMTBL)
        return 1;
    const CString name = BareName(text);
    return code == TOK_FORMULA ? CheckNested(CalcSet().GetFormulaObj(name), name)
                               : CheckNested(CalcSet().GetFormulaTableObj(name), name);
}

int CFmlaExpression::CheckNested(IFormulaObj* formula, const CString& name)
{
    return formula ? CheckFound(*formula) : FailMissing(MSG_FORMULA_NOT_FOUND, u"Formula: " + name);
}

int CFmlaExpression::CheckNested(IFormulaTableObj* table, const CString& name)
{
    return table ? CheckFound(*table)
                 : FailMissing(MSG_FORMTBL_NOT_FOUND, u"Formula table : " + name);
}

int CFmlaExpression::FailMissing(unsigned int message, const CString& missing)
{
    m_MessageNum = static_cast<int>(message);
    CalcSet().ErrorTracker().SetError(message, this, missing);
    return 0;
}

// A failure below comes back through this expression's own message.
template <typename Object>
int CFmlaExpression::CheckFound(Object& object)
{
    auto message = static_cast<unsigned int>(m_MessageNum);
    if (IsSound(object, message))
        return 1;
    m_MessageNum = static_cast<int>(message);
    return 0;
}

void CFmlaExpression::ScanStatically(CScannedVariables& list, int all)
{
    StaticScan scan(list);
    if (scan.IsTooDeep() || !scan.Enters(this))
        return;
    const auto scanNested = [&](auto* object) {
        if (!object)
            return;
        const NestedCall call(*object);
        if (!object->GetScanned() && scan.Enters(object))
            object->GetVariables(list, all, 0);
    };
    for (const auto& [code, text] : ReferencesIn(m_Tree)) {
        const CString name = BareName(text);
        if (code == TOK_FORMULA)
            scanNested(CalcSet().GetFormulaObj(name));
        else if (code == TOK_FORMTBL)
            scanNested(CalcSet().GetFormulaTableObj(name));
        else
            AddOnce(list, name);
    }
}
