#include "Calculation.h"

#include <algorithm>
#include <unordered_map>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/ScannedVariables.h>
#include <TovoFormula/TokenCodes.h>

namespace {

// The string table of the library has no text for the ids that are named here.
CString MessageText(unsigned int message)
{
    switch (message) {
    case MSG_NONE:
        return u"A variable, formula or table cannot be found.";
    case MSG_GENERAL_FAILURE:
        return u"The expression is incomplete or cannot be calculated.";
    case MSG_COLUMN_LIMITS_ORDER:
        return u"The column limits do not rise.";
    case MSG_ROW_LIMITS_ORDER:
        return u"The row limits do not rise.";
    case kNestedTooDeep:
        return u"Formulas and tables are nested too deep.";
    default:
        break;
    }
    CString text;
    if (!text.LoadString(message))
        text.Format(u"Message %d.", static_cast<int>(message));
    return text;
}

// To be called at once behind the failure: the next operation overwrites the chain.
Fault TakeFault(unsigned int message, JobSet& set)
{
    Fault fault{message, MessageText(message), {}};
    const CCalcErrorTracker& tracker = set.ErrorTracker();
    for (int index = 0; index < tracker.NumObjs(); ++index)
        fault.chain.push_back(tracker.GetStr(index));
    return fault;
}

// Dependencies of one kind, each name once; in a condition if it is that anywhere.
class DependencyList {
public:
    void Add(const CString& name, bool inCondition)
    {
        const auto [place, isNew] = m_Places.try_emplace(name, m_List.size());
        if (isNew)
            m_List.push_back({name, inCondition});
        else if (inCondition)
            m_List[place->second].inCondition = true;
    }
    std::vector<Dependency> Take() { return std::move(m_List); }

private:
    std::vector<Dependency> m_List;
    std::unordered_map<CString, std::size_t> m_Places;
};

// What the list and the objects that it speaks of record of a scan.
void TakeScanned(const CScannedVariables& list, JobSet& set, Dependencies& uses)
{
    const CStringList& names = list.VariableList();
    for (POSITION place = names.GetHeadPosition(); place;) {
        const CString& name = names.GetNext(place);
        // Asking the set itself could make the variable up, and a note would complain of it.
        IVarObj* const variable = set.FindVariable(name);
        uses.variables.push_back({name, variable && variable->InCond()});
    }
    if (list.DURATIONScanned())
        uses.jobValues.push_back({kDuration, set.GetDURATIONInCondition() != 0});
    if (list.JOBSIZEScanned())
        uses.jobValues.push_back({kJobSize, set.GetJOBSIZEInCondition() != 0});
    if (list.QuantityScanned())
        uses.jobValues.push_back({kQuantity, set.GetQuantityInCondition() != 0});
}

// The formulas and tables that a text refers to. The text has both branches of every IF; a dynamic
// scan has marked those that the calculation took.
void TakeReferred(const CFmlaExprBase& text, JobSet& set, bool isStaticScan, Dependencies& uses)
{
    DependencyList formulas;
    DependencyList tables;
    for (int index = 0; index < text.NumVars(); ++index) {
        // What the set gives is an interface; the marks of a scan are with this program's classes.
        const CString name = text.VarName(index);
        if (text.VarType(index) == TOK_FORMULA) {
            auto* const formula = dynamic_cast<JobFormula*>(set.GetFormulaObj(name));
            if (formula && (isStaticScan || formula->GetScanned()))
                formulas.Add(name, formula->GetScannedInCondition());
        } else if (text.VarType(index) == TOK_FORMTBL) {
            auto* const table = dynamic_cast<JobTable*>(set.GetFormulaTableObj(name));
            if (table && (isStaticScan || table->GetScanned()))
                tables.Add(name, table->GetScannedInCondition());
        }
    }
    uses.formulas = formulas.Take();
    uses.tables = tables.Take();
}

// A table has no text: it refers to what its selectors and cells name. A calculation reads one
// cell, and the selectors only to choose it, which makes them a condition.
void TakeReferred(JobTable& table, bool isStaticScan, Dependencies& uses)
{
    DependencyList formulas;
    DependencyList tables;
    const auto add = [&](const CFormtblElem& element, bool inCondition) {
        if (element.isFormula())
            formulas.Add(element.GetName(), inCondition);
        else if (element.isFormtbl())
            tables.Add(element.GetName(), inCondition);
    };
    add(table.GetRowSelector(), !isStaticScan);
    if (table.GetColumnCount() > 1)
        add(table.GetColumnSelector(), !isStaticScan);
    if (!isStaticScan) {
        add(*table.GetCell(table.GetRowIndex(), table.GetColIndex()), false);
    } else {
        for (int row = 0; row < table.GetRowCount(); ++row) {
            for (int column = 0; column < table.GetColumnCount(); ++column)
                add(*table.GetCell(row, column), false);
        }
    }
    uses.formulas = formulas.Take();
    uses.tables = tables.Take();
}

TableFacts CalculateTable(Job& job, JobTable& table, bool isStaticScan)
{
    TableFacts facts;
    facts.value = {table.GetName(), job.UnitOf(table), table.IsBoolean(), 0.0};
    job.StartPass();
    unsigned int message = MSG_NONE;
    // Calculating alone would check the formulas that are named, but not for leading back here.
    if (!table.IsValid(message, 1) || !table.Calculate(message, nullptr)) {
        facts.fault = TakeFault(message, job.Set());
        return facts;
    }
    facts.value.number = table.GetValue();
    const CFormtblElem& cell = *table.GetCell(table.GetRowIndex(), table.GetColIndex());
    facts.row = table.GetRowIndex() + 1;
    facts.column = table.GetColIndex() + 1;
    facts.cell = cell.GetCombinedString();
    // The name of a constant is its number in thousandths, which nobody wants to see.
    facts.cellContent = {cell.isConstant() ? CString() : cell.GetName(), CString(),
                         cell.isYesNo() != 0, cell.value()};

    // A table that is still calculated would answer at once, and the list would stay empty.
    job.StartPass();
    CScannedVariables list;
    table.GetVariables(list, isStaticScan ? 1 : 0, 1);
    TakeScanned(list, job.Set(), facts.uses);
    TakeReferred(table, isStaticScan, facts.uses);
    return facts;
}

} // namespace

