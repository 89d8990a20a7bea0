#include "ObjectRows.h"

#include <algorithm>
#include <utility>

#include <TovoFormula/FmlaExprBase.h>

#include "Columns.h"
#include "ElementText.h"
#include "Folded.h"
#include "TableGrid.h"
#include "ValueText.h"

namespace {

constexpr const char* kJobValues[] = {"DURATION", "JOBSIZE", "QUANTITY"};

std::string LocalJobValue(const std::string& name)
{
    CString local;
    const int other = name == "JOBSIZE" ? TOK_JOBSIZE : TOK_QUANTITY;
    CFmlaExprBase::GetTokenString(name == "DURATION" ? TOK_DURATION : other, local);
    return local.ToUtf8();
}

std::string SelectorsText(const tovo::Table& table, const tovo::Job& job,
                          const std::string& decimal)
{
    const std::string rows = ElementText(table.rowSelector, job, decimal);
    if (table.cells.front().size() < 2)
        return "by " + rows;
    return "by " + rows + " and " + ElementText(table.columnSelector, job, decimal);
}

template <typename Object>
void AddUnitAndNote(const Object& object, std::string& text)
{
    text += "\n" + object.unit + "\n" + object.note;
}

// Everything that can be searched for, in lines.
std::string SearchedText(const tovo::Job& job, const tovo::ObjectName& object,
                         const std::string& decimal)
{
    const ObjectFacts facts = FactsOf(job, object, decimal);
    std::string text = facts.name + "\n" + facts.value + "\n" + facts.text;
    if (const auto* const variable = job.FindVariable(object.name);
        object.kind == tovo::Kind::Variable && variable)
        AddUnitAndNote(*variable, text);
    if (const auto* const formula = job.FindFormula(object.name);
        object.kind == tovo::Kind::Formula && formula)
        AddUnitAndNote(*formula, text);
    const auto* const table = job.FindTable(object.name);
    if (object.kind != tovo::Kind::Table || !table)
        return text;
    AddUnitAndNote(*table, text);
    const TableGrid grid(*table, job, decimal);
    for (std::size_t line = 0; line < grid.LineCount(); ++line) {
        for (std::size_t column = 0; column < grid.ColumnCount(); ++column)
            text += "\n" + grid.TextAt(line, column);
    }
    return text;
}

} // namespace

ObjectFacts FactsOf(const tovo::Job& job, const tovo::ObjectName& object,
                    const std::string& decimal)
{
    ObjectFacts facts{std::string(WordFor(object.kind)), object.name, {}, {}, {}};
    switch (object.kind) {
    case tovo::Kind::JobValue:
        facts.name = LocalJobValue(object.name);
        break;
    case tovo::Kind::Variable:
        facts.unit = job.FindVariable(object.name)->unit;
        facts.text = job.FindVariable(object.name)->note;
        break;
    case tovo::Kind::Formula:
        facts.unit = job.FindFormula(object.name)->unit;
        facts.text = Trimmed(job.TextOf(object));
        break;
    case tovo::Kind::Table:
        facts.unit = job.FindTable(object.name)->unit;
        facts.text = SelectorsText(*job.FindTable(object.name), job, decimal);
        break;
    }
    const auto value = job.ValueOf(object);
    facts.isFault = !value;
    facts.value = value ? ValueText(*value, tovo::IsYesNoName(object.name), decimal) : "fault";
    return facts;
}

ObjectRows::ObjectRows(const tovo::Job& job, std::string decimal)
    : m_Job(job), m_Decimal(std::move(decimal))
{
    Refresh();
}

void ObjectRows::Refresh()
{
    const WideText filter = Folded(m_Filter);
    m_Objects.clear();
    const auto add = [&](tovo::ObjectName object) {
        if (filter.empty() || IsFound(object, filter))
            m_Objects.push_back(std::move(object));
    };
    for (const char* const name : kJobValues)
        add({tovo::Kind::JobValue, name});
    for (const tovo::Variable& variable : m_Job.Variables())
        add(tovo::VariableNamed(variable.name));
    for (const tovo::Formula& formula : m_Job.Formulas())
        add(tovo::FormulaNamed(formula.name));
    for (const tovo::Table& table : m_Job.Tables())
        add(tovo::TableNamed(table.name));
}

void ObjectRows::SetFilter(const CString& filter)
{
    m_Filter = filter;
    Refresh();
}

std::optional<std::size_t> ObjectRows::Find(const tovo::ObjectName& object) const
{
    const auto found = std::find(m_Objects.begin(), m_Objects.end(), object);
    if (found == m_Objects.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_Objects.begin());
}

bool ObjectRows::IsFound(const tovo::ObjectName& object, const WideText& filter) const
{
    const CString text(std::string_view(SearchedText(m_Job, object, m_Decimal)));
    return Folded(text).find(filter) != WideText::npos;
}

// What decides the kind of the value stays at the end.
std::string FreeName(const tovo::Job& job, const tovo::ObjectName& like)
{
    const bool isYesNo = tovo::IsYesNoName(like.name);
    const std::string stem = isYesNo ? like.name.substr(0, like.name.size() - 1) : like.name;
    for (int number = 2;; ++number) {
        std::string name = stem + " " + std::to_string(number) + (isYesNo ? "?" : "");
        if (!job.Has({like.kind, name}))
            return name;
    }
}

tovo::AnyObject CopyOf(const tovo::Job& job, const tovo::ObjectName& object, std::string name)
{
    const auto renamed = [&](auto copy) -> tovo::AnyObject {
        copy.name = std::move(name);
        return copy;
    };
    if (object.kind == tovo::Kind::Variable)
        return renamed(*job.FindVariable(object.name));
    if (object.kind == tovo::Kind::Formula)
        return renamed(*job.FindFormula(object.name));
    return renamed(*job.FindTable(object.name));
}
