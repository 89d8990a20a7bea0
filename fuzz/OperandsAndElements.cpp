#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <TovoPlatform/Maths.h>
#include <expression_text/Texts.h>
#include <operands/Operands.h>

#include "Job.h"
#include "Oracles.h"
#include "Reader.h"

// Operands, table elements and tables, loaded from anything and handed on to each other, while what
// they name changes.

namespace tovo::fuzz {
namespace {

constexpr int kMostActions = 40;
constexpr int kLongestText = 200;
constexpr int kMostNested = 8; // of formulas and tables, which are worked on at each place
constexpr int kMostRows = 8;

class Host {
public:
    explicit Host(Reader reader)
        : m_Reader(reader),
          m_IsStockSet(m_Reader.Pick(2) == 0),
          m_Job(m_IsStockSet, m_Reader.Pick(2) != 0),
          m_First(m_Job.Set()),
          m_Second(m_Job.Set()),
          m_Element(m_Job.Set())
    {
        SpeakLanguage(m_Reader.Pick(kLanguages));
    }

    void Run()
    {
        for (int action = 0; action < kMostActions && !m_Reader.AtEnd(); ++action) {
            Act();
            if (IsThorough())
                Look();
        }
        Look();
    }

private:
    void Look()
    {
        Record record;
        m_Job.Show(record);
        for (CalcOpBase* operand : {static_cast<CalcOpBase*>(&m_First), &m_Plain})
            test::Show(*operand);
    }

    CalculationOperand& Operand() { return m_Reader.Pick(2) == 0 ? m_First : m_Second; }
    CFormtblElem& Element()
    {
        const int index = m_Reader.Pick(7);
        return index == 0 ? m_Element : m_Job.Element(Table(), index - 1);
    }
    FormulaTableImpl& Table()
    {
        const int index = m_Reader.Pick(Job::kTables + 1);
        return index < Job::kTables || !m_Large ? m_Job.Table(index % Job::kTables) : *m_Large;
    }
    CString Text() { return m_Reader.Text().Left(kLongestText); }
    // How often formulas and tables are worked on grows with each of them that names another.
    bool IsTooMuch() { return m_Job.CountNested() > kMostNested; }

    void Act()
    {
        switch (m_Reader.Pick(16)) {
        case 0:
            return Load(m_Reader.Pick(3) == 0 ? static_cast<CalcOpBase&>(m_Plain) : Operand());
        case 1:
            return Assign();
        case 2:
            return Calculate(Operand());
        case 3:
            return Scan(Operand());
        case 4:
            return Ask(Operand());
        case 5:
            return Element().init(Text());
        case 6:
            return Use(Element());
        case 7:
            return SetElement(Element());
        case 8:
            return MakeTable();
        case 9:
            return SetLimit();
        case 10:
            return LookUp(Table());
        case 11:
            return ReplaceCell(Table());
        case 12: {
            VariableImpl& variable = m_Job.Variable(m_Reader.Pick(Job::kVariables));
            return variable.SetValue(m_Reader.Number());
        }
        case 13: {
            FormulaImpl& formula = m_Job.Formula(m_Reader.Pick(Job::kFormulas));
            formula.SetFromEncodedString(Text());
            return IsTooMuch() ? formula.SetFromEncodedString(u"1") : void();
        }
        case 14:
            return m_Job.Set().StartNewPass();
        default:
            return SpeakLanguage(m_Reader.Pick(kLanguages));
        }
    }

    void Load(CalcOpBase& operand)
    {
        const int way = m_Reader.Pick(4);
        if (way < 2) {
            test::Load(operand, Text());
        } else if (way == 2) {
            operand.LoadNumericConstant(m_Reader.Number());
        } else {
            const CString pointers = m_Reader.Text();
            operand.LoadExpression(Text(), pointers);
        }
        if (operand.IsExpression() && CountNested(operand.GetFmlaExprBase()) > kMostNested)
            operand.Clear();
    }
    void Assign()
    {
        const int way = m_Reader.Pick(5);
        const std::string before = IsThorough() ? test::Show(m_First) : std::string();
        if (way == 0)
            m_First = static_cast<CalculationOperand&>(m_First);
        else if (way == 1)
            m_Second = m_First;
        else if (way == 2)
            m_Plain = m_First;
        else if (way == 3)
            m_Second = m_Plain;
        else
            m_First = static_cast<CalcOpBase&>(m_Second);
        if (!IsThorough())
            return;
        Require(way == 4 || test::Show(m_First) == before, "the source of a copy as it was",
                [&] { return before; });
        // An expression comes without its tree, and so without its kind.
        if (way == 1 && !m_First.IsExpression())
            Require(test::Show(m_Second) == before, "a copy as the source", [&] { return before; });
    }
    void Calculate(CalculationOperand& operand)
    {
        if (IsTooMuch())
            return;
        const auto shown = [&operand] { return test::Show(operand); };
        const bool isValid = operand.IsValid(true);
        const bool isCalculated = operand.Calculate();
        const double value = operand.GetValue();
        const bool isCheckedFirst =
            operand.IsExpression() || operand.IsFormula() || operand.IsFormulaTable();
        Require(isValid || !isCalculated || !isCheckedFirst, "no value of what is not valid",
                shown);
        // A table that was validated before one of its cells lost its object fails in silence.
        Require(isCalculated || operand.GetMsgId() != MSG_NONE || !operand.IsLoaded() ||
                    operand.IsFormulaTable(),
                "a message for the failure", shown);
        // Nothing changes meanwhile that is in a stock set.
        Require(!m_IsStockSet || (operand.Calculate() == isCalculated &&
                                  Shown(operand.GetValue()) == Shown(value)),
                "the same once more", shown);
        const int length = operand.GetTextDisplay().GetLength();
        Require(operand.GetInvalidPos() >= -1 && operand.GetInvalidPos() <= length,
                "an invalid position inside the text", shown);
    }
    void Scan(CalculationOperand& operand)
    {
        CScannedVariables list;
        const int all = m_Reader.Pick(2);
        if (!IsTooMuch())
            operand.GetVariables(list, all != 0, m_Reader.Pick(2) != 0);
        Record record;
        Show(record, list);
    }
    void Ask(CalculationOperand& operand)
    {
        test::Show(operand);
        operand.GetRTFDisplay();
        operand.GetCalculated();
        // Only what the operand is, and what is in the set, is given.
        try {
            const int which = m_Reader.Pick(4);
            if (which == 0)
                operand.GetVarObj().GetName();
            else if (which == 1)
                operand.GetFmlaObj().GetName();
            else if (which == 2)
                operand.GetFormtblObj().GetName();
            else
                operand.GetFmlaExprBase().InsertString(m_Reader.Text().Left(kLongestText), 0);
        } catch (const CInvalidArgException&) {
        }
    }

