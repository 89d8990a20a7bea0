#include "TypedText.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <TovoFormula/ExprToken.h>

#include "ExpressionText.h"
#include "WordCharacters.h"

namespace tovo::job {

namespace {

// Asks the engine for the token at any place of an expression, with words in any letter case.
class TokenFinder : public CFmlaExprBase {
public:
    explicit TokenFinder(const CFmlaExprBase& expression) : CFmlaExprBase(expression)
    {
        m_ExprText = CString(InCapitals(m_ExprText.View()));
    }
    using CFmlaExprBase::operator=;
    void TrackError(unsigned int) override {}

    struct Found {
        int code = TOK_ILLEGAL;
        std::size_t end = 0;
    };

    // Requires: a place in the text that is no blank.
    Found At(std::size_t begin)
    {
        CString text;
        Found found;
        int place = 0;
        const bool isThere =
            FindFirstToken(text, found.code, place, static_cast<int>(begin), TL_LOCAL) != 0;
        if (isThere)
            return {found.code, static_cast<std::size_t>(m_ScanPos)};
        // The scanner stops in front of a number that is none and hands out its characters.
        return {TOK_NUMBER, begin + static_cast<std::size_t>(std::max(1, text.GetLength()))};
    }
};

class TypedReader {
public:
    TypedReader(const CFmlaExprBase& expression, const KnownNames& names)
        : m_Expression(expression),
          m_Names(names),
          m_Source(expression.GetTextStr()),
          m_Text(m_Source.View()),
          m_Finder(expression)
    {}

    std::vector<TypedElement> Read()
    {
        for (SkipBlanks(); m_At < Size(); SkipBlanks()) {
            TypedElement element = Next();
            m_At = std::max(element.end, m_At + 1);
            m_Grammar.Take(element.GrammarCode());
            m_Elements.push_back(std::move(element));
        }
        return std::move(m_Elements);
    }

private:
    using What = TypedElement::What;

    WideView Characters() const { return m_Text.Text(); }
    std::size_t Size() const { return Characters().size(); }

    void SkipBlanks()
    {
        while (m_At < Size() && m_At < Boundary() && IsBlank(Characters()[m_At]))
            ++m_At;
    }

    // Where the next reference of the table begins.
    std::size_t Boundary()
    {
        while (m_NextReference < m_Expression.NumVars() &&
               m_Expression.VarPos(m_NextReference) < static_cast<int>(m_At))
            ++m_NextReference;
        return m_NextReference < m_Expression.NumVars()
                   ? std::min(Size(),
                              static_cast<std::size_t>(m_Expression.VarPos(m_NextReference)))
                   : Size();
    }

    TypedElement Next()
    {
        const TokenFinder::Found token = m_Finder.At(m_At);
        if (m_At == Boundary())
            return {What::Reference, token.code, m_At, token.end};
        if (token.code == TOK_ILLEGAL) {
            if (auto bracketed = TakeBracketed())
                return std::move(*bracketed);
            if (auto stored = TakeStoredForm())
                return std::move(*stored);
        }
        const bool isWord = !IsDigit(Characters()[m_At]) && IsWordCharacter(Characters()[m_At]);
        const std::size_t wordEnd = std::min(Boundary(), EndOfWord(Characters(), m_At));
        const bool isToken = token.code != TOK_ILLEGAL && (!isWord || token.end == wordEnd);
        auto match = m_Names.LongestAt(m_Text, m_At, Boundary());
        if (isToken && (!match || match->end < token.end))
            return Token(token);
        if (match && (!isToken || match->end > token.end))
            return Named(std::move(match->names), match->end);
        if (isToken)
            return Decide(token, std::move(*match));
        return isWord ? Unknown(wordEnd) : TypedElement{What::Token, TOK_ILLEGAL, m_At, m_At + 1};
    }

