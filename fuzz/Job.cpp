#include "Job.h"

#include <algorithm>
#include <utility>

#include "Oracles.h"

namespace tovo::fuzz {

namespace {

// Opens what is for derived classes.
struct SetAccess : CalcSetImpl {
    using CalcSetImpl::m_HasDatabase;
    using CalcSetImpl::m_ReportFcnDomainErrors;
};
struct ExpressionAccess : CFmlaExpression {
    using CFmlaExpression::m_NestedFmlaNames;
};

// A set that a host derived, and which has two objects that are not stock ones.
class HostSet : public CalcSetImpl {
public:
    HostSet(IVarObj& variable, IFormulaObj& formula) : m_Variable(variable), m_Formula(formula) {}

    IVarObj* GetVarObj(CExString name, int flag, long key) override
    {
        return name == m_Variable.GetName() ? &m_Variable : CalcSetImpl::GetVarObj(name, flag, key);
    }
    IFormulaObj* GetFormulaObj(CExString name) override
    {
        return name == m_Formula.GetName() ? &m_Formula : CalcSetImpl::GetFormulaObj(name);
    }

private:
    IVarObj& m_Variable;
    IFormulaObj& m_Formula;
};

bool IsNested(const CFormtblElem& element)
{
    return element.isFormula() || element.isFormtbl();
}

} // namespace

Job::Job(bool isStockSet, bool isStrict)
    : m_Set(isStockSet ? std::make_unique<CalcSetImpl>()
                       : std::make_unique<HostSet>(m_HostVariable, m_HostFormula))
{
    (*m_Set).*(&SetAccess::m_ReportFcnDomainErrors) = isStrict ? 1 : 0;
    (*m_Set).*(&SetAccess::m_HasDatabase) = 1;
    const auto fill = [this](auto& objects, auto names, auto add) {
        for (std::size_t index = 0; index < objects.size(); ++index) {
            CString name = names[index];
            objects[index]->SetName(name);
            (*m_Set.*add)(objects[index].get());
        }
    };
    for (auto& variable : m_Variables)
        variable = std::make_unique<VariableImpl>(m_Set.get());
    for (auto& formula : m_Formulas)
        formula = std::make_unique<FormulaImpl>(m_Set.get());
    for (std::size_t index = 0; index < m_Tables.size(); ++index)
        m_Tables[index] =
            std::make_unique<FormulaTableImpl>(m_Set.get(), 2, static_cast<int>(index) + 1);
    fill(m_Variables, std::array{u"x", u"y", u"b?"}, &CalcSetImpl::AddVariable);
    fill(m_Formulas, std::array{u"A", u"B", u"C?", u"D"}, &CalcSetImpl::AddFormula);
    fill(m_Tables, std::array{u"T", u"S"}, &CalcSetImpl::AddFormulaTable);

    for (auto& table : m_Tables) {
        for (int row = 0; row < 2; ++row) {
            table->SetRowLimit(row, row);
            for (int column = 0; column < table->GetColumnCount(); ++column)
                table->SetCell(row, column, new CFormtblElem(u"1500", *m_Set));
        }
        table->GetRowSelector().SetVariable(u"x");
        table->GetColumnSelector().SetVariable(u"y");
    }
    // The same for as long as nothing changes, however often it is asked.
    m_HostFormula.m_OnCalculate = [this](CScannedVariables*) {
        m_HostFormula.m_Value = Variable(0).GetValue() + 1.0;
    };
}

CFormtblElem& Job::Element(FormulaTableImpl& table, int index)
{
    if (index < 2)
        return index == 0 ? table.GetRowSelector() : table.GetColumnSelector();
    const int columns = table.GetColumnCount();
    const int cell = std::min(index - 2, columns * table.GetRowCount() - 1);
    return *table.GetCell(cell / columns, cell % columns);
}

int Job::CountNested()
{
    int count = 0;
    for (auto& formula : m_Formulas)
        count += fuzz::CountNested(formula->GetExpression());
    for (auto& table : m_Tables)
        for (int element = 0; element < 2 + 2 * table->GetColumnCount(); ++element)
            count += IsNested(Element(*table, element)) ? 1 : 0;
    return count;
}

void Job::Show(Record& record)
{
    for (auto& formula : m_Formulas) {
        record << "\n    ";
        fuzz::Show(record, formula->GetExpression());
    }
    for (auto& table : m_Tables)
        record << "T " << table->GetValue() << table->GetCalculated() << table->GetScanned()
               << table->GetScannedInCondition();
    for (auto& variable : m_Variables)
        record << "V " << variable->GetValue() << variable->InCond();
    fuzz::Show(record, m_Set->ErrorTracker());
    record << m_Set->GetDURATIONInCondition() << m_Set->GetJOBSIZEInCondition()
           << m_Set->GetQuantityInCondition() << m_Set->GetQuantityInCalculations();
    Require(!CExprTree::InIfCondition() && ExpressionAccess::m_NestedFmlaNames.IsEmpty(),
            "the state of the thread as it was");
}

void Show(Record& record, CFmlaExpression& expression)
{
    const int pos = expression.GetInvalidPos();
    Require(pos >= -1 && pos <= expression.GetTextStr().GetLength(),
            "an invalid position inside the text",
            [&] { return std::to_string(pos) + " in " + expression.GetTextStr().ToUtf8(); });
    record << expression.GetValue() << expression.GetMessageNum() << pos << expression.IsLoaded()
           << expression.IsCalculated() << expression.IsBoolean() << expression.IsNumeric();
}

void Show(Record& record, const CScannedVariables& list)
{
    const CStringList& names = list.VariableList();
    for (POSITION place = names.GetHeadPosition(); place;)
        record << names.GetNext(place);
    record << list.DURATIONScanned() << list.JOBSIZEScanned() << list.QuantityScanned();
}

void Show(Record& record, const CCalcErrorTracker& tracker)
{
    record << static_cast<int>(tracker.GetError()) << "[ ";
    for (int index = 0; index < tracker.NumObjs(); ++index)
        record << tracker.GetStr(index);
    record << tracker.NumObjs() << "] ";
}

int CountNested(const CFmlaExprBase& expression)
{
    int count = 0;
    for (int index = 0; index < expression.NumVars(); ++index)
        count += expression.VarType(index) != TOK_VARIABLE ? 1 : 0;
    return count;
}

} // namespace tovo::fuzz