    void SetElement(CFormtblElem& element)
    {
        const int way = m_Reader.Pick(6);
        if (way == 0)
            element.XSetName(Text());
        else if (way == 1)
            element.SetName(Text());
        else if (way == 2)
            element.SetType(static_cast<char16_t>(m_Reader.Int()));
        else if (way == 3)
            element = m_Element;
        else if (way == 4)
            m_Element = element;
        else
            element = CFormtblElem(element);
    }
    void Use(CFormtblElem& element)
    {
        unsigned int message = MSG_NONE;
        element.value();
        element.isYesNo();
        element.XGetName();
        element.GetCombinedString();
        const int all = m_Reader.Pick(2);
        if (IsTooMuch())
            return;
        const int isSound = element.CheckNestedFormulas(message);
        Require(isSound == 0 || message == MSG_NONE, "no message with a success");
        CScannedVariables list;
        element.Calculate(message, m_Reader.Pick(2) == 0 ? nullptr : &list);
        element.GetVariables(list, all, 1);
    }

    // A table of any size takes the place of T, as far as there are such tables.
    void MakeTable()
    {
        const int rows = m_Reader.Int();
        const int columns = m_Reader.Int();
        if (rows > kMostRows || columns > kMostRows)
            return;
        try {
            auto table = std::make_unique<FormulaTableImpl>(&m_Job.Set(), rows, columns);
            for (int cell = 0; cell < rows * columns; ++cell)
                table->SetCell(cell / columns, cell % columns, new CFormtblElem(m_Element));
            CString name = u"T";
            table->SetName(name);
            m_Job.Set().AddFormulaTable(table.get());
            m_Large = std::move(table);
        } catch (const CInvalidArgException&) {
            Require(rows < 2 || columns < 1, "a table of that size");
        }
    }
    void SetLimit()
    {
        FormulaTableImpl& table = Table();
        const bool isRow = m_Reader.Pick(2) == 0;
        const int index = m_Reader.Int();
        const double limit = m_Reader.Number();
        const int count = isRow ? table.GetRowCount() : table.GetColumnCount();
        try {
            isRow ? table.SetRowLimit(index, limit) : table.SetColumnLimit(index, limit);
            Require(Shown(isRow ? table.GetRowLimit(index) : table.GetColumnLimit(index)) ==
                        Shown(limit),
                    "the limit that was set");
        } catch (const CInvalidArgException&) {
            Require(index < 0 || index >= count, "a limit of that index");
        }
    }
    void LookUp(FormulaTableImpl& table)
    {
        if (IsTooMuch())
            return;
        table.SetValidated(0);
        unsigned int message = MSG_NONE;
        const int isValid = table.IsValid(message, m_Reader.Pick(2));
        Require(isValid == 0 || message == MSG_NONE, "no message with a success");
        CScannedVariables list;
        table.Calculate(message, m_Reader.Pick(2) == 0 ? nullptr : &list);
        table.GetVariables(list, m_Reader.Pick(2), 1);
        const int row = table.GetRowIndex();
        const int column = table.GetColIndex();
        const double selected = table.GetRowSelector().value();
        const bool isFirst = row == 0 || TvCompareDoubles(selected, table.GetRowLimit(row - 1)) > 0;
        const bool isReached = row == table.GetRowCount() - 1 ||
                               TvCompareDoubles(selected, table.GetRowLimit(row)) <= 0;
        Require(column >= 0 && column < table.GetColumnCount() && isFirst && isReached,
                "the first row that takes the selector", [row] { return std::to_string(row); });
    }
    // The former cell goes to whoever replaces it.
    void ReplaceCell(FormulaTableImpl& table)
    {
        const int row = m_Reader.Int();
        const int column = m_Reader.Int();
        try {
            const std::unique_ptr<CFormtblElem> former(table.GetCell(row, column));
            table.SetCell(row, column, new CFormtblElem(Text(), m_Job.Set()));
        } catch (const CInvalidArgException&) {
            Require(row < 0 || row >= table.GetRowCount() || column < 0 ||
                        column >= table.GetColumnCount(),
                    "a cell of that place");
        }
    }

    Reader m_Reader;
    const bool m_IsStockSet;
    Job m_Job;
    std::unique_ptr<FormulaTableImpl> m_Large;
    CalculationOperand m_First;
    CalculationOperand m_Second;
    CalcOpBase m_Plain;
    CFormtblElem m_Element;
};

} // namespace
} // namespace tovo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    tovo::fuzz::BeginInput(bytes, count);
    tovo::fuzz::Host(tovo::fuzz::Reader(bytes, count)).Run();
    return 0;
}