    TypedElement Token(const TokenFinder::Found& token) const
    {
        return {What::Token, token.code, m_At, token.end, {}, IsCalledAt(token.end)};
    }

    TypedElement Named(KnownNames::Names names, std::size_t end) const
    {
        const What what = names.size() == 1 ? What::Name : What::Ambiguous;
        return {what, TOK_ILLEGAL, m_At, end, std::move(names), IsCalledAt(end)};
    }

    // A name that ends in "?" is known by that, so the sign belongs to the word.
    TypedElement Unknown(std::size_t wordEnd)
    {
        const bool isYesNo = wordEnd < Boundary() && Characters()[wordEnd] == u'?';
        const std::size_t end = wordEnd + (isYesNo ? 1 : 0);
        return {What::Unknown, TOK_ILLEGAL, m_At, end, {}, IsCalledAt(end)};
    }

    // A name that is spelled as a token is.
    TypedElement Decide(const TokenFinder::Found& token, KnownNames::Match match) const
    {
        const int type = CExprToken::GetTokCodeType(token.code);
        if (token.code < kFirstWordCode)
            return Token(token);
        if (type == TT_FUNCTION)
            return IsCalledAt(token.end) ? Token(token) : Named(std::move(match.names), match.end);
        const bool isInfix = type == TT_OPERATOR && token.code != TOK_NOT;
        if (isInfix == m_Grammar.TakesOperand())
            return isInfix ? Named(std::move(match.names), match.end) : Token(token);
        const bool isExactToken = TokenName(token.code) == Part(m_At, token.end);
        if (isInfix || (isExactToken && !match.isExact))
            return Token(token);
        return {What::Ambiguous, token.code, m_At, match.end, std::move(match.names), false};
    }

    // [name], where "]]" stands for "]" in a name.
    std::optional<TypedElement> TakeBracketed()
    {
        if (Characters()[m_At] != u'[' || m_HasNoBracket)
            return std::nullopt;
        const std::size_t boundary = Boundary();
        WideText name;
        for (std::size_t at = m_At + 1; at < boundary; ++at) {
            const bool isBracket = Characters()[at] == u']';
            if (isBracket && (at + 1 == boundary || Characters()[at + 1] != u']'))
                return Written(name, at + 1, std::nullopt);
            at += isBracket ? 1 : 0;
            name += Characters()[at];
        }
        // No later bracket has a partner, either.
        m_HasNoBracket = boundary == Size();
        return std::nullopt;
    }

    std::optional<TypedElement> TakeStoredForm()
    {
        const WideView rest = Characters().substr(m_At, Boundary() - m_At);
        const std::size_t letter = WideView(u"VFT").find(rest.front());
        if (rest.size() < 2 || rest[1] != u'(' || letter == WideView::npos || m_HasNoStoredForm)
            return std::nullopt;
        WideText name;
        for (std::size_t at = 2; at < rest.size(); ++at) {
            if (rest[at] == u')')
                return Written(name, m_At + at + 1, static_cast<Kind>(letter));
            at += rest[at] == u'\\' ? 1 : 0;
            if (at < rest.size())
                name += rest[at];
        }
        m_HasNoStoredForm = Boundary() == Size();
        return std::nullopt;
    }

    // A name that cannot be anything else.
    TypedElement Written(WideView name, std::size_t end, std::optional<Kind> kind) const
    {
        KnownNames::Names names = m_Names.Named(name);
        if (kind)
            std::erase_if(names, [&](const KnownName* known) {
                return known->object.kind != *kind || known->name != name;
            });
        if (names.empty())
            return {What::Unknown, TOK_ILLEGAL, m_At, end};
        return Named(std::move(names), end);
    }

    bool IsCalledAt(std::size_t end) const
    {
        while (end < Size() && IsBlank(Characters()[end]))
            ++end;
        return end < Size() && Characters()[end] == u'(';
    }

    WideView Part(std::size_t begin, std::size_t end) const
    {
        return Characters().substr(begin, end - begin);
    }

