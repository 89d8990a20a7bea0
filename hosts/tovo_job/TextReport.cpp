#include "TextReport.h"

#include <algorithm>

#include <fmt/color.h>
#include <fmt/format.h>

#include "Columns.h"
#include "ValueText.h"

namespace {

constexpr std::size_t kListWidth = 72; // code points of a list of names before it is broken
std::string Painted(const std::string& text, const fmt::text_style& style, const TextManner& manner)
{
    return manner.isColoured ? fmt::format(style, "{}", text) : text;
}

// A heading over lines; nothing if there are none.
std::string Section(const std::string& heading, const std::string& lines, const TextManner& manner)
{
    if (lines.empty())
        return "";
    return "\n" + Painted(heading, fmt::emphasis::bold, manner) + "\n" + lines;
}

// Variables need no word for their kind: a reader expects them, and they are the most.
std::vector<std::string> UsesTexts(const Dependencies& uses)
{
    std::vector<std::string> texts;
    const auto add = [&](const char* kind, const CString& name, bool inCondition) {
        texts.push_back(kind + Printable(name) + (inCondition ? "*" : ""));
    };
    for (const Dependency& use : uses.jobValues)
        add("", LocalJobValueName(use.name), use.inCondition);
    for (const Dependency& use : uses.variables)
        add("", use.name, use.inCondition);
    for (const Dependency& use : uses.formulas)
        add("formula ", use.name, use.inCondition);
    for (const Dependency& use : uses.tables)
        add("table ", use.name, use.inCondition);
    return texts;
}

// The names, parted by commas, in lines of about kListWidth; one empty line for no names.
std::vector<std::string> BrokenList(const std::vector<std::string>& texts)
{
    std::vector<std::string> lines(1);
    for (const std::string& text : texts) {
        if (!lines.back().empty()) {
            lines.back() += ",";
            if (WidthOf(lines.back()) + WidthOf(text) < kListWidth)
                lines.back() += " ";
            else
                lines.emplace_back();
        }
        lines.back() += text;
    }
    return lines;
}

// One row for each line of the list; the name stands beside the first.
void AddUses(Columns& columns, const std::string& name, const Dependencies& uses)
{
    std::string first = name;
    for (const std::string& line : BrokenList(UsesTexts(uses))) {
        columns.AddRow({first, line});
        first.clear();
    }
}

// A mark that stands under the position in the text, behind the text for one that lies beyond it.
std::string MarkUnder(const CString& text, int position)
{
    return std::string(WidthOf(text.Left(position).ToUtf8()), ' ') + "^";
}

std::string FaultText(const std::string& subject, const Fault& fault, const TextManner& manner)
{
    // The number helps whoever looks the message up, in whatever language the texts are.
    const std::string words = fmt::format("{} ({})", Printable(fault.text), fault.message);
    return subject + Painted(words, fmt::fg(fmt::terminal_color::red), manner) + "\n";
}

// From the fault outward.
std::string ChainText(const Fault& fault)
{
    std::string lines;
    for (const CString& entry : fault.chain)
        lines += (lines.empty() ? "    at " : "    in ") + Printable(entry) + "\n";
    return lines;
}

// The text is printed as it is, blanks at its start included, or the mark would not fit.
std::string FormulaFaultText(const FormulaFacts& formula, const TextManner& manner)
{
    const std::string subject =
        formula.value.name.IsEmpty() ? "" : Printable(formula.value.name) + ": ";
    return FaultText(subject, *formula.fault, manner) + "    " + Printable(formula.text) +
           "\n    " + MarkUnder(formula.text, formula.faultPos) + "\n" + ChainText(*formula.fault);
}

std::string ValuesSection(const Facts& facts, const TextManner& manner)
{
    Columns jobValues("lr");
    for (const Value& value : facts.jobValues)
        jobValues.AddRow({Printable(LocalJobValueName(value.name)), ValueText(value, manner)});
    Columns variables("lrl");
    for (const Value& value : facts.variables)
        variables.AddRow({Printable(value.name), ValueText(value, manner), Printable(value.unit)});
    return Section("Job values", jobValues.Print(), manner) +
           Section("Variables", variables.Print(), manner);
}

std::string FormulasSection(const Facts& facts, const TextManner& manner)
{
    Columns columns("lrll");
    for (const FormulaFacts& formula : facts.formulas)
        columns.AddRow({Printable(formula.value.name),
                        formula.fault ? "failed" : ValueText(formula.value, manner),
                        Printable(formula.value.unit), Trimmed(Printable(formula.text))});
    return Section("Formulas", columns.Print(), manner);
}

std::string CellContentText(const TableFacts& table, const TextManner& manner)
{
    const CString& name = table.cellContent.name;
    if (name.IsEmpty())
        return ValueText(table.cellContent, manner);
    const char16_t kind = table.cell[0];
    return (kind == u'V' ? "variable " : kind == u'F' ? "formula " : "table ") + Printable(name);
}

std::string TablesSection(const Facts& facts, const TextManner& manner)
{
    Columns columns("lrlll");
    for (const TableFacts& table : facts.tables) {
        const std::string name = Printable(table.value.name);
        const std::string unit = Printable(table.value.unit);
        if (table.fault)
            columns.AddRow({name, "failed", unit, "", ""});
        else
            columns.AddRow({name, ValueText(table.value, manner), unit,
                            fmt::format("row {}, column {}", table.row, table.column),
                            CellContentText(table, manner)});
    }
    return Section("Tables, with the chosen cell", columns.Print(), manner);
}

std::string UsesSection(const Facts& facts, const TextManner& manner)
{
    Columns columns("ll");
    for (const FormulaFacts& formula : facts.formulas) {
        if (!formula.fault)
            AddUses(columns, Printable(formula.value.name), formula.uses);
    }
    for (const TableFacts& table : facts.tables) {
        if (!table.fault)
            AddUses(columns, "table " + Printable(table.value.name), table.uses);
    }
    const char* const title =
        facts.isStaticScan ? "What the texts refer to" : "What is used (* in a condition)";
    return Section(title, columns.Print(), manner);
}

std::string FaultsSection(const Facts& facts, const TextManner& manner)
{
    std::string lines;
    for (const FormulaFacts& formula : facts.formulas) {
        if (formula.fault)
            lines += "  " + FormulaFaultText(formula, manner);
    }
    for (const TableFacts& table : facts.tables) {
        if (table.fault)
            lines +=
                FaultText("  table " + Printable(table.value.name) + ": ", *table.fault, manner) +
                ChainText(*table.fault);
    }
    return Section("Faults", lines, manner);
}

// What is no fault to the library but most likely one to the user.
std::string Notes(const Facts& facts)
{
    std::string notes;
    for (const CString& name : facts.madeUpVariables)
        notes += fmt::format("Note: there is no variable \"{}\"; it counts as {}.\n",
                             Printable(name), IsYesNoName(name) ? "no" : "0");
    return notes.empty() ? "" : "\n" + notes;
}

} // namespace

std::string ValueText(const Value& value, const TextManner& manner)
{
    return ::ValueText(value.number, value.isYesNo, manner.decimalSeparator);
}

std::string TextReport(const Facts& facts, const TextManner& manner)
{
    const std::string report = ValuesSection(facts, manner) + FormulasSection(facts, manner) +
                               TablesSection(facts, manner) + UsesSection(facts, manner) +
                               FaultsSection(facts, manner) + Notes(facts);
    // Every section has an empty line before it, also the first.
    return report.substr(1);
}

std::string ExpressionTextReport(const Facts& facts, const TextManner& manner)
{
    const FormulaFacts& expression = facts.formulas.front();
    if (expression.fault)
        return FormulaFaultText(expression, manner) + Notes(facts);
    std::string report =
        Trimmed(Printable(expression.text)) + " = " + ValueText(expression.value, manner) + "\n";
    Columns uses("ll");
    const char* const title = facts.isStaticScan ? "refers to" : "uses";
    AddUses(uses, title, expression.uses);
    if (!UsesTexts(expression.uses).empty())
        report += uses.Print();
    return report + Notes(facts);
}
