#include "DocumentJob.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "MarkdownTable.h"

namespace tovo::test {
namespace {

constexpr int kNoReference = -1;

int KindOf(const std::string& kind)
{
    if (kind.ends_with("variable"))
        return TOK_VARIABLE;
    if (kind.ends_with("formula"))
        return TOK_FORMULA;
    return kind.ends_with("table") ? static_cast<int>(TOK_FORMTBL) : kNoReference;
}

double NumberIn(const std::string& cell)
{
    return cell == "yes" ? 1.0 : cell == "no" ? 0.0 : std::stod(cell);
}

std::string ShownValue(const CFmlaExpression& expression)
{
    if (expression.IsBoolean())
        return expression.GetValue() != 0.0 ? "yes" : "no";
    std::array<char, 32> text;
    (void)std::snprintf(text.data(), text.size(), "%.10g", expression.GetValue());
    return text.data();
}

} // namespace

std::string MessageText(unsigned int message)
{
    InitTovoFormulaDLL(0);
    CString text;
    return text.LoadString(message) ? text.ToUtf8() : "none";
}

void DocumentJob::MakeJob(const std::string& document)
{
    m_Set.ReportDomainErrors();
    const auto rows = RowsOfTables(document, {"Name", "Kind", "Value"});
    ASSERT_FALSE(rows.empty());
    for (const auto& row : rows)
        if (const int kind = KindOf(row.cells.at(1)); kind != kNoReference)
            m_Names.push_back({CString(" " + row.cells.at(0) + " "), kind});
    std::sort(m_Names.begin(), m_Names.end(), [](const Name& a, const Name& b) {
        return a.stretch.GetLength() > b.stretch.GetLength();
    });
    for (const auto& row : rows) {
        const std::string& kind = row.cells.at(1);
        const std::string& value = row.cells.at(2);
        if (kind == "variable")
            Var(CString(row.cells[0]), NumberIn(value));
        else if (kind == "formula")
            Type(Formula(CString(row.cells[0]), CString()).GetExpression(), value);
        else if (kind == "job value")
            SetJobValue(row.cells[0], NumberIn(value));
    }
}

void DocumentJob::Type(CFmlaExprBase& expression, const std::string& text) const
{
    const CString whole(text);
    expression.SetExpr(whole);
    for (int pos = 0; pos < whole.GetLength();) {
        const auto rest = whole.View().substr(static_cast<std::size_t>(pos));
        const auto name = std::find_if(m_Names.begin(), m_Names.end(), [rest](const Name& known) {
            return rest.starts_with(known.stretch.View());
        });
        const int length = name == m_Names.end() ? 1 : name->stretch.GetLength();
        if (name != m_Names.end())
            expression.InsVarPtrs(pos, length, name->kind);
        pos += length;
    }
}

Outcome DocumentJob::OutcomeOf(const std::string& text)
{
    CFmlaExpression expression(m_Set);
    Type(expression, text);
    unsigned int message = MSG_NONE;
    if (expression.IsValid(message, CString(), 1) && expression.Calculate(nullptr))
        return {MSG_NONE, expression.GetInvalidPos(), ShownValue(expression)};
    return {static_cast<unsigned int>(expression.GetMessageNum()), expression.GetInvalidPos(), ""};
}

void DocumentJob::SetJobValue(const std::string& name, double value)
{
    if (name == "DURATION")
        m_Set.SetDuration(value);
    else if (name == "JOBSIZE")
        m_Set.SetJobSize(value);
    else
        m_Set.SetQuantity(value);
}

} // namespace tovo::test
