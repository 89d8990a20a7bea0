#include "FixCandidates.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <TovoFormula/ExprToken.h>
#include <TovoFormula/MessageIds.h>

#include "ExpressionText.h"
#include "NearestNames.h"
#include "TypedText.h"
#include "WordCharacters.h"

namespace tovo::job {

namespace {

constexpr std::size_t kMostSuggestions = 4;
// Of the separators in one number.
constexpr int kMostSeparators = 8;

// Signs as other languages and other keyboards have them. A longer one stands before its beginning.
constexpr struct {
    WideView sign;
    int code;
} kForeignSigns[] = {
    {u"&&", TOK_AND},         {u"&", TOK_AND},          {u"||", TOK_OR},
    {u"|", TOK_OR},           {u"!=", TOK_NE_SIGN},     {u"==", TOK_EQ_SIGN},
    {u"=>", TOK_GE_SIGN},     {u"=<", TOK_LE_SIGN},     {u"><", TOK_NE_SIGN},
    {u"\u2264", TOK_LE_SIGN}, {u"\u2265", TOK_GE_SIGN}, {u"\u2260", TOK_NE_SIGN},
    {u"\u00D7", TOK_TIMES},   {u"\u00B7", TOK_TIMES},   {u"\u00F7", TOK_DIVIDE},
    {u":", TOK_DIVIDE},       {u"\u2212", TOK_MINUS},   {u"\u2013", TOK_MINUS},
    {u"!", TOK_NOT},
};

struct Stretch {
    int begin = 0;
    int end = 0;
};

std::string Quoted(const CString& text)
{
    return "\"" + text.ToUtf8() + "\"";
}

bool IsOperand(int code)
{
    const int type = CExprToken::GetTokCodeType(code);
    return type == TT_CONSTANT || type == TT_VARVALUE;
}

bool IsOperator(int code)
{
    return CExprToken::GetTokCodeType(code) == TT_OPERATOR;
}

bool IsFunction(int code)
{
    return CExprToken::GetTokCodeType(code) == TT_FUNCTION;
}

// Looks at one fault of one expression.
class CandidateFinder {
public:
    CandidateFinder(const Fault& fault, const CFmlaExprBase& expression, const KnownNames& names)
        : m_Fault(fault),
          m_Expression(expression),
          m_Names(names),
          m_Source(expression.GetTextStr()),
          m_Text(m_Source.View()),
          m_Tokens(Scan(expression).tokens),
          m_Begin(static_cast<int>(fault.place.span->begin.utf16)),
          m_End(static_cast<int>(fault.place.span->end.utf16)),
          m_Separator(TokenName(TOK_COMMA)),
          m_Decimal(TokenName(TOK_NUMBER).Left(1))
    {
        const auto found = std::find_if(m_Tokens.begin(), m_Tokens.end(),
                                        [&](const Token& token) { return token.end > m_Begin; });
        m_At = static_cast<std::size_t>(found - m_Tokens.begin());
    }

    std::vector<Candidate> Find()
    {
        if (const auto missing = MissingObject(m_Fault)) {
            FindOtherNames(*missing);
            return std::move(m_Candidates);
        }
        FindWords();
        FindForeignSigns();
        FindSeparators();
        FindMissingOperators();
        FindParentheses();
        if (m_Candidates.empty())
            FindSuperfluous();
        return std::move(m_Candidates);
    }

private:
    int Size() const { return static_cast<int>(m_Text.size()); }
    CString Part(int begin, int end) const { return m_Source.Mid(begin, end - begin); }
    bool IsAt(int position, WideView text) const
    {
        return position >= 0 && position < Size() &&
               m_Text.substr(static_cast<std::size_t>(position)).starts_with(text);
    }
    // The token in front of the fault, and the one at it; null if there is none.
    const Token* Before() const { return m_At > 0 ? &m_Tokens[m_At - 1] : nullptr; }
    const Token* Here() const { return m_At < m_Tokens.size() ? &m_Tokens[m_At] : nullptr; }

    void Offer(std::vector<TextChange> changes, std::string description = {})
    {
        if (changes.empty())
            return;
        if (description.empty())
            description = Described(changes.front());
        m_Candidates.push_back({std::move(description), std::move(changes)});
    }
    void OfferText(int begin, int end, const CString& text) { Offer({{begin, end, text}}); }

