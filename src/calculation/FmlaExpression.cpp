#include <TovoFormula/FmlaExpression.h>

#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/MessageIds.h>

#include "../expression_core/Pass.h"
#include "BoundWork.h"

using namespace tovo::detail;

thread_local CStringList CFmlaExpression::m_NestedFmlaNames;

CFmlaExpression::CFmlaExpression(ICalculationSet& calcSet) : m_Tree(calcSet), m_CalcSet(&calcSet)
{}

CFmlaExpression::CFmlaExpression(const CFmlaExpression& other)
    : CFmlaExprBase(), m_Tree(*other.m_CalcSet), m_CalcSet(other.m_CalcSet)
{
    SetExpr(other);
    m_InvalidPos = other.m_InvalidPos;
    m_ScanPos = other.m_ScanPos;
}

CFmlaExpression::~CFmlaExpression() = default;

CFmlaExprBase* CFmlaExpression::Clone()
{
    auto copy = std::make_unique<CFmlaExpression>(CalcSet());
    *copy = *this;
    return copy.release();
}

void CFmlaExpression::ClearExpr()
{
    CFmlaExprBase::ClearExpr();
    BoundWork(*this).ForgetTree();
}

void CFmlaExpression::TrackError(unsigned int message)
{
    BoundWork(*this).Fail(message);
}

CFmlaExpression& CFmlaExpression::operator=(CFmlaExpression& other)
{
    if (this == &other)
        return *this;
    CFmlaExprBase::operator=(other);
    BoundWork(*this).ForgetTree();
    return *this;
}

void CFmlaExpression::SetExpr(const CFmlaExpression& source)
{
    CString text = source.m_ExprText;
    const int length = text.GetLength();
    const int last = source.NumVars() - 1;
    const bool lacksBlank = last >= 0 && length == source.VarEndPos(last) - 1;
    if (lacksBlank && length < m_ExprTextLimit)
        text += u' ';
    SetExpr(text, source.m_VarPtrs);
}

int CFmlaExpression::LoadExpressionTree(int nested)
{
    const Pass pass;
    return BoundWork(*this).Load(nested);
}

int CFmlaExpression::IsValid(unsigned int& message, CString name, int nested)
{
    const Pass pass;
    return BoundWork(*this).Validate(message, name, nested);
}

int CFmlaExpression::IsValid()
{
    unsigned int message = MSG_NONE;
    return IsValid(message, CString(), 0);
}

int CFmlaExpression::Calculate(CScannedVariables* list)
{
    const Pass pass;
    return BoundWork(*this).Calculate(list);
}

double CFmlaExpression::GetValue() const
{
    return m_State && m_State->isLoadedByProgram ? m_State->value : m_Tree.GetValue();
}

int CFmlaExpression::IsLoaded() const
{
    return m_State && m_State->isLoadedByProgram ? 1 : m_Tree.IsLoaded();
}

int CFmlaExpression::IsCalculated() const
{
    return m_State && m_State->isLoadedByProgram ? 1 : m_Tree.IsCalculated();
}

int CFmlaExpression::IsNumeric() const
{
    if (m_State && m_State->isLoadedByProgram)
        return m_State->program->IsBoolean() ? 0 : 1;
    return m_Tree.IsNumeric();
}

int CFmlaExpression::IsBoolean() const
{
    if (m_State && m_State->isLoadedByProgram)
        return m_State->program->IsBoolean() ? 1 : 0;
    return m_Tree.IsBoolean();
}

void CFmlaExpression::GetVariables(CScannedVariables& list, int all, int clear)
{
    const Pass pass;
    if (clear)
        CalcSet().ClearScannedFlags(1);
    if (all)
        BoundWork(*this).ScanStatically(list, all);
    else
        BoundWork(*this).Calculate(&list);
}

int CFmlaExpression::CheckNestedFormula(CString name)
{
    const Pass pass;
    return BoundWork(*this).CheckNestedReference(TOK_FORMULA, name);
}

int CFmlaExpression::CheckNestedFormtbl(CString name)
{
    const Pass pass;
    return BoundWork(*this).CheckNestedReference(TOK_FORMTBL, name);
}

int CFmlaExpression::NestedFormulasOK()
{
    const Pass pass;
    return BoundWork(*this).NestedFormulasOK();
}
