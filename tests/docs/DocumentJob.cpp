#include "DocumentJob.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <utility>

#include "MarkdownTable.h"

namespace tovo::test {
namespace {

const std::map<std::string, int> kReferences = {{"variable", TOK_VARIABLE},
                                                {"formula", TOK_FORMULA},
                                                {"missing formula", TOK_FORMULA},
                                                {"table", TOK_FORMTBL},
                                                {"missing table", TOK_FORMTBL}};

const std::map<std::string, void (CalcSetImpl::*)(double)> kJobValues = {
    {"DURATION", &CalcSetImpl::SetDuration},
    {"JOBSIZE", &CalcSetImpl::SetJobSize},
    {"QUANTITY", &CalcSetImpl::SetQuantity}};

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
    std::vector<std::pair<FormulaImpl*, std::string>> formulas;
    for (const auto& row : RowsOfTables(document, {"Name", "Kind", "Value"})) {
        const CString name(row.cells.at(0));
        const std::string& kind = row.cells.at(1);
        const std::string& value = row.cells.at(2);
        if (kind == "job value") {
            (m_Set.*kJobValues.at(row.cells[0]))(NumberIn(value));
            continue;
        }
        m_Names.push_back({u" " + name + u" ", kReferences.at(kind)});
        if (kind == "variable")
            Var(name, NumberIn(value));
        else if (kind == "formula")
            formulas.emplace_back(&Formula(name, CString()), value);
    }
    std::sort(m_Names.begin(), m_Names.end(), [](const Name& a, const Name& b) {
        return a.stretch.GetLength() > b.stretch.GetLength();
    });
    for (const auto& [formula, text] : formulas)
        Type(formula->GetExpression(), text);
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
        if (name != m_Names.end() && !expression.InsVarPtrs(pos, length, name->kind))
            throw std::runtime_error("too many references: " + text);
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

} // namespace tovo::test