    std::string Described(const TextChange& change) const
    {
        const CString before = Part(change.begin, change.end);
        const CString after = change.reference ? Wide(change.reference->name) : change.text;
        if (before.IsEmpty())
            return "Insert " + Quoted(after);
        if (after.IsEmpty())
            return "Remove " + Quoted(before);
        return "Replace " + Quoted(before) + " by " +
               (change.reference ? std::string(WordFor(change.reference->kind)) + " " : "") +
               Quoted(after);
    }

    // All references to the name, since a name that is wrong once is wrong everywhere.
    void FindOtherNames(const ObjectName& missing)
    {
        for (const ObjectName& other : InsteadOf(missing, m_Names)) {
            std::vector<TextChange> changes;
            for (const Token& token : m_Tokens) {
                if (token.code <= TOK_FORMTBL && token.object == missing)
                    changes.push_back({token.begin, token.end, {}, other});
            }
            Offer(std::move(changes),
                  "Use " + std::string(WordFor(other.kind)) + " \"" + other.name + "\"");
        }
    }

    // A name that was typed as text, or a word of the language in other letters: the one at the
    // fault, and then all that are in the text.
    void FindWords()
    {
        const std::vector<TypedElement> elements = ReadTyped(m_Expression, m_Names);
        const auto at = std::find_if(elements.begin(), elements.end(), [&](const auto& element) {
            return static_cast<int>(element.end) > m_Begin;
        });
        if (at != elements.end()) {
            Offer(Resolve(m_Expression, *at));
            Suggest(*at);
        }
        std::vector<TextChange> all = Resolve(m_Expression, elements);
        if (all.size() > 1)
            Offer(std::move(all), "Take the words in the text as names and words of the language");
    }

    void Suggest(const TypedElement& element)
    {
        using What = TypedElement::What;
        const int begin = static_cast<int>(element.begin);
        const int end = static_cast<int>(element.end);
        if (element.what == What::Ambiguous) {
            for (const KnownName* const name : element.names)
                Offer({{begin, end, {}, name->object}});
            if (element.code != TOK_ILLEGAL)
                OfferText(begin, end, TokenName(element.code));
        } else if (element.what == What::Unknown) {
            const WideView word = m_Text.substr(element.begin, element.end - element.begin);
            for (const Suggestion& near :
                 NearestTo(word, m_Names, element.isCalled, kMostSuggestions)) {
                if (near.name)
                    Offer({{begin, end, {}, near.name->object}});
                else
                    OfferText(begin, end, TokenName(near.code));
            }
        }
    }

    void FindForeignSigns()
    {
        // The scanner may have taken the first character of a sign as a sign of its own.
        for (const int begin : {m_Begin, m_Begin - 1}) {
            for (const auto& foreign : kForeignSigns) {
                const int end = begin + static_cast<int>(foreign.sign.size());
                if (IsAt(begin, foreign.sign) && end > m_Begin)
                    OfferText(begin, end, Spaced(begin, end, TokenName(foreign.code)));
            }
            for (const WideView power : {WideView(u"^"), WideView(u"**")}) {
                const int end = begin + static_cast<int>(power.size());
                if (IsAt(begin, power) && end > m_Begin)
                    OfferCall(TOK_POWER, begin, end);
            }
        }
        if (IsAt(m_Begin, u"%"))
            FindPercent();
        FindTornSign();
    }

    // A word that must not grow together with its neighbours.
    CString Spaced(int begin, int end, CString text) const
    {
        if (!IsWordCharacter(text[0]))
            return text;
        if (begin > 0 && IsWordCharacter(m_Source[begin - 1]))
            text = u" " + text;
        if (end < Size() && IsWordCharacter(m_Source[end]))
            text += u" ";
        return text;
    }

    // The operands of an infix sign become the arguments of a function.
    void OfferCall(int code, int begin, int end)
    {
        const auto left = OperandBefore(begin);
        const auto right = OperandAfter(end);
        if (!left || !right)
            return;
        const CString name = TokenName(code);
        const bool isTight = left->begin > 0 && IsWordCharacter(m_Source[left->begin - 1]);
        Offer({{left->begin, left->begin, (isTight ? u" " : u"") + name + u"("},
               {left->end, right->begin, m_Separator},
               {right->end, right->end, u")"}},
              "Use " + name.ToUtf8());
    }

