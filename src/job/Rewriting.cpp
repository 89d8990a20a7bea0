#include "Rewriting.h"

#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include <TovoFormula/TokenCodes.h>

#include "ExpressionText.h"
#include "TableParts.h"
#include "TextChanges.h"

namespace tovo::job {

namespace {

constexpr int kMostDigits = 15; // of a number of the language
// Between these, POWER and a factor of 15 digits stay within the range of numbers.
constexpr double kLeastWritten = 1e-290;
constexpr double kMostWritten = 1e308;

// The digits with the user's decimal separator, which is the first character of a number.
CString LocalNumber(std::string_view digits)
{
    CString text = Wide(digits);
    const CString separator = TokenName(TOK_NUMBER).Left(1);
    text.Replace(u".", separator);
    return text;
}

// A positive number, without zeros at the end of its decimals.
std::string Digits(double value, int decimals)
{
    char digits[64];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals)
            .ptr;
    std::string text(digits, static_cast<std::size_t>(end - digits));
    if (decimals > 0) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.pop_back();
    }
    return text;
}

// The number as digits and a power of ten: 1.25e-7.
std::pair<double, int> Split(double value)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value,
                                   std::chars_format::scientific, kMostDigits - 1)
                         .ptr;
    const std::string_view text(digits, static_cast<std::size_t>(end - digits));
    const std::size_t mark = text.find('e');
    double mantissa = 0.0;
    std::from_chars(text.data(), text.data() + mark, mantissa);
    return {mantissa, std::stoi(std::string(text.substr(mark + 1)))};
}

// The language has no exponents and takes 15 digits, so a number of more digits is rounded to that,
// and one that is very large or very small becomes a product with a power of ten.
CString PositiveNumber(double value)
{
    const auto [mantissa, exponent] = Split(value);
    if (exponent >= -1 && exponent < kMostDigits)
        return LocalNumber(Digits(value, kMostDigits - 1 - std::max(exponent, 0)));
    return u"(" + LocalNumber(Digits(mantissa, kMostDigits - 1)) + TokenName(TOK_TIMES) +
           TokenName(TOK_POWER) + u"(10" + TokenName(TOK_COMMA) +
           LocalNumber(std::to_string(exponent)) + u"))";
}

CString LiteralFor(const ObjectName& object, double value)
{
    if (IsYesNoName(object.name))
        return TokenName(value != 0.0 ? TOK_YES : TOK_NO);
    if (std::signbit(value) && value != 0.0)
        return u"(" + TokenName(TOK_MINUS) + PositiveNumber(-value) + u")";
    return PositiveNumber(std::abs(value));
}

// What becomes of each reference to the object.
std::vector<TextChange> ChangesOf(const CFmlaExprBase& expression, const Replacement& replacement)
{
    std::vector<TextChange> changes;
    for (int index = 0; index < expression.NumVars(); ++index) {
        if (ReferredBy(expression, index) != replacement.object)
            continue;
        TextChange change{expression.VarPos(index), expression.VarEndPos(index)};
        if (const auto* const other = std::get_if<ObjectName>(&replacement.by))
            change.reference = *other;
        else
            change.text = LiteralFor(replacement.object, std::get<double>(replacement.by));
        changes.push_back(std::move(change));
    }
    return changes;
}

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
    const std::vector<TextChange> changes = ChangesOf(expression, replacement);
    if (changes.empty())
        return std::nullopt;
    return ChangedText(expression, changes).Encoded();
}

bool CanBeWritten(double value)
{
    const double size = std::abs(value);
    return size == 0.0 || (size >= kLeastWritten && size <= kMostWritten);
}

bool Fits(const CFmlaExprBase& expression, const Replacement& replacement)
{
    return ChangedText(expression, ChangesOf(expression, replacement)).Fits();
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