Facts CalculateJob(Job& job, bool isStaticScan)
{
    Facts facts;
    facts.isStaticScan = isStaticScan;
    facts.jobValues = {{kDuration, CString(), false, job.Set().GetDuration()},
                       {kJobSize, CString(), false, job.Set().GetJobSize()},
                       {kQuantity, CString(), false, job.Set().GetQuantity()}};
    for (const auto& variable : job.Variables())
        facts.variables.push_back({variable->GetName(), variable->GetUnit(0), variable->IsBoolean(),
                                   variable->GetValue()});
    for (const auto& formula : job.Formulas())
        facts.formulas.push_back(CalculateFormula(job, *formula, isStaticScan));
    for (const auto& table : job.Tables())
        facts.tables.push_back(CalculateTable(job, *table, isStaticScan));
    // Last, since a name may be asked for in any of the calculations.
    facts.madeUpVariables = job.Set().MadeUpVariables();
    return facts;
}

FormulaFacts CalculateFormula(Job& job, JobFormula& formula, bool isStaticScan)
{
    CFmlaExpression& expression = formula.GetExpression();
    FormulaFacts facts;
    facts.value = {formula.GetName(), formula.GetUnit(), false, 0.0};
    facts.text = expression.GetTextStr();
    job.StartPass();
    unsigned int message = MSG_NONE;
    if (!formula.Calculate(message, nullptr)) {
        facts.fault = TakeFault(message, job.Set());
        facts.faultPos = expression.GetInvalidPos();
        return facts;
    }
    // The tree and not the name tells the kind, since an expression has no name.
    facts.value.isYesNo = expression.IsBoolean() != 0;
    facts.value.number = formula.GetValue();

    // The scan is a pass of its own, or what the first one calculated would not be looked into.
    job.StartPass();
    CScannedVariables list;
    formula.GetVariables(list, isStaticScan ? 1 : 0, 1);
    TakeScanned(list, job.Set(), facts.uses);
    TakeReferred(expression, job.Set(), isStaticScan, facts.uses);
    return facts;
}

bool HasFault(const Facts& facts)
{
    const auto failed = [](const auto& object) { return object.fault.has_value(); };
    return std::any_of(facts.formulas.begin(), facts.formulas.end(), failed) ||
           std::any_of(facts.tables.begin(), facts.tables.end(), failed);
}

CString LocalJobValueName(const CString& name)
{
    const int otherCode = name == CString(kJobSize) ? TOK_JOBSIZE : TOK_QUANTITY;
    CString local;
    CFmlaExprBase::GetTokenString(name == CString(kDuration) ? TOK_DURATION : otherCode, local);
    return local;
}
