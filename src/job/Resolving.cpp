#include <TovoJob/Typing.h>

#include <algorithm>
#include <utility>

#include "ExpressionText.h"
#include "Messages.h"
#include "NearestNames.h"
#include "TextOffsets.h"
#include "TypedText.h"

namespace tovo {

using namespace job;

namespace {

constexpr std::size_t kMostChoices = 5;
// Each search looks at all names.
constexpr std::size_t kMostWordsWithChoices = 8;

std::string Utf8(WideView text)
{
    return CString(text).ToUtf8();
}

// Without what says that it is a name.
WideView BareWord(WideView word)
{
    if (word.starts_with(u'[') && word.ends_with(u']'))
        return word.substr(1, word.size() - 2);
    if (word.size() > 2 && word[1] == u'(')
        return word.substr(2, word.size() - 3);
    return word;
}

std::vector<std::string> MeaningsOf(const TypedElement& element, const KnownNames& names)
{
    std::vector<std::string> meanings;
    if (element.code != TOK_ILLEGAL)
        meanings.push_back(TokenName(element.code).ToUtf8());
    for (const KnownName* const name : element.names)
        meanings.push_back(InBrackets(name->object, names));
    return meanings;
}

std::vector<std::string> ChoicesFor(WideView word, bool isCalled, const KnownNames& names)
{
    std::vector<std::string> choices;
    for (const Suggestion& suggestion : NearestTo(word, names, isCalled, kMostChoices))
        choices.push_back(suggestion.name ? TypedAs(suggestion.name->object, names)
                                          : TokenName(suggestion.code).ToUtf8());
    return choices;
}

void TakeShown(const std::string& encoded, TypedExpression& typed)
{
    CFmlaExprBase shown;
    shown.SetFromEncodedString(Wide(encoded));
    const CString text = shown.GetTextStr();
    typed.expression = encoded;
    typed.text = text.ToUtf8();
    const TextOffsets offsets(text.View(), typed.text);
    for (int index = 0; index < shown.NumVars(); ++index)
        typed.references.push_back(
            {offsets.Between(static_cast<std::size_t>(shown.VarPos(index)),
                             static_cast<std::size_t>(shown.VarEndPos(index))),
             ReferredBy(shown, index)});
}

} // namespace

Result<TypedExpression> ResolveTyped(std::string_view text, const Job& job)
{
    const CString wide = Wide(text);
    CFmlaExprBase expression;
    expression.SetExpr(wide);
    const KnownNames names(job);
    const std::vector<TypedElement> elements = ReadTyped(expression, names);
    const ChangedText changed(expression, Resolve(expression, elements));
    if (!changed.Fits() || wide.GetLength() > 65535)
        return Refusal{
            RefusalKind::LimitExceeded, "an expression cannot have more than 65535 characters", {}};

    TypedExpression typed;
    TakeShown(changed.Encoded(), typed);
    const TextOffsets offsets(wide.View(), text);
    for (const TypedElement& element : elements) {
        const bool isAmbiguous = element.what == TypedElement::What::Ambiguous;
        if (!isAmbiguous && element.what != TypedElement::What::Unknown)
            continue;
        const WideView word = wide.View().substr(element.begin, element.end - element.begin);
        UnresolvedWord unresolved{
            offsets.Between(element.begin, element.end), Utf8(word), isAmbiguous, {}, {}};
        unresolved.message = MessageAbout(isAmbiguous        ? MSG_JOB_AMBIGUOUS_WORD
                                          : element.isCalled ? MSG_JOB_NO_FUNCTION
                                                             : MSG_JOB_NO_WORD,
                                          unresolved.word);
        if (isAmbiguous)
            unresolved.choices = MeaningsOf(element, names);
        else if (typed.unresolved.size() < kMostWordsWithChoices)
            unresolved.choices = ChoicesFor(BareWord(word), element.isCalled, names);
        typed.unresolved.push_back(std::move(unresolved));
    }
    return typed;
}

} // namespace tovo
