#include "TreeWork.h"

#include <array>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

#include "IfDepthGuard.h"
#include "TokenCatalogue.h"

namespace tovo::detail {
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

// The walk is a post-order over the active nodes, in a loop: from the first twig of the root, from
// each node to the first twig of its next active sibling, or to its parent if there is none. The
// parent names that sibling, and an IF leaves out the branch that its condition rules out; by then
// the condition has been calculated, as it stands further left. So each active node is calculated
// once, after its children and from their present values; a skipped branch keeps the values of an
// earlier walk. The depth of conditions goes up and down as the walk enters and leaves the
// condition of an IF, and is as it was found when the walk ends early.
//
// The kinds of a node that was completed while the tree was built are known to fit, so they are
// compared only for a node that waited for a reference. The first failure ends the walk, and the
// nodes above it keep what they have.
int TreeWork::Calculate(CScannedVariables* list)
{
    if (!m_Tree.m_Root)
        return 0;
    const IfDepthGuard depth(CExprTree::m_InIfConditionCount);
    m_Tree.m_Current = m_Tree.m_Root->FindFirstTwig();
    while (CalculateActiveNode(list)) {
        CETree* const parent = m_Tree.m_Current->GetParent();
        if (!parent) {
            m_Tree.m_Current = nullptr;
            return 1;
        }
        CETree* const next =
            parent->GetNextActiveChild(m_Tree.m_Current, CExprTree::m_InIfConditionCount);
        m_Tree.m_Current = next ? next->FindFirstTwig() : parent;
    }
    return 0;
}

int TreeWork::CalcCurrentNode(CScannedVariables* list)
{
    CExprToken& token = Current();
    if (!m_Tree.m_Nested && (token.IsFormula() || token.IsFormtbl()))
        return 1;
    return CheckCurrentChildren() && CheckArgumentCount() ? CalcFromChildren(list) : 0;
}

int TreeWork::CalcFromChildren(CScannedVariables* list)
{
    CExprToken& token = Current();
    const int numArgs = NumArguments(*m_Tree.m_Current);
    std::array<double, kMaxArguments> args;
    if (m_Tree.m_IsShapeOnly) {
        token.SetCalculated(1);
    } else if (CollectArguments(args.data(), numArgs) &&
               !token.Calculate(numArgs > 0 ? args.data() : nullptr, numArgs, 1, list)) {
        m_Tree.m_Msg = token.GetCalculationError();
        return 0;
    }
    token.SetLoaded(1);
    return 1;
}

int TreeWork::CheckArgumentCount()
{
    CExprToken& token = Current();
    if (token.IsFunction() && IsOpen(*m_Tree.m_Current))
        return Raise(MessageOfOpenFunction(token, m_Tree.m_Current->NumChildren()), &token);
    const int numArgs = NumArguments(*m_Tree.m_Current);
    if (numArgs < token.GetMinArgs() || numArgs > token.GetMaxArgs())
        return Raise(MSG_GENERAL_FAILURE, &token);
    return 1;
}

// Whether all values that count are there. What does not count is handed on all the same.
bool TreeWork::CollectArguments(double* args, int numArgs) const
{
    const CExprToken& token = Current();
    bool areThere = true;
    for (int argument = 0; argument < numArgs; ++argument) {
        const CExprToken& child =
            *m_Tree.m_Current->GetChild(ArgumentPlace(token, argument))->GetData();
        args[argument] = child.GetValue();
        areThere = areThere && (child.IsCalculated() || !Counts(token, args, argument));
    }
    return areThere;
}

int TreeWork::CalculateActiveNode(CScannedVariables* list)
{
    CExprToken& token = Current();
    const int result = IsReference(token) ? token.Calculate(nullptr, 0, 1, list)
                       : token.IsLoaded() ? CalcFromChildren(list) // was checked when it was built
                                          : CalcCurrentNode(list);
    if (m_Tree.m_Msg == MSG_NONE && !token.IsCalculated()) {
        m_Tree.m_Msg = token.GetCalculationError();
        return 0;
    }
    return result;
}

} // namespace tovo::detail
