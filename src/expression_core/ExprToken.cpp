#include <TovoFormula/ExprToken.h>

#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/NumberText.h>

#include "BlockCache.h"
#include "LocalNumbers.h"
#include "Names.h"
#include "TokenCatalogue.h"

using tovo::detail::CatalogueOf;
using tovo::detail::CatalogueRow;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kYes = 1.0;

// What a unary minus binds with: as tightly as NOT.
constexpr int kUnaryPrecedence = 6;

double InitialValue(int code, const CString& text)
{
    switch (code) {
    case TOK_NUMBER:
        return tovo::ParseDouble(text, tovo::detail::LocalDecimalSeparator());
    case TOK_PI:
        return kPi;
    case TOK_YES:
        return kYes;
    default:
        return 0.0;
    }
}

// Constants, punctuation and what is illegal need nothing from anywhere.
bool IsCompleteAtOnce(int type)
{
    return type != TT_VARVALUE && type != TT_OPERATOR && type != TT_FUNCTION;
}

// The kind of a reference follows from its name alone; white space only has none.
int KindOfReference(WideView text)
{
    switch (tovo::detail::ValueTypeOfName(tovo::TrimmedRight(text))) {
    case VALUE_NONE:
        return RT_ANY;
    case VALUE_NUMERIC:
        return RT_NUMERIC;
    case VALUE_BOOLEAN:
        return RT_BOOLEAN;
    }
    return RT_ANY;
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
        m_ReturnType = KindOfReference(m_Text.View());
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
            m_Precedence = kUnaryPrecedence;
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
