#include "TreeWork.h"

#include <cassert>
#include <utility>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

namespace tovo::detail {
namespace {

// The kind of an operator's operands and of a function's arguments; an IF's condition has its own.
int KindTaken(const CExprToken& token)
{
    return token.GetTokArgType(1);
}

bool TakesNumbersOnly(const CExprToken& token)
{
    return KindTaken(token) == RT_NUMERIC;
}

// Of an IF, behind its parenthesis.
constexpr int kConditionPlace = 1;

bool IsConditionOf(const CETree& parent, const CETree* child)
{
    return parent.GetData()->GetCode() == TOK_IF && parent.GetChildIndex(child) == kConditionPlace;
}

bool MayBeginOperand(CExprToken& token)
{
    if (token.IsOperator())
        return token.SetNumArgs(1) != 0;
    return token.IsOperand() || token.IsFunction();
}

bool MayFollowOperand(CExprToken& token)
{
    if (token.IsOperator())
        return token.SetNumArgs(2) != 0;
    return token.IsComma() || token.IsRightParen();
}

bool MayFollow(const CExprToken& last, CExprToken& token)
{
    if (last.IsFunction())
        return token.IsLeftParen() != 0;
    if (last.IsOperand() || last.IsRightParen())
        return MayFollowOperand(token);
    return MayBeginOperand(token);
}

unsigned int RefusalMessage(const CExprToken& token)
{
    return token.IsPunctuation() ? token.UnexpectedTokenMsg()
                                 : static_cast<unsigned int>(MSG_GENERAL_FAILURE);
}

} // namespace

// The tree is built at a cursor, the current node, which the last token left open. A binary
// operator climbs from it, through the operators that bind at least as tightly, and puts itself
// above what it has climbed: that is its first operand. Any other token becomes the last child of
// the current node. A comma or a right parenthesis first moves the cursor up to the function that
// encloses it, which stays current after any punctuation.
//
// Whatever the cursor leaves on its way up is complete, since no later token can get below it
// again. So it is then that a node is checked and calculated: its arguments' kinds settle its own
// kinds as far as they are open, and its value is there as soon as theirs are. A fault is thus
// found no later than the node at fault is completed, and all that is constant has been calculated
// when the tree is closed.
int TreeWork::InsertToken(int code, CString text, int pos, int nested)
{
    m_Tree.m_Msg = MSG_NONE;
    auto token = std::make_unique<CExprToken>(m_Tree.CalcSet(), code, std::move(text), pos);
    CExprToken* const taken = token.get();
    if (!PutGroupBefore(*taken, pos, nested))
        return RefuseToken(*taken);

    if (!m_Tree.m_Root) {
        if (!ValidFirstToken(taken))
            return RefuseToken(*taken);
        PlantRoot(std::move(token), nested);
    } else if (!TokenOrderOK(taken)) {
        return RefuseToken(*taken);
    } else if (taken->IsBinaryOperator()) {
        if (!InsertOperator(token))
            return RefuseToken(*taken);
        if (!CheckCurrentChildren())
            return 0;
    } else if (!InsertBelow(token)) {
        return RefuseToken(*taken);
    }
    m_Tree.m_LastToken = taken;
    return 1;
}

int TreeWork::EndOfExpression()
{
    m_Tree.m_Msg = MSG_NONE;
    const bool isClosed = m_Tree.m_Current && CompleteUpToRoot();
    if (!isClosed && m_Tree.m_Msg == MSG_NONE)
        Raise(MSG_GENERAL_FAILURE, m_Tree.m_Current);
    m_Tree.m_Nested = 0;
    return isClosed ? 1 : 0;
}

int TreeWork::ValidFirstToken(CExprToken* token)
{
    return MayBeginOperand(*token) ? 1 : Raise(token->UnexpectedTokenMsg(), token);
}

int TreeWork::TokenOrderOK(CExprToken* token)
{
    assert(m_Tree.m_LastToken);
    return MayFollow(*m_Tree.m_LastToken, *token) ? 1 : Raise(token->UnexpectedTokenMsg(), token);
}

int TreeWork::InsertNewParentToken(CExprToken* token)
{
    assert(m_Tree.m_Current);
    if (TakesNumbersOnly(*token) && Current().IsBoolean())
        return Raise(MSG_UNEXPECTED_NUMERIC_OPERATOR, token);
    const CETree* const parent = m_Tree.m_Current->GetParent();
    if (parent && TakesNumbersOnly(*parent->GetData()) && token->IsBoolean() &&
        !IsConditionOf(*parent, m_Tree.m_Current))
        return Raise(MSG_UNEXPECTED_LOGICAL_OPERATOR, token);

    m_Tree.m_Current = m_Tree.m_Current->InsertNode();
    m_Tree.m_Current->PutData(token);
    if (!m_Tree.m_Current->GetParent())
        m_Tree.m_Root = m_Tree.m_Current;
    return 1;
}

int TreeWork::InsertChildToken(CExprToken* token)
{
    const CExprToken& current = Current();
    const int children = m_Tree.m_Current->NumChildren();
    if (current.IsOperator() && TakesNumbersOnly(current) && token->IsBoolean())
        return Raise(MSG_PARAMETER_NOT_NUMERIC, token);
    if (current.IsFunction() && children > 0 && children % 2 == 0) {
        const int arguments = children / 2;
        if (arguments >= current.GetMaxArgs() && !token->IsRightParen())
            return Raise(MSG_RPAREN_EXPECTED, token);
        if (arguments < current.GetMinArgs() && !token->IsComma())
            return Raise(MSG_COMMA_EXPECTED, token);
    }

    m_Tree.m_Current = m_Tree.m_Current->AddChild(nullptr);
    m_Tree.m_Current->PutData(token);
    return 1;
}

int TreeWork::MoveUpToFunction(int closed)
{
    for (bool passesOver = closed != 0; passesOver || !Current().IsFunction(); passesOver = false) {
        if (!CalcCurrentNode(nullptr) || !m_Tree.m_Current->GetParent())
            return 0;
        m_Tree.m_Current = m_Tree.m_Current->GetParent();
        if (!CheckCurrentChildren())
            return 0;
    }
    return 1;
}

int TreeWork::CheckCurrentChildren()
{
    const CExprToken& current = Current();
    if (!current.IsFunction() && !current.IsOperator())
        return 1;
    // The arguments of a function stand between punctuation.
    const int first = current.IsFunction() ? 1 : 0;
    const int step = current.IsFunction() ? 2 : 1;
    for (int index = first; index < m_Tree.m_Current->NumChildren(); index += step)
        if (!ChildIsOk(index))
            return 0;
    return 1;
}

int TreeWork::ChildIsOk(int index)
{
    CExprToken& parent = Current();
    assert(index >= 0 && index < m_Tree.m_Current->NumChildren());
    const int kind = m_Tree.m_Current->GetChild(index)->GetData()->GetReturnType();
    if (parent.GetCode() == TOK_IF && index == kConditionPlace)
        return kind == RT_BOOLEAN ? 1 : Raise(MSG_PARAMETER_NOT_YES_NO, &parent);
    if (!parent.SetArgType(kind))
        return RaiseWrongKind(index);
    parent.SetReturnType(kind);
    return 1;
}

// A first operand of the wrong kind is the operator's fault, whatever comes later is the
// argument's.
int TreeWork::RaiseWrongKind(int index)
{
    CExprToken& parent = Current();
    const bool blamesOperator = parent.IsOperator() && index == 0;
    if (KindTaken(parent) == RT_BOOLEAN)
        return Raise(blamesOperator ? MSG_UNEXPECTED_LOGICAL_OPERATOR : MSG_PARAMETER_NOT_YES_NO,
                     &parent);
    return Raise(blamesOperator ? MSG_UNEXPECTED_NUMERIC_OPERATOR : MSG_PARAMETER_NOT_NUMERIC,
                 &parent);
}

int TreeWork::Raise(unsigned int message, CObject* object)
{
    m_Tree.m_Msg = message;
    m_Tree.CalcSet().ErrorTracker().SetError(message, object);
    return 0;
}

int TreeWork::RefuseToken(CExprToken& token)
{
    if (m_Tree.m_Msg == MSG_NONE)
        Raise(RefusalMessage(token), &token);
    return 0;
}

bool TreeWork::PutGroupBefore(const CExprToken& token, int pos, int nested)
{
    const bool hasFunction = m_Tree.m_LastToken && m_Tree.m_LastToken->IsFunction();
    if (!token.IsLeftParen() || hasFunction || InsertToken(TOK_GROUP, CString(), pos, nested))
        return true;
    // To a person it is the parenthesis that has no place here, not a function.
    if (m_Tree.m_Msg == MSG_UNEXPECTED_FUNCTION)
        m_Tree.m_Msg = MSG_UNEXPECTED_LPAREN;
    return false;
}

void TreeWork::PlantRoot(std::unique_ptr<CExprToken> token, int nested)
{
    m_Tree.m_Root = m_Tree.m_Current = new CETree(nullptr, token.get());
    (void)token.release();
    m_Tree.m_Nested = nested;
}

bool TreeWork::InsertOperator(std::unique_ptr<CExprToken>& token)
{
    if (!ClimbAbove(token->GetPrecedence()) || !CalcCurrentNode(nullptr) ||
        !InsertNewParentToken(token.get()))
        return false;
    (void)token.release();
    return true;
}

// Moves the cursor up through the operators that bind at least as tightly; equal precedence climbs,
// so operators group from the left.
bool TreeWork::ClimbAbove(int precedence)
{
    for (CETree* parent = m_Tree.m_Current->GetParent();
         parent && parent->GetData()->IsOperator() &&
         precedence <= parent->GetData()->GetPrecedence();
         parent = m_Tree.m_Current->GetParent()) {
        if (!CalcCurrentNode(nullptr))
            return false;
        m_Tree.m_Current = parent;
    }
    return true;
}

bool TreeWork::InsertBelow(std::unique_ptr<CExprToken>& token)
{
    const CExprToken& taken = *token;
    const bool isClosed = Current().IsFunction() && Current().IsLoaded();
    if ((taken.IsComma() || taken.IsRightParen()) && !MoveUpToFunction(isClosed ? 1 : 0))
        return false;
    if (!InsertChildToken(token.get()))
        return false;
    (void)token.release();
    if (!taken.IsPunctuation())
        return true;
    if (!MoveUpToFunction(0))
        return false;
    if (taken.IsComma())
        return CheckCurrentChildren() != 0;
    return taken.IsLeftParen() || CalcCurrentNode(nullptr);
}

bool TreeWork::CompleteUpToRoot()
{
    while (CalcCurrentNode(nullptr)) {
        if (!m_Tree.m_Current->GetParent())
            return true;
        m_Tree.m_Current = m_Tree.m_Current->GetParent();
    }
    return false;
}

} // namespace tovo::detail
