#include <TovoJob/Typing.h>

#include <algorithm>

#include "ExpressionText.h"
#include "TextOffsets.h"
#include "TypedText.h"

namespace tovo {

using namespace job;

namespace {

CString InUsersLanguage(std::string_view english)
{
    CFmlaExprBase expression;
    expression.SetExpr(Wide(english));
    expression.TranslateText(TL_LOCAL);
    return expression.GetTextStr();
}

void WriteCall(Signature& signature)
{
    const FunctionInfo& function = *signature.function;
    const CString separator = TokenName(TOK_COMMA);
    CString text = TokenName(function.code) + TokenName(TOK_LPAREN);
    const auto count = function.ParameterCount();
    std::vector<std::size_t> bounds;
    for (std::size_t at = 0; at < count; ++at) {
        if (at > 0)
            text += separator;
        bounds.push_back(text.View().size());
        text += Wide(function.parameters[at]);
        bounds.push_back(text.View().size());
    }
    if (function.repeats)
        text += separator + u"...";
    text += TokenName(TOK_RPAREN);
    signature.text = text.ToUtf8();
    const TextOffsets offsets(text.View(), signature.text);
    for (std::size_t at = 0; at < count; ++at)
        signature.parameters.push_back(offsets.Between(bounds[2 * at], bounds[2 * at + 1]));
}

} // namespace

std::optional<Signature> SignatureAt(std::string_view text, std::size_t cursor, const Job& job)
{
    const CString wide = Wide(text);
    const TextOffsets offsets(wide.View(), text);
    CFmlaExprBase before;
    before.SetExpr(wide.Left(static_cast<int>(offsets.Utf16At(cursor))));
    const std::vector<TypedElement> elements = ReadTyped(before, KnownNames(job));
    Grammar grammar;
    for (const TypedElement& element : elements)
        grammar.Take(element.GrammarCode());

    for (auto call = grammar.Open().rbegin(); call != grammar.Open().rend(); ++call) {
        Signature signature;
        signature.function = FindFunction(call->function);
        if (!signature.function)
            continue;
        const TypedElement& name = elements[call->element];
        const std::size_t last = signature.function->ParameterCount() - 1;
        signature.call = offsets.Between(name.begin, name.end);
        if (call->commas <= last || signature.function->repeats)
            signature.parameter = std::min(call->commas, last);
        WriteCall(signature);
        signature.example = InUsersLanguage(signature.function->example).ToUtf8();
        return signature;
    }
    return std::nullopt;
}

} // namespace tovo
