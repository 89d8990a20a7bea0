#include <TovoFormula/ExprToken.h>

#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "BlockCache.h"
#include "Names.h"
#include "TokenCatalogue.h"
#include "UserLanguage.h"

using tovo::detail::CatalogueOf;
using tovo::detail::CatalogueRow;

namespace {

double InitialValue(int code, const CString& text)
{
    return code == TOK_NUMBER ? tovo::ParseDouble(text, tovo::detail::LocalDecimalSeparator())
                              : tovo::detail::ValueOfConstant(code);
}

// Constants, punctuation and what is illegal need nothing from anywhere.
bool IsCompleteAtOnce(int type)
{
    return type != TT_VARVALUE && type != TT_OPERATOR && type != TT_FUNCTION;
}

} // namespace

int CExprToken::GetTokCodeNameId(int code)
{
    return CatalogueOf(code).nameId;
}

int CExprToken::GetTokCodeType(int code)
{
    return CatalogueOf(code).type;
}

int CExprToken::GetTokCodePrecedence(int code)
{
    return CatalogueOf(code).precedence;
}

int CExprToken::GetTokCodeMinArgs(int code)
{
    return CatalogueOf(code).minArgs;
}

int CExprToken::GetTokCodeMaxArgs(int code)
{
    return CatalogueOf(code).maxArgs;
}

int CExprToken::GetTokCodeReturnType(int code)
{
    return CatalogueOf(code).returns;
}

int CExprToken::GetTokCodeArgType(int code)
{
    return CatalogueOf(code).takes;
}

CExprToken::CExprToken(ICalculationSet& calcSet, int code, CString text, int pos)
    : m_Code(code >= 0 && code < kTokenCount ? code : TOK_ILLEGAL),
      m_Text(std::move(text)),
      m_Pos(pos),
      m_CalcError(MSG_NONE),
      m_CalcSet(calcSet)
{
    const CatalogueRow& row = CatalogueOf(m_Code);
    m_NameId = row.nameId;
    m_Type = row.type;
    m_ReturnType = row.returns;
    m_Precedence = row.precedence;
    m_MinArgs = row.minArgs;
    m_MaxArgs = row.maxArgs;
    m_ArgType = row.takes;
    m_Loaded = m_Calculated = IsCompleteAtOnce(m_Type) ? 1 : 0;
    m_Value = InitialValue(m_Code, m_Text);
    if (m_Type == TT_VARVALUE && m_ReturnType == RT_ANY)
        m_ReturnType = tovo::detail::KindOfReference(m_Text.View());
}

CExprToken::~CExprToken() = default;

void* CExprToken::operator new(std::size_t size)
{
    return tovo::detail::BlockCache<sizeof(CExprToken)>::Allocate(size);
}

void CExprToken::operator delete(void* memory, std::size_t size) noexcept
{
    tovo::detail::BlockCache<sizeof(CExprToken)>::Free(memory, size);
}

int CExprToken::SetNumArgs(int count)
{
    if (m_MinArgs != m_MaxArgs && count >= m_MinArgs && count <= m_MaxArgs) {
        m_MinArgs = m_MaxArgs = count;
        if (m_Code == TOK_MINUS && count == 1)
            m_Precedence = tovo::detail::kUnaryPrecedence;
    }
    return m_MinArgs == count ? 1 : 0;
}

CString CExprToken::GetName() const
{
    return tovo::detail::BareName(m_Text);
}

unsigned int CExprToken::UnexpectedTokenMsg() const
{
    switch (static_cast<TOKEN_TYPE>(m_Type)) {
    case TT_CONSTANT:
    case TT_VARVALUE:
        return MSG_UNEXPECTED_OPERAND;
    case TT_OPERATOR:
        return MSG_UNEXPECTED_OPERATOR;
    case TT_FUNCTION:
        return MSG_UNEXPECTED_FUNCTION;
    case TT_PUNCTUATION:
        if (IsComma())
            return MSG_UNEXPECTED_COMMA;
        return IsLeftParen() ? MSG_UNEXPECTED_LPAREN : MSG_UNEXPECTED_RPAREN;
    case TT_ILLEGAL:
        break;
    }
    return MSG_UNRECOGNIZED_ELEMENT;
}