    void FindPercent()
    {
        const auto operand = OperandBefore(m_Begin);
        if (!operand)
            return;
        const Token* const after = TokenFrom(m_Begin + 1);
        if (after && OperandAfter(m_Begin + 1) && !IsOperator(after->code))
            return OfferCall(TOK_MOD, m_Begin, m_Begin + 1);
        const CString hundredth = TokenName(TOK_DIVIDE) + u"100";
        // Next to a sum, a product or nothing the division may stand as it is.
        const Token* const before = TokenBefore(operand->begin);
        const bool isApart = (!after || after->code == TOK_RPAREN || after->code == TOK_COMMA ||
                              IsOperator(after->code)) &&
                             (!before || before->code != TOK_DIVIDE);
        if (isApart)
            return Offer({{operand->end, m_Begin + 1, hundredth}}, "Divide by 100");
        Offer(
            {{operand->begin, operand->begin, u"("}, {operand->end, m_Begin + 1, hundredth + u")"}},
            "Divide by 100");
    }

    // "> =" and "< >".
    void FindTornSign()
    {
        const Token* const before = Before();
        const Token* const here = Here();
        if (!before || !here || !IsOperator(before->code) || !IsOperator(here->code))
            return;
        const CString joined = Part(before->begin, before->end) + Part(here->begin, here->end);
        for (const int code : {TOK_GE_SIGN, TOK_LE_SIGN, TOK_NE_SIGN}) {
            if (TokenName(code) == joined)
                OfferText(before->begin, here->end, joined);
        }
    }

    void FindSeparators()
    {
        const Token* const before = Before();
        // A number that ends in its separator has taken one that stood between arguments.
        if (before && before->code == TOK_NUMBER && IsAt(before->end - 1, m_Decimal.View()))
            OfferText(before->end - 1, before->end, m_Separator);
        const bool isNumber =
            m_Fault.message == MSG_TWO_DECIMAL_POINTS || m_Fault.message == MSG_TOO_MANY_DIGITS;
        const int end = isNumber ? m_End : std::min(m_Begin + 1, Size());
        int offered = 0;
        for (int at = m_Begin; at < end && offered < kMostSeparators; ++at) {
            const CString character(m_Source[at]);
            if (character != u";" && character != u"," && character != u"." &&
                character != m_Decimal)
                continue;
            ++offered;
            for (const CString& other : {m_Separator, m_Decimal}) {
                if (other != character)
                    OfferText(at, at + 1, other);
            }
            if (isNumber || m_Fault.message == MSG_UNEXPECTED_COMMA)
                OfferText(at, at + 1, CString());
        }
    }

    void FindMissingOperators()
    {
        const Token* const before = Before();
        const Token* const here = Here();
        if (!before || !here || here->begin != m_Begin)
            return;
        if (IsFunction(before->code)) {
            if (const auto operand = OperandAfter(before->end))
                Offer({{operand->begin, operand->begin, u"("}, {operand->end, operand->end, u")"}},
                      "Put the argument in parentheses");
            return;
        }
        const bool isBetween = (IsOperand(before->code) || before->code == TOK_RPAREN) &&
                               (IsOperand(here->code) || IsFunction(here->code) ||
                                here->code == TOK_LPAREN || here->code == TOK_NOT);
        if (!isBetween)
            return;
        for (const CString& text : {TokenName(TOK_TIMES), TokenName(TOK_PLUS), m_Separator})
            OfferText(m_Begin, m_Begin, text);
    }

    void FindParentheses()
    {
        int open = 0;
        for (const Token& token : m_Tokens)
            open += token.code == TOK_LPAREN ? 1 : token.code == TOK_RPAREN ? -1 : 0;
        if (open > 0) {
            OfferText(m_Begin, m_Begin, u")");
            OfferText(Size(), Size(), CString(u')', open));
        } else if (open < 0) {
            if (Here() && Here()->code == TOK_RPAREN)
                OfferText(Here()->begin, Here()->end, CString());
            OfferText(0, 0, CString(u'(', -open));
        }
    }

