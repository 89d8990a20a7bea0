#include "Validation.h"

#include <algorithm>
#include <cmath>

#include "ExpressionText.h"
#include "TableParts.h"

namespace tovo::job {

namespace {

// A lookup of the engine counts rows and columns in 16 bits.
constexpr std::size_t kMostRowsOrColumns = 32768;

std::string Quoted(const ObjectName& object)
{
    return std::string(WordFor(object.kind)) + " \"" + object.name + "\"";
}

Refusal BadTable(const Table& table, std::string text)
{
    return {RefusalKind::BadTable, std::move(text), Quoted(NameOf(table))};
}

bool AreFinite(const std::vector<double>& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double n) { return std::isfinite(n); });
}

bool IsWellFormed(const std::string& text)
{
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    return std::all_of(text.begin(), text.end(), isAscii) || Wide(text).ToUtf8() == text;
}

struct NamedText {
    const char* what;
    const std::string& text;
};

// Files take nothing else.
Result<void> CheckUtf8(const ObjectName& object, std::initializer_list<NamedText> texts)
{
    for (const auto& [what, text] : texts) {
        if (!IsWellFormed(text))
            return Refusal{RefusalKind::BadValue,
                           std::string("the ") + what + " is no well-formed UTF-8", Quoted(object)};
    }
    return {};
}

template <typename Object>
Result<void> CheckWords(const Object& object)
{
    return CheckUtf8(NameOf(object), {{"unit", object.unit}, {"note", object.note}});
}

Result<void> CheckShape(const Table& table)
{
    const std::size_t rows = table.cells.size();
    if (rows < 2 || rows > kMostRowsOrColumns)
        return BadTable(table, "a table has 2 to 32768 rows");
    const std::size_t columns = table.cells.front().size();
    if (columns < 1 || columns > kMostRowsOrColumns)
        return BadTable(table, "a table has 1 to 32768 columns");
    for (std::size_t row = 1; row < rows; ++row) {
        if (table.cells[row].size() != columns)
            return BadTable(table, "row " + std::to_string(row + 1) + " has " +
                                       std::to_string(table.cells[row].size()) + " cells, not " +
                                       std::to_string(columns));
    }
    if (table.rowLimits.size() != rows)
        return BadTable(table, std::to_string(table.rowLimits.size()) + " row limits for " +
                                   std::to_string(rows) + " rows");
    const bool needsNone = columns == 1 && table.columnLimits.empty();
    if (!needsNone && table.columnLimits.size() != columns)
        return BadTable(table, std::to_string(table.columnLimits.size()) + " column limits for " +
                                   std::to_string(columns) + " columns");
    return {};
}

Result<void> CheckElements(const Table& table)
{
    Result<void> result;
    const auto isMissing = [](const Element& selector) {
        return std::holds_alternative<std::monostate>(selector);
    };
    if (isMissing(table.rowSelector))
        return BadTable(table, "the row selector is missing");
    if (HasColumns(table) && isMissing(table.columnSelector))
        return BadTable(table, "the column selector is missing");
    ForEachKeptElement(table, [&](const TablePart& part, const Element& element) {
        const auto* const number = std::get_if<double>(&element);
        const auto* const object = std::get_if<ObjectName>(&element);
        if (number && !std::isfinite(*number))
            result = BadTable(table, part.Words() + ": the number is not finite");
        if (object && (object->kind == Kind::JobValue || object->name.empty()))
            result = BadTable(table, part.Words() + ": refers to no variable, formula or table");
        if (object && !IsWellFormed(object->name))
            result = BadTable(table, part.Words() + ": the name is no well-formed UTF-8");
    });
    return result;
}

} // namespace

Refusal UnknownName(const ObjectName& object)
{
    return {RefusalKind::UnknownName,
            "there is no " + std::string(WordFor(object.kind)) + " of this name", object.name};
}

// The engine tells names without the white space at their end, so such a name could not be found
// again.
Result<void> CheckNewName(const Content& content, const ObjectName& object)
{
    const std::string kind(WordFor(object.kind));
    if (object.name.empty())
        return Refusal{RefusalKind::BadName, "the name of a " + kind + " must not be empty", {}};
    if (!IsWellFormed(object.name))
        return Refusal{RefusalKind::BadName, "the name is no well-formed UTF-8", kind};
    CString trimmed = Wide(object.name);
    trimmed.TrimRight();
    if (trimmed != Wide(object.name))
        return Refusal{RefusalKind::BadName, "the name must not end in white space",
                       Quoted(object)};
    if (content.Has(object))
        return Refusal{RefusalKind::NameTaken, "there is a " + kind + " of this name already",
                       object.name};
    return {};
}

Result<void> CheckObject(const Variable& variable)
{
    if (const Result<void> words = CheckWords(variable); !words || variable.source)
        return words;
    if (!std::isfinite(variable.value))
        return Refusal{RefusalKind::BadValue, "the value is not finite", Quoted(NameOf(variable))};
    if (IsYesNoName(variable.name) && variable.value != 0.0 && variable.value != 1.0)
        return Refusal{RefusalKind::BadValue,
                       "a name that ends in \"?\" takes 1 for yes or 0 for no",
                       Quoted(NameOf(variable))};
    return {};
}

Result<void> CheckObject(const Formula& formula)
{
    if (const Result<void> words = CheckWords(formula); !words)
        return words;
    return CheckUtf8(NameOf(formula), {{"expression", formula.expression}});
}

Result<void> CheckObject(const Table& table)
{
    if (const Result<void> words = CheckWords(table); !words || table.linked)
        return words;
    if (const Result<void> shape = CheckShape(table); !shape)
        return shape;
    if (!AreFinite(table.rowLimits) || !AreFinite(table.columnLimits))
        return BadTable(table, "a limit is not finite");
    return CheckElements(table);
}

Result<void> CheckValues(const JobValues& values)
{
    if (AreFinite({values.duration, values.jobSize, values.quantity}))
        return {};
    return Refusal{RefusalKind::BadValue, "a job value is not finite", {}};
}

// As the engine has it: the last column limit may be anything.
Result<void> CheckLimitsRise(const Table& table)
{
    const auto rise = [](const std::vector<double>& limits, std::size_t count) {
        const auto end =
            limits.begin() + static_cast<std::ptrdiff_t>(std::min(count, limits.size()));
        return std::adjacent_find(limits.begin(), end, std::greater_equal<>()) == end;
    };
    if (!rise(table.rowLimits, table.rowLimits.size()))
        return BadTable(table, "the row limits do not rise");
    if (!table.columnLimits.empty() && !rise(table.columnLimits, table.columnLimits.size() - 1))
        return BadTable(table, "the column limits do not rise");
    return {};
}

} // namespace tovo::job
