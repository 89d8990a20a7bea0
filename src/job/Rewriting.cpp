#include "Rewriting.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include <TovoFormula/TokenCodes.h>

#include "ExpressionText.h"
#include "TableParts.h"

namespace tovo::job {

namespace {

constexpr int kMostDigits = 15;  // of a number of the language
constexpr int kBeyondPlain = 15; // from this power of ten on a number is written with POWER

CString TokenText(int code)
{
    CString text;
    CFmlaExprBase::GetTokenString(code, text);
    return text;
}

// The digits with the user's decimal separator, which is the first character of a number.
CString LocalNumber(std::string_view digits)
{
    CString text = Wide(digits);
    const CString separator = TokenText(TOK_NUMBER).Left(1);
    text.Replace(u".", separator);
    return text;
}

std::string Digits(double value, std::chars_format format, int precision)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, format, precision).ptr;
    std::string text(digits, static_cast<std::size_t>(end - digits));
    if (text.find('.') != text.npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return text;
}

// The language has no exponents and takes 15 digits, so a number of more digits is rounded to that,
// and one that is very large or very small becomes a product with a power of ten.
CString PositiveNumber(double value)
{
    const int exponent = value == 0.0 ? 0 : static_cast<int>(std::floor(std::log10(value)));
    if (exponent >= -1 && exponent < kBeyondPlain)
        return LocalNumber(
            Digits(value, std::chars_format::fixed, kMostDigits - 1 - std::max(exponent, 0)));
    const std::string text = Digits(value, std::chars_format::scientific, kMostDigits - 1);
    const std::size_t mark = text.find('e');
    std::string mantissa = text.substr(0, mark);
    if (mantissa.find('.') != mantissa.npos)
        mantissa.erase(std::min(mantissa.size(), mantissa.find_last_not_of("0.") + 1));
    return u"(" + LocalNumber(mantissa) + TokenText(TOK_TIMES) + TokenText(TOK_POWER) + u"(10" +
           TokenText(TOK_COMMA) + LocalNumber(std::to_string(std::stoi(text.substr(mark + 1)))) +
           u"))";
}

CString LiteralFor(const ObjectName& object, double value)
{
    if (IsYesNoName(object.name))
        return TokenText(value != 0.0 ? TOK_YES : TOK_NO);
    if (std::signbit(value) && value != 0.0)
        return u"(" + TokenText(TOK_MINUS) + PositiveNumber(-value) + u")";
    return PositiveNumber(std::abs(value));
}

// A text that grows from left to right, with its table of references.
class Rewriter {
public:
    Rewriter(const CFmlaExprBase& expression, const Replacement& replacement)
        : m_Expression(expression), m_Source(expression.GetTextStr()), m_Replacement(replacement)
    {
        for (int index = 0; index < m_Expression.NumVars(); ++index)
            Take(index);
        CopyLiteral(m_Source.GetLength());
    }

    bool HasChanged() const { return m_HasChanged; }
    bool Fits() const { return m_Fits; }
    std::string Encoded() const
    {
        CFmlaExprBase result;
        result.SetExpr(m_Text, m_Words);
        return result.GetEncodedString().ToUtf8();
    }

private:
    void Take(int index)
    {
        CopyLiteral(m_Expression.VarPos(index));
        m_Copied = m_Expression.VarEndPos(index);
        const ObjectName object{static_cast<Kind>(m_Expression.VarType(index)),
                                m_Expression.VarName(index).ToUtf8()};
        if (object != m_Replacement.object)
            return Add(m_Expression.VarText(index), m_Expression.VarType(index));
        m_HasChanged = true;
        if (const auto* const other = std::get_if<ObjectName>(&m_Replacement.by))
            Add(u" " + Wide(other->name) + u" ", static_cast<int>(other->kind));
        else
            m_Text += LiteralFor(object, std::get<double>(m_Replacement.by));
    }
    void CopyLiteral(int end)
    {
        if (end > m_Copied)
            m_Text += m_Source.Mid(m_Copied, end - m_Copied);
    }
    void Add(const CString& text, int kind)
    {
        for (const int word : {m_Text.GetLength(), text.GetLength(), kind}) {
            m_Fits = m_Fits && word <= std::numeric_limits<std::uint16_t>::max();
            m_Words.Add(static_cast<WORD>(word));
        }
        m_Text += text;
    }

    const CFmlaExprBase& m_Expression;
    const CString m_Source;
    const Replacement& m_Replacement;
    CString m_Text;
    CWordArray m_Words;
    int m_Copied = 0;
    bool m_HasChanged = false;
    bool m_Fits = true;
};

Element ElementFor(const Replacement& replacement)
{
    if (const auto* const other = std::get_if<ObjectName>(&replacement.by))
        return *other;
    const double value = std::get<double>(replacement.by);
    if (IsYesNoName(replacement.object.name))
        return value != 0.0;
    return value;
}

} // namespace

std::optional<std::string> Rewrite(const CFmlaExprBase& expression, const Replacement& replacement)
{
    const Rewriter rewriter(expression, replacement);
    if (!rewriter.HasChanged())
        return std::nullopt;
    return rewriter.Encoded();
}

bool Fits(const CFmlaExprBase& expression, const Replacement& replacement)
{
    return Rewriter(expression, replacement).Fits();
}

std::optional<Table> Rewrite(const Table& table, const Replacement& replacement)
{
    Table copy = table;
    bool hasChanged = false;
    ForEachElement(copy, [&](const TablePart&, Element& element) {
        const auto* const object = std::get_if<ObjectName>(&element);
        if (!object || *object != replacement.object)
            return;
        element = ElementFor(replacement);
        hasChanged = true;
    });
    if (!hasChanged)
        return std::nullopt;
    return copy;
}

} // namespace tovo::job
