#include <TovoJob/Typing.h>

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>

#include <TovoFormula/ExprToken.h>

#include "Access.h"
#include "ExpressionText.h"
#include "TextOffsets.h"
#include "TypedText.h"
#include "WordCharacters.h"

namespace tovo {

using namespace job;

namespace {

// A name has several words; what was typed of one may have begun so many elements ago.
constexpr std::size_t kMostBeginnings = 8;

// A place where what is being typed may begin.
struct Beginning {
    std::size_t at = 0;  // where the replaced part begins
    WideText typed = {}; // folded, up to the cursor, without a bracket
    Expected expected = Expected::AnyOperand;
    bool takesYesNo = true; // of the argument that one is in
    bool isBracketed = false;
    bool isWord = false; // nothing but one word was typed
};

// Everything that uses an object, directly or not, and the object itself.
std::unordered_set<NodeId> DependentsOf(const Network& network, const ObjectName& object)
{
    std::unordered_set<NodeId> found;
    std::vector<NodeId> open;
    const auto take = [&](NodeId node) {
        if (found.insert(node).second)
            open.push_back(node);
    };
    if (const auto node = network.Find(object))
        take(*node);
    while (!open.empty()) {
        const NodeId node = open.back();
        open.pop_back();
        network.ForEachUser(node, take);
    }
    return found;
}

CompletionKind KindOfWord(int code)
{
    if (JobValueWord(code))
        return CompletionKind::JobValue;
    switch (CExprToken::GetTokCodeType(code)) {
    case TT_FUNCTION:
        return CompletionKind::Function;
    case TT_OPERATOR:
        return CompletionKind::Operator;
    default:
        return CompletionKind::Constant;
    }
}

bool FitsAsOperand(Expected expected, bool isYesNo)
{
    switch (expected) {
    case Expected::AnyOperand:
        return true;
    case Expected::Number:
        return !isYesNo;
    case Expected::YesNo:
        return isYesNo;
    case Expected::Operator:
    case Expected::Parenthesis:
        break;
    }
    return false;
}

bool WordFits(int code, const Beginning& beginning)
{
    const int type = CExprToken::GetTokCodeType(code);
    if (type == TT_OPERATOR && code != TOK_NOT)
        return beginning.expected == Expected::Operator && beginning.takesYesNo;
    // NOT twice is no expression, and an IF is of the kind of its arguments.
    if (code == TOK_NOT)
        return beginning.expected == Expected::AnyOperand && beginning.takesYesNo;
    if (code == TOK_IF)
        return beginning.expected < Expected::Operator;
    return FitsAsOperand(beginning.expected, CExprToken::GetTokCodeReturnType(code) == RT_BOOLEAN);
}

class Completer {
public:
    Completer(std::string_view text, std::size_t cursor, const Job& job,
              const CompletionOptions& options)
        : m_Job(job),
          m_Options(options),
          m_Names(job),
          m_Wide(Wide(text)),
          m_Text(m_Wide.View()),
          m_Offsets(m_Text, text),
          m_Cursor(m_Offsets.Utf16At(cursor)),
          m_End(EndOfWord(m_Text, m_Cursor))
    {
        FindBeginnings();
    }

    std::vector<Completion> Complete()
    {
        const Network& network = Access::InsideOf(m_Job).calculation.Uses();
        std::unordered_set<NodeId> excluded;
        if (!m_Options.formula.empty())
            excluded = DependentsOf(network, FormulaNamed(m_Options.formula));
        for (const KnownName& name : m_Names.All()) {
            const auto node = network.Find(name.object);
            if (!node || !excluded.contains(*node))
                Consider(name);
        }
        for (int code = kFirstWordCode; code <= kLastWordCode; ++code)
            Consider(code);
        std::stable_sort(m_Found.begin(), m_Found.end(), [](const Found& a, const Found& b) {
            return std::tie(a.isInside, b.typed) < std::tie(b.isInside, a.typed);
        });
        std::vector<Completion> completions;
        for (std::size_t at = 0; at < std::min(m_Options.most, m_Found.size()); ++at)
            completions.push_back(Made(m_Found[at]));
        return completions;
    }

private:
    struct Found {
        const KnownName* name;
        int code;
        const Beginning* beginning;
        bool isInside; // contains what was typed
        std::size_t typed;
    };