    // A token too many: the one at the fault, the one in front of it, or the last one.
    void FindSuperfluous()
    {
        if (m_Fault.message == MSG_INVALID_ELEMENT)
            return;
        const auto isSuperfluous = [](const Token* token) {
            return token && (IsOperator(token->code) || token->code == TOK_COMMA);
        };
        const Token* const last = m_Tokens.empty() ? nullptr : &m_Tokens.back();
        for (const Token* const token : {Here(), Before(), last}) {
            if (isSuperfluous(token))
                OfferText(token->begin, token->end, CString());
        }
    }

    const Token* TokenFrom(int position) const
    {
        const auto found = std::find_if(m_Tokens.begin(), m_Tokens.end(), [&](const Token& token) {
            return token.begin >= position;
        });
        return found == m_Tokens.end() ? nullptr : &*found;
    }
    const Token* TokenBefore(int position) const
    {
        const auto found = std::find_if(m_Tokens.rbegin(), m_Tokens.rend(),
                                        [&](const Token& token) { return token.end <= position; });
        return found == m_Tokens.rend() ? nullptr : &*found;
    }

    // An operand that ends in front of the position, with its function.
    std::optional<Stretch> OperandBefore(int position) const
    {
        const Token* const last = TokenBefore(position);
        if (!last)
            return std::nullopt;
        if (IsOperand(last->code))
            return Stretch{last->begin, last->end};
        if (last->code != TOK_RPAREN)
            return std::nullopt;
        int depth = 0;
        for (const Token* token = last; token >= m_Tokens.data(); --token) {
            depth += token->code == TOK_RPAREN ? 1 : token->code == TOK_LPAREN ? -1 : 0;
            if (depth > 0)
                continue;
            const bool isCall = token > m_Tokens.data() && IsFunction(token[-1].code);
            return Stretch{isCall ? token[-1].begin : token->begin, last->end};
        }
        return std::nullopt;
    }

    // An operand that begins after the position, with its minus.
    std::optional<Stretch> OperandAfter(int position) const
    {
        const Token* const first = TokenFrom(position);
        const Token* const end = m_Tokens.data() + m_Tokens.size();
        const Token* token = first;
        if (token && token->code == TOK_MINUS && token + 1 < end)
            ++token;
        if (!token)
            return std::nullopt;
        if (IsOperand(token->code))
            return Stretch{first->begin, token->end};
        if (IsFunction(token->code))
            ++token;
        int depth = 0;
        for (; token < end; ++token) {
            depth += token->code == TOK_LPAREN ? 1 : token->code == TOK_RPAREN ? -1 : 0;
            if (depth == 0)
                break;
        }
        if (token >= end || token->code != TOK_RPAREN)
            return std::nullopt;
        return Stretch{first->begin, token->end};
    }

    const Fault& m_Fault;
    const CFmlaExprBase& m_Expression;
    const KnownNames& m_Names;
    const CString m_Source;
    const WideView m_Text;
    const std::vector<Token> m_Tokens;
    const int m_Begin;
    const int m_End;
    const CString m_Separator; // the user's, between arguments
    const CString m_Decimal;
    std::size_t m_At = 0; // the token at the fault, or the first one after it
    std::vector<Candidate> m_Candidates;
};

} // namespace

std::vector<Candidate> CandidatesFor(const Fault& fault, const CFmlaExprBase& expression,
                                     const KnownNames& names)
{
    const auto length = static_cast<std::size_t>(expression.GetTextStr().GetLength());
    const auto& span = fault.place.span;
    if (!span || span->begin.utf16 > span->end.utf16 || span->end.utf16 > length)
        return {};
    return CandidateFinder(fault, expression, names).Find();
}

std::optional<ObjectName> MissingObject(const Fault& fault)
{
    switch (fault.message) {
    case MSG_JOB_VARIABLE_NOT_FOUND:
        return VariableNamed(fault.offender);
    case MSG_FORMULA_NOT_FOUND:
        return FormulaNamed(fault.offender);
    case MSG_FORMTBL_NOT_FOUND:
        return TableNamed(fault.offender);
    default:
        return std::nullopt;
    }
}

std::vector<ObjectName> InsteadOf(const ObjectName& missing, const KnownNames& names)
{
    std::vector<ObjectName> others;
    const CString name = Wide(missing.name);
    for (const Suggestion& near : NearestTo(name.View(), names, false, kMostSuggestions)) {
        if (near.name)
            others.push_back(near.name->object);
    }
    return others;
}

} // namespace tovo::job
