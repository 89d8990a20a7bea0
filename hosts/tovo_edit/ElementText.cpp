#include "ElementText.h"

#include <charconv>
#include <cmath>
#include <optional>

#include <TovoFormula/FmlaExprBase.h>

#include "Columns.h"

namespace {

std::string WordOf(int code)
{
    CString name;
    CFmlaExprBase::GetTokenString(code, name);
    return name.ToUtf8();
}

std::optional<double> ReadNumber(std::string text, std::string_view decimal)
{
    if (const std::size_t mark = text.find(decimal); mark != std::string::npos)
        text.replace(mark, decimal.size(), ".");
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, fault] = std::from_chars(text.data(), end, number);
    if (fault != std::errc() || rest != end || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<bool> ReadYesNo(const std::string& text, const tovo::Job& job)
{
    const auto typed = tovo::ResolveTyped(text, job);
    const std::string word = typed ? Trimmed(typed.Value().expression) : std::string();
    if (word != "YES" && word != "NO")
        return std::nullopt;
    return word == "YES";
}

tovo::Refusal NotUnderstood(const tovo::TypedExpression& typed)
{
    if (typed.unresolved.empty())
        return {tovo::RefusalKind::BadValue, "is neither a number nor yes or no nor one name", {}};
    const tovo::UnresolvedWord& word = typed.unresolved.front();
    std::string text = word.message;
    for (const std::string& choice : word.choices)
        text += (&choice == &word.choices.front() ? " Meant is: " : ", ") + choice;
    return {tovo::RefusalKind::UnknownName, text, {}};
}

} // namespace

std::string ExactText(double number, std::string_view decimal)
{
    char digits[32];
    std::string text(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    if (const std::size_t point = text.find('.'); point != std::string::npos)
        text.replace(point, 1, decimal);
    return text;
}

std::string ValueToEdit(double value, bool isYesNo, std::string_view decimal)
{
    return isYesNo ? WordOf(value != 0.0 ? TOK_YES : TOK_NO) : ExactText(value, decimal);
}

tovo::Result<double> ReadValue(std::string_view text, bool isYesNo, const tovo::Job& job,
                               std::string_view decimal)
{
    const std::string trimmed = Trimmed(std::string(text));
    if (isYesNo) {
        const auto yes = ReadYesNo(trimmed, job);
        if (!yes)
            return tovo::Refusal{tovo::RefusalKind::BadValue,
                                 "takes " + WordOf(TOK_YES) + " or " + WordOf(TOK_NO), trimmed};
        return *yes ? 1.0 : 0.0;
    }
    const auto number = ReadNumber(trimmed, decimal);
    if (!number)
        return tovo::Refusal{tovo::RefusalKind::BadValue, "is no number", trimmed};
    return *number;
}

std::string ElementText(const tovo::Element& element, const tovo::Job& job,
                        std::string_view decimal)
{
    if (const auto* const number = std::get_if<double>(&element))
        return ExactText(*number, decimal);
    if (const auto* const yes = std::get_if<bool>(&element))
        return WordOf(*yes ? TOK_YES : TOK_NO);
    const auto* const object = std::get_if<tovo::ObjectName>(&element);
    if (!object)
        return {};
    const auto read = ReadElement(object->name, job, decimal);
    return read && read.Value() == element ? object->name : WriteReference(*object);
}

tovo::Result<tovo::Element> ReadElement(std::string_view text, const tovo::Job& job,
                                        std::string_view decimal)
{
    const std::string trimmed = Trimmed(std::string(text));
    if (trimmed.empty())
        return tovo::Element();
    if (const auto number = ReadNumber(trimmed, decimal))
        return tovo::Element(*number);
    const auto resolved = tovo::ResolveTyped(trimmed, job);
    if (!resolved)
        return resolved.Why();
    const tovo::TypedExpression& typed = resolved.Value();
    const std::string expression = Trimmed(typed.expression);
    if (expression == "YES" || expression == "NO")
        return tovo::Element(expression == "YES");
    // A name that nobody has yet stays a fault of the table, as it may be in a formula.
    if (const auto object = tovo::ReadReference(expression))
        return tovo::Element(*object);
    return NotUnderstood(typed);
}