    void FindBeginnings()
    {
        const bool wantsNumber = !m_Options.formula.empty() && !IsYesNoName(m_Options.formula);
        Grammar grammar(wantsNumber ? Expected::Number : Expected::AnyOperand);
        CFmlaExprBase before;
        before.SetExpr(CString(m_Text.substr(0, m_Cursor)));
        const std::vector<TypedElement> elements = ReadTyped(before, m_Names);
        for (std::size_t at = 0; at < elements.size(); ++at) {
            const TypedElement& element = elements[at];
            // A whole name in brackets is not being typed any more.
            const bool isBracket =
                m_Text[element.begin] == u'[' && element.what == TypedElement::What::Token;
            if (at + kMostBeginnings >= elements.size() &&
                (isBracket || IsWordCharacter(m_Text[element.begin])))
                Add(element, grammar, isBracket, at + 1 == elements.size());
            if (!isBracket)
                grammar.Take(element.GrammarCode());
        }
        const bool isAfterWord = m_Cursor > 0 && IsWordCharacter(m_Text[m_Cursor - 1]);
        if (!isAfterWord && (m_Beginnings.empty() || !m_Beginnings.back().isBracketed))
            m_Beginnings.push_back({m_Cursor, {}, grammar.Here(), grammar.TakesYesNo()});
    }

    void Add(const TypedElement& element, const Grammar& grammar, bool isBracket, bool isLast)
    {
        if (element.what == TypedElement::What::Token && element.code == TOK_NUMBER)
            return;
        const std::size_t typed = element.begin + (isBracket ? 1 : 0);
        const bool isWord = isLast && !isBracket && EndOfWord(m_Text, typed) >= m_Cursor;
        m_Beginnings.push_back({element.begin, Folded(m_Text.substr(typed, m_Cursor - typed)),
                                grammar.Here(), grammar.TakesYesNo(), isBracket, isWord});
    }

    void Consider(const KnownName& name)
    {
        const bool isYesNo = IsYesNoName(name.object.name);
        for (const Beginning& beginning : m_Beginnings) {
            if (FitsAsOperand(beginning.expected, isYesNo) &&
                Match(beginning, name.folded, {&name, 0, &beginning, false, 0}))
                return;
        }
    }

    void Consider(int code)
    {
        const WideText folded = Folded(TokenName(code).View());
        for (const Beginning& beginning : m_Beginnings) {
            const bool isTyped = beginning.isWord || beginning.typed.empty();
            if (code != TOK_GROUP && isTyped && !beginning.isBracketed &&
                WordFits(code, beginning) &&
                Match(beginning, folded, {nullptr, code, &beginning, false, 0}))
                return;
        }
    }

    bool Match(const Beginning& beginning, WideView folded, Found found)
    {
        const bool isPrefix = folded.starts_with(beginning.typed);
        if (!isPrefix && (!(beginning.isWord || beginning.isBracketed) ||
                          folded.find(beginning.typed) == WideView::npos))
            return false;
        found.isInside = !isPrefix;
        found.typed = beginning.typed.size();
        m_Found.push_back(found);
        return true;
    }

    Completion Made(const Found& found) const
    {
        const bool isOperator = found.beginning->expected == Expected::Operator;
        Completion completion;
        completion.place = isOperator ? GrammarPlace::Operator : GrammarPlace::Operand;
        completion.isPrefix = !found.isInside;
        std::size_t end = found.beginning->typed.empty() ? m_Cursor : m_End;
        if (found.beginning->isBracketed && end < m_Text.size() && m_Text[end] == u']')
            ++end;
        completion.span = m_Offsets.Between(found.beginning->at, end);
        if (found.name) {
            completion.kind = static_cast<CompletionKind>(found.name->object.kind);
            completion.label = found.name->object.name;
            completion.insert = found.beginning->isBracketed
                                    ? InBrackets(found.name->object, m_Names)
                                    : TypedAs(found.name->object, m_Names);
            return completion;
        }
        completion.kind = KindOfWord(found.code);
        completion.label = TokenName(found.code).ToUtf8();
        const bool opens = completion.kind == CompletionKind::Function &&
                           (end >= m_Text.size() || m_Text[end] != u'(');
        completion.insert = completion.label + (opens ? "(" : "");
        return completion;
    }

    const Job& m_Job;
    const CompletionOptions& m_Options;
    const KnownNames m_Names;
    const CString m_Wide;
    const WideView m_Text;
    const TextOffsets m_Offsets;
    const std::size_t m_Cursor;
    const std::size_t m_End;             // of the word that the cursor is in
    std::vector<Beginning> m_Beginnings; // from the left, so the longest beginning first
    std::vector<Found> m_Found;
};

} // namespace

std::vector<Completion> Complete(std::string_view text, std::size_t cursor, const Job& job,
                                 const CompletionOptions& options)
{
    return Completer(text, cursor, job, options).Complete();
}

} // namespace tovo
