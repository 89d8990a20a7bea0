#include "Grammar.h"

#include <TovoFormula/ExprToken.h>

namespace tovo::job {

namespace {

// What stands inside parentheses may be a comparison, even where it has to evaluate to yes or no.
Expected WantedInside(Expected outside)
{
    return outside == Expected::Number ? Expected::Number : Expected::AnyOperand;
}

} // namespace

void Grammar::Take(int code)
{
    const std::size_t element = m_Elements++;
    switch (CExprToken::GetTokCodeType(code)) {
    case TT_CONSTANT:
    case TT_VARVALUE:
        m_Here = Expected::Operator;
        return;
    case TT_FUNCTION:
        m_WantedOfFunction = TakesOperand() ? m_Here : Expected::AnyOperand;
        m_Function = code;
        m_Here = Expected::Parenthesis;
        return;
    case TT_OPERATOR:
        return TakeOperator(code);
    case TT_PUNCTUATION:
        break;
    default:
        // An unknown sign may have been meant as an operator.
        m_Here = Expected::AnyOperand;
        return;
    }
    if (code == TOK_LPAREN) {
        if (m_Here == Expected::Parenthesis)
            m_Open.push_back({m_Function, element - 1, 0, m_WantedOfFunction});
        else
            m_Open.push_back(
                {TOK_GROUP, element, 0, TakesOperand() ? m_Here : Expected::AnyOperand});
        m_Here = ArgumentWanted();
    } else if (code == TOK_COMMA) {
        if (!m_Open.empty())
            ++m_Open.back().commas;
        m_Here = ArgumentWanted();
    } else {
        if (!m_Open.empty())
            m_Open.pop_back();
        m_Here = Expected::Operator;
    }
}

void Grammar::TakeOperator(int code)
{
    if (code == TOK_NOT)
        m_Here = Expected::YesNo;
    else if (CExprToken::GetTokCodeArgType(code) == RT_NUMERIC)
        m_Here = Expected::Number;
    else
        m_Here = Expected::AnyOperand;
}

// What an operand has to be at the beginning of the argument that one is in.
Expected Grammar::ArgumentWanted() const
{
    if (m_Open.empty())
        return m_Resulting;
    const OpenCall& call = m_Open.back();
    if (call.function == TOK_IF && call.commas == 0)
        return Expected::AnyOperand;
    if (call.function == TOK_IF || call.function == TOK_GROUP)
        return WantedInside(call.wanted);
    return Expected::Number;
}

} // namespace tovo::job