    const CFmlaExprBase& m_Expression;
    const KnownNames& m_Names;
    const CString m_Source;
    const SearchedText m_Text;
    TokenFinder m_Finder;
    Grammar m_Grammar;
    std::vector<TypedElement> m_Elements;
    std::size_t m_At = 0;
    int m_NextReference = 0;
    bool m_HasNoBracket = false;
    bool m_HasNoStoredForm = false;
};

// What is written in place of an element; nothing if it stays as it is.
std::optional<TextChange> ChangeOf(WideView text, const TypedElement& element)
{
    TextChange change{static_cast<int>(element.begin), static_cast<int>(element.end)};
    if (element.what == TypedElement::What::Name) {
        change.reference = element.names.front()->object;
        return change;
    }
    if (element.what != TypedElement::What::Token || element.code < kFirstWordCode)
        return std::nullopt;
    change.text = TokenName(element.code);
    if (change.text == text.substr(element.begin, element.end - element.begin))
        return std::nullopt;
    return change;
}

std::string Bracketed(const ObjectName& object)
{
    std::string text = "[";
    for (const char character : object.name)
        text += character == ']' ? "]]" : std::string(1, character);
    return text + "]";
}

bool Means(const std::string& text, const ObjectName& object, const KnownNames& names)
{
    CFmlaExprBase expression;
    expression.SetExpr(Wide(text));
    const std::vector<TypedElement> elements = ReadTyped(expression, names);
    return elements.size() == 1 && elements[0].what == TypedElement::What::Name &&
           elements[0].names[0]->object == object;
}

} // namespace

bool IsBlank(char16_t character)
{
    constexpr char16_t kNoBreakSpace = 0x00A0;
    return character == u' ' || (character >= u'\t' && character <= u'\r') ||
           character == kNoBreakSpace;
}

std::vector<TypedElement> ReadTyped(const CFmlaExprBase& expression, const KnownNames& names)
{
    return TypedReader(expression, names).Read();
}

std::vector<TextChange> Resolve(const CFmlaExprBase& expression,
                                const std::vector<TypedElement>& elements)
{
    const CString source = expression.GetTextStr();
    const WideView text = source.View();
    std::vector<TextChange> changes;
    std::size_t next = 0; // after the last change
    const auto keepBlanks = [&](std::size_t end) {
        for (; next < end; ++next) {
            if (IsBlank(text[next]) && text[next] != u' ')
                changes.push_back({static_cast<int>(next), static_cast<int>(next) + 1, u" "});
        }
    };
    for (std::size_t at = 0; at < elements.size(); ++at) {
        const TypedElement& element = elements[at];
        auto change = ChangeOf(text, element);
        if (change && change->reference) {
            const std::size_t limit =
                at + 1 < elements.size() ? elements[at + 1].begin : text.size();
            if (element.begin > next && IsBlank(text[element.begin - 1]))
                --change->begin;
            if (element.end < limit && IsBlank(text[element.end]))
                ++change->end;
        }
        keepBlanks(change ? static_cast<std::size_t>(change->begin) : element.begin);
        next = change ? static_cast<std::size_t>(change->end) : element.end;
        if (change)
            changes.push_back(std::move(*change));
    }
    keepBlanks(text.size());
    return changes;
}

std::vector<TextChange> Resolve(const CFmlaExprBase& expression, const TypedElement& element)
{
    const CString source = expression.GetTextStr();
    if (auto change = ChangeOf(source.View(), element))
        return {std::move(*change)};
    return {};
}

std::string InBrackets(const ObjectName& object, const KnownNames& names)
{
    const std::string text = Bracketed(object);
    return Means(text, object, names) ? text : WriteReference(object);
}

std::string TypedAs(const ObjectName& object, const KnownNames& names)
{
    return Means(object.name, object, names) ? object.name : InBrackets(object, names);
}

} // namespace tovo::job
