#include <TovoFormula/ExprTree.h>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

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

int CExprTree::InsertToken(int code, CString text, int pos, int nested)
{
    m_Msg = MSG_NONE;
    auto token = std::make_unique<CExprToken>(CalcSet(), code, std::move(text), pos);
    CExprToken* const taken = token.get();
    if (!PutGroupBefore(*taken, pos, nested))
        return RefuseToken(*taken);

    if (!m_Root) {
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
    m_LastToken = taken;
    return 1;
}

int CExprTree::EndOfExpression()
{
    m_Msg = MSG_NONE;
    const bool isClosed = m_Current && CompleteUpToRoot();
    if (!isClosed && m_Msg == MSG_NONE)
        Raise(MSG_GENERAL_FAILURE, m_Current);
    m_Nested = 0;
    return isClosed ? 1 : 0;
}

int CExprTree::ValidFirstToken(CExprToken* token)
{
    return MayBeginOperand(*token) ? 1 : Raise(token->UnexpectedTokenMsg(), token);
}

int CExprTree::TokenOrderOK(CExprToken* token)
{
    return MayFollow(*m_LastToken, *token) ? 1 : Raise(token->UnexpectedTokenMsg(), token);
}

int CExprTree::InsertNewParentToken(CExprToken* token)
{
    if (TakesNumbersOnly(*token) && Current()->IsBoolean())
        return Raise(MSG_UNEXPECTED_NUMERIC_OPERATOR, token);
    const CETree* const parent = m_Current->GetParent();
    if (parent && TakesNumbersOnly(*parent->GetData()) && token->IsBoolean() &&
        !IsConditionOf(*parent, m_Current))
        return Raise(MSG_UNEXPECTED_LOGICAL_OPERATOR, token);

    m_Current = m_Current->InsertNode();
    m_Current->PutData(token);
    if (!m_Current->GetParent())
        m_Root = m_Current;
    return 1;
}

int CExprTree::InsertChildToken(CExprToken* token)
{
    const CExprToken& current = *Current();
    const int children = m_Current->NumChildren();
    if (current.IsOperator() && TakesNumbersOnly(current) && token->IsBoolean())
        return Raise(MSG_PARAMETER_NOT_NUMERIC, token);
    if (current.IsFunction() && children > 0 && children % 2 == 0) {
        const int arguments = children / 2;
        if (arguments >= current.GetMaxArgs() && !token->IsRightParen())
            return Raise(MSG_RPAREN_EXPECTED, token);
        if (arguments < current.GetMinArgs() && !token->IsComma())
            return Raise(MSG_COMMA_EXPECTED, token);
    }

    m_Current = m_Current->AddChild(nullptr);
    m_Current->PutData(token);
    return 1;
}

int CExprTree::MoveUpToFunction(int closed)
{
    for (bool passesOver = closed != 0; passesOver || !Current()->IsFunction();
         passesOver = false) {
        if (!CalcCurrentNode(nullptr) || !m_Current->GetParent())
            return 0;
        m_Current = m_Current->GetParent();
        if (!CheckCurrentChildren())
            return 0;
    }
    return 1;
}

int CExprTree::CheckCurrentChildren()
{
    const CExprToken& current = *Current();
    if (!current.IsFunction() && !current.IsOperator())
        return 1;
    // The arguments of a function stand between punctuation.
    const int first = current.IsFunction() ? 1 : 0;
    const int step = current.IsFunction() ? 2 : 1;
    for (int index = first; index < m_Current->NumChildren(); index += step)
        if (!ChildIsOk(index))
            return 0;
    return 1;
}

int CExprTree::ChildIsOk(int index)
{
    CExprToken& parent = *Current();
    const int kind = m_Current->GetChild(index)->GetData()->GetReturnType();
    if (parent.GetCode() == TOK_IF && index == kConditionPlace)
        return kind == RT_BOOLEAN ? 1 : Raise(MSG_PARAMETER_NOT_YES_NO, &parent);
    if (!parent.SetArgType(kind))
        return RaiseWrongKind(index);
    parent.SetReturnType(kind);
    return 1;
}

// A first operand of the wrong kind is the operator's fault, whatever comes later is the
// argument's.
int CExprTree::RaiseWrongKind(int index)
{
    CExprToken& parent = *Current();
    const bool blamesOperator = parent.IsOperator() && index == 0;
    if (KindTaken(parent) == RT_BOOLEAN)
        return Raise(blamesOperator ? MSG_UNEXPECTED_LOGICAL_OPERATOR : MSG_PARAMETER_NOT_YES_NO,
                     &parent);
    return Raise(blamesOperator ? MSG_UNEXPECTED_NUMERIC_OPERATOR : MSG_PARAMETER_NOT_NUMERIC,
                 &parent);
}

// Reports on the token, unless something more telling was raised already.
int CExprTree::RefuseToken(CExprToken& token)
{
    if (m_Msg == MSG_NONE)
        Raise(RefusalMessage(token), &token);
    return 0;
}

// A parenthesis that follows no function name gets a nameless function to belong to.
bool CExprTree::PutGroupBefore(const CExprToken& token, int pos, int nested)
{
    const bool hasFunction = m_LastToken && m_LastToken->IsFunction();
    if (!token.IsLeftParen() || hasFunction || InsertToken(TOK_GROUP, CString(), pos, nested))
        return true;
    // To a person it is the parenthesis that has no place here, not a function.
    if (m_Msg == MSG_UNEXPECTED_FUNCTION)
        m_Msg = MSG_UNEXPECTED_LPAREN;
    return false;
}

void CExprTree::PlantRoot(std::unique_ptr<CExprToken> token, int nested)
{
    m_Root = m_Current = new CETree(nullptr, token.get());
    (void)token.release();
    m_Nested = nested;
}

bool CExprTree::InsertOperator(std::unique_ptr<CExprToken>& token)
{
    if (!ClimbAbove(token->GetPrecedence()) || !CalcCurrentNode(nullptr) ||
        !InsertNewParentToken(token.get()))
        return false;
    (void)token.release();
    return true;
}

// Moves the cursor up through the operators that bind at least as tightly; equal precedence climbs,
// so operators group from the left.
bool CExprTree::ClimbAbove(int precedence)
{
    for (CETree* parent = m_Current->GetParent(); parent && parent->GetData()->IsOperator() &&
                                                  precedence <= parent->GetData()->GetPrecedence();
         parent = m_Current->GetParent()) {
        if (!CalcCurrentNode(nullptr))
            return false;
        m_Current = parent;
    }
    return true;
}

bool CExprTree::InsertBelow(std::unique_ptr<CExprToken>& token)
{
    const CExprToken& taken = *token;
    const bool isClosed = Current()->IsFunction() && Current()->IsLoaded();
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

bool CExprTree::CompleteUpToRoot()
{
    while (CalcCurrentNode(nullptr)) {
        if (!m_Current->GetParent())
            return true;
        m_Current = m_Current->GetParent();
    }
    return false;
}
