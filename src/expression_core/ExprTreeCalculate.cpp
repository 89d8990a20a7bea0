#include <TovoFormula/ExprTree.h>

#include <array>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

#include "IfDepthGuard.h"
#include "TokenCatalogue.h"

namespace {

int ArgumentPlace(const CExprToken& token, int argument)
{
    return token.IsFunction() ? 2 * argument + 1 : argument;
}

int NumArguments(const CETree& node)
{
    const int children = node.NumChildren();
    return node.GetData()->IsFunction() ? children / 2 : children;
}

// A function is closed by its right parenthesis, not by a comma that nothing follows.
bool IsOpen(const CETree& function)
{
    const int children = function.NumChildren();
    return children % 2 == 0 || function.GetChild(children - 1)->GetData()->IsComma();
}

unsigned int MessageOfOpenFunction(const CExprToken& token, int children)
{
    if (children % 2 != 0)
        return MSG_GENERAL_FAILURE;
    if (children / 2 < token.GetMinArgs())
        return MSG_COMMA_EXPECTED;
    return children / 2 < token.GetMaxArgs() ? MSG_COMMA_OR_RPAREN_EXPECTED : MSG_RPAREN_EXPECTED;
}

// An IF has no use for the branch that its condition rules out.
bool Counts(const CExprToken& token, const double* args, int argument)
{
    if (token.GetCode() != TOK_IF || argument == 0)
        return true;
    const bool isTrue = args[0] != 0.0;
    return isTrue == (argument == 1);
}

bool IsReference(const CExprToken& token)
{
    return token.IsVariable() || token.IsFormula() || token.IsFormtbl();
}

} // namespace

int CExprTree::Calculate(CScannedVariables* list)
{
    if (!m_Root)
        return 0;
    const tovo::detail::IfDepthGuard depth(m_InIfConditionCount);
    m_Current = m_Root->FindFirstTwig();
    while (CalculateActiveNode(list)) {
        CETree* const parent = m_Current->GetParent();
        if (!parent) {
            m_Current = nullptr;
            return 1;
        }
        CETree* const next = parent->GetNextActiveChild(m_Current, m_InIfConditionCount);
        m_Current = next ? next->FindFirstTwig() : parent;
    }
    return 0;
}

int CExprTree::CalcCurrentNode(CScannedVariables* list)
{
    CExprToken& token = *Current();
    if (!m_Nested && (token.IsFormula() || token.IsFormtbl()))
        return 1;
    return CheckCurrentChildren() && CheckArgumentCount() ? CalcFromChildren(list) : 0;
}

int CExprTree::CalcFromChildren(CScannedVariables* list)
{
    CExprToken& token = *Current();
    const int numArgs = NumArguments(*m_Current);
    std::array<double, tovo::detail::kMaxArguments> args;
    if (m_IsShapeOnly) {
        token.SetCalculated(1);
    } else if (CollectArguments(args.data(), numArgs) &&
               !token.Calculate(numArgs > 0 ? args.data() : nullptr, numArgs, 1, list)) {
        m_Msg = token.GetCalculationError();
        return 0;
    }
    token.SetLoaded(1);
    return 1;
}

int CExprTree::CheckArgumentCount()
{
    CExprToken& token = *Current();
    if (token.IsFunction() && IsOpen(*m_Current))
        return Raise(MessageOfOpenFunction(token, m_Current->NumChildren()), &token);
    const int numArgs = NumArguments(*m_Current);
    if (numArgs < token.GetMinArgs() || numArgs > token.GetMaxArgs())
        return Raise(MSG_GENERAL_FAILURE, &token);
    return 1;
}

// Whether all values that count are there. What does not count is handed on all the same.
bool CExprTree::CollectArguments(double* args, int numArgs) const
{
    const CExprToken& token = *Current();
    bool areThere = true;
    for (int argument = 0; argument < numArgs; ++argument) {
        const CExprToken& child = *m_Current->GetChild(ArgumentPlace(token, argument))->GetData();
        args[argument] = child.GetValue();
        areThere = areThere && (child.IsCalculated() || !Counts(token, args, argument));
    }
    return areThere;
}

int CExprTree::CalculateActiveNode(CScannedVariables* list)
{
    CExprToken& token = *Current();
    const int result = IsReference(token) ? token.Calculate(nullptr, 0, 1, list)
                       : token.IsLoaded() ? CalcFromChildren(list) // was checked when it was built
                                          : CalcCurrentNode(list);
    if (m_Msg == MSG_NONE && !token.IsCalculated()) {
        m_Msg = token.GetCalculationError();
        return 0;
    }
    return result;
}
