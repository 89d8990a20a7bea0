#include <TovoFormula/FormulaTableImpl.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <typeinfo>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/MessageIds.h>
#include <TovoPlatform/ArgumentValidator.h>
#include <TovoPlatform/Maths.h>

#include "../calculation/StaticScan.h"
#include "../calculation/UnderWay.h"
#include "../expression_core/Names.h"
#include "../expression_core/Pass.h"
#include "../expression_core/RestoreOnThrow.h"
#include "../expression_core/ScanMark.h"

using namespace tovo::detail;

namespace {

constexpr const char* kFile = "FormulaTableImpl";

// The selectors are built on the set, so the arguments are checked before it is followed.
ICalculationSet* Checked(ICalculationSet* calcSet, int numRows, int numColumns)
{
    constexpr const char* function = "FormulaImpl::FormulaImpl";
    CArgumentValidator::ValidateNonNullPointer(kFile, __LINE__, calcSet, "pBadPtr", function);
    CArgumentValidator::ValidateIsTrue(kFile, __LINE__, numRows >= 2, "numRows", function);
    CArgumentValidator::ValidateIsTrue(kFile, __LINE__, numColumns >= 1, "numColumns", function);
    const bool isCountable = numColumns <= std::numeric_limits<int>::max() / numRows;
    CArgumentValidator::ValidateIsTrue(kFile, __LINE__, isCountable, "numColumns", function);
    return calcSet;
}

void CheckIndex(int index, int count, int line, const char* argument, const char* function)
{
    CArgumentValidator::ValidateIsTrue(kFile, line, index >= 0, argument, function);
    CArgumentValidator::ValidateIsTrue(kFile, line, index < count, argument, function);
}

using Limits = std::span<const double>;

bool IsAbove(double value, double limit)
{
    return TvCompareDoubles(value, limit) > 0;
}

std::size_t Scan(Limits limits, double value)
{
    const auto isAbove = [value](double limit) { return IsAbove(value, limit); };
    const auto found = std::find_if_not(limits.begin(), limits.end(), isAbove);
    return static_cast<std::size_t>(found - limits.begin());
}

// Finds what a scan would, where limits rise. The scan stops at the first limit that is plainly not
// below the value, unless a lower one is equal within the tolerance. Then so are all in between:
// from limit to limit the difference shrinks faster than the tolerance.
std::size_t SearchByHalves(Limits limits, double value)
{
    const auto isBelow = [value](double limit) { return !(limit >= value); };
    const auto found = std::partition_point(limits.begin(), limits.end(), isBelow);
    auto place = static_cast<std::size_t>(found - limits.begin());
    while (place > 0 && !IsAbove(value, limits[place - 1]))
        --place;
    return place;
}

// NaN does not rise.
bool Rise(Limits limits)
{
    const auto doesNotRise = [](double limit, double next) { return !(limit < next); };
    return std::adjacent_find(limits.begin(), limits.end(), doesNotRise) == limits.end();
}

// Whether those limits are the same that a scan would read on its way to the place.
bool AreSameUpTo(std::size_t place, Limits limits, Limits others)
{
    const std::size_t count = std::min(place + 1, limits.size());
    return limits.size() == others.size() &&
           std::memcmp(limits.data(), others.data(), count * sizeof(double)) == 0;
}

// Searches a copy of the limits that is known to rise. Where it may be out of date it is held
// against them, which takes a fraction of what a scan does.
std::size_t Search(Limits limits, double value, std::vector<double>& rising, bool isCurrent)
{
    const std::size_t place = SearchByHalves(rising, value);
    if ((isCurrent && !rising.empty()) || AreSameUpTo(place, limits, rising))
        return place;
    if (!Rise(limits)) {
        rising.clear();
        return Scan(limits, value);
    }
    rising.assign(limits.begin(), limits.end());
    return SearchByHalves(rising, value);
}

// The first place whose limit is at or above the value; the last one has no limit. Rows and columns
// that a short cannot name cannot be looked up.
short LookUp(double value, const CArray<double, double>& array, std::vector<double>& rising,
             bool isCurrent)
{
    if (array.GetSize() < 2)
        return 0;
    const Limits consulted(array.GetData(), static_cast<std::size_t>(array.GetSize() - 1));
    const std::size_t place = Search(consulted, value, rising, isCurrent);
    if (place > std::numeric_limits<short>::max())
        AfxThrowInvalidArgException();
    return static_cast<short>(place);
}

// The selectors of a table count as conditions while they are calculated.
class SelectorsAsCondition {
public:
    SelectorsAsCondition() { CExprTree::StartIfCondition(); }
    ~SelectorsAsCondition() { CExprTree::EndIfCondition(); }

    SelectorsAsCondition(const SelectorsAsCondition&) = delete;
    SelectorsAsCondition& operator=(const SelectorsAsCondition&) = delete;
};

} // namespace

FormulaTableImpl::FormulaTableImpl(ICalculationSet* calcSet, int numRows, int numColumns)
    : m_CalcSet(Checked(calcSet, numRows, numColumns)),
      m_NumRows(numRows),
      m_NumColumns(numColumns),
      m_RowSelector(*calcSet),
      m_ColumnSelector(*calcSet)
{
    m_RowLimits.SetSize(numRows);
    m_ColumnLimits.SetSize(numColumns);
    m_Cells.SetSize(numRows * numColumns);
    // A lookup shall not allocate.
    m_RisingRowLimits.reserve(static_cast<std::size_t>(numRows - 1));
    m_RisingColumnLimits.reserve(static_cast<std::size_t>(numColumns - 1));
}

FormulaTableImpl::~FormulaTableImpl()
{
    for (int cell = 0; cell < m_Cells.GetSize(); ++cell)
        delete m_Cells[cell];
}

int FormulaTableImpl::Calculate(unsigned int& message, CScannedVariables* list)
{
    const Pass pass;
    if (!m_Validated) {
        static_cast<void>(IsValid(message, 0));
        if (!m_Validated)
            return 0;
    }
    if (AnswersFromValue(list))
        return 1;
    const UnderWay underWay(m_UnderWay);
    if (!underWay.IsFirst())
        return FailOnTable(MSG_FORMULA_INSIDE_ITSELF, message);
    if (underWay.IsTooDeep())
        return FailOnTable(MSG_GENERAL_FAILURE, message);
    // What was remembered may rest on the table's having answered from its value.
    std::optional<PassApart> apart;
    if (m_Calculated)
        apart.emplace();
    RestoreOnThrow former(message);
    ScanMark scanned(list);
    const int isCalculated = CalculateAfresh(message, list);
    scanned.End();
    former.End();
    return isCalculated;
}

int FormulaTableImpl::CalculateAfresh(unsigned int& message, CScannedVariables* list)
{
    if (!CalculateSelectors(message, list))
        return 0;

    const int index = GetRowIndex() * m_NumColumns + GetColIndex();
    CFormtblElem* const cell = m_Cells[index];
    if (!cell)
        return FailOnMissingCell(index, message);
    if (!cell->Calculate(message, list))
        return 0;
    const double value = cell->value();
    // Formulas may have been calculated from the former value in this pass.
    if (m_Calculated &&
        std::bit_cast<std::uint64_t>(value) != std::bit_cast<std::uint64_t>(m_Value))
        Pass::NoteChange();
    m_Value = value;
    m_Calculated = 1;
    ErrorTexts::NoteOnce(); // asked again, the table answers from its value
    if (list) {
        m_Scanned = 1;
        if (CExprTree::InIfCondition())
            m_ScannedInCondition = 1;
    }
    return 1;
}

void FormulaTableImpl::GetVariables(CScannedVariables& list, int all, int clear)
{
    const Pass pass;
    if (clear)
        m_CalcSet->ClearScannedFlags(1);
    if (!all) {
        unsigned int message = MSG_NONE;
        static_cast<void>(Calculate(message, &list));
        return;
    }
    StaticScan scan(list);
    if (scan.IsTooDeep() || !scan.Enters(static_cast<CObject*>(this)))
        return;
    ScanMark scanned(&list);
    m_RowSelector.GetVariables(list, all, 0);
    if (m_NumColumns > 1)
        m_ColumnSelector.GetVariables(list, all, 0);
    for (int index = 0; index < m_Cells.GetSize(); ++index)
        if (CFormtblElem* const cell = m_Cells[index])
            cell->GetVariables(list, all, 0);
    scanned.End();
}

void FormulaTableImpl::SetName(CString& name)
{
    Pass::NoteChange();
    m_Name = name;
    m_ValueType = ValueTypeOfName(m_Name.View());
}

double FormulaTableImpl::GetRowLimit(int row) const
{
    CheckIndex(row, m_NumRows, __LINE__, "row", "FormulaImpl::GetRowLimit");
    return m_RowLimits[row];
}

void FormulaTableImpl::SetRowLimit(int row, double limit)
{
    CheckIndex(row, m_NumRows, __LINE__, "row", "FormulaImpl::SetRowLimit");
    Pass::NoteChange();
    m_RisingRowLimits.clear();
    m_RowLimits[row] = limit;
}

double FormulaTableImpl::GetColumnLimit(int column) const
{
    CheckIndex(column, m_NumColumns, __LINE__, "column", "FormulaImpl::GetColumnLimit");
    return m_ColumnLimits[column];
}

void FormulaTableImpl::SetColumnLimit(int column, double limit)
{
    CheckIndex(column, m_NumColumns, __LINE__, "column", "FormulaImpl::SetColumnLimit");
    Pass::NoteChange();
    m_RisingColumnLimits.clear();
    m_ColumnLimits[column] = limit;
}

CFormtblElem* FormulaTableImpl::GetCell(int row, int column) const
{
    return m_Cells[CellIndex(row, column, __LINE__, "FormulaImpl::GetCell")];
}

void FormulaTableImpl::SetCell(int row, int column, CFormtblElem* cell)
{
    Pass::NoteChange();
    m_Cells[CellIndex(row, column, __LINE__, "FormulaImpl::SetCell")] = cell;
}

void FormulaTableImpl::SetRowSelector(const CFormtblElem& selector)
{
    m_RowSelector = selector;
}

void FormulaTableImpl::SetColumnSelector(const CFormtblElem& selector)
{
    m_ColumnSelector = selector;
}

void FormulaTableImpl::SetScanned(int scanned)
{
    Pass::NoteChange();
    m_Scanned = scanned;
}

void FormulaTableImpl::SetScannedInCondition(int inCondition)
{
    Pass::NoteChange();
    m_ScannedInCondition = inCondition;
}

void FormulaTableImpl::SetCalculated(int calculated)
{
    Pass::NoteChange();
    m_Calculated = calculated;
}

void FormulaTableImpl::SetValidated(int validated)
{
    Pass::NoteChange();
    m_Validated = validated;
}

// A derived class may write the limits and tell nobody.
bool FormulaTableImpl::AreLimitsOwn() const
{
    return typeid(*this) == typeid(FormulaTableImpl);
}

short FormulaTableImpl::GetRowIndex() const
{
    return LookUp(m_RowSelector.value(), m_RowLimits, m_RisingRowLimits, AreLimitsOwn());
}

short FormulaTableImpl::GetColIndex() const
{
    if (m_NumColumns == 1)
        return 0;
    return LookUp(m_ColumnSelector.value(), m_ColumnLimits, m_RisingColumnLimits, AreLimitsOwn());
}

// A scan passes again through a table that was only calculated, and a scan inside a condition
// through one that was scanned only outside.
bool FormulaTableImpl::AnswersFromValue(const CScannedVariables* list) const
{
    if (!m_Calculated)
        return false;
    return !list || (m_Scanned && (!CExprTree::InIfCondition() || m_ScannedInCondition));
}

int FormulaTableImpl::CalculateSelectors(unsigned int& message, CScannedVariables* list)
{
    const SelectorsAsCondition condition;
    if (!m_RowSelector.Calculate(message, list))
        return 0;
    return m_NumColumns == 1 || m_ColumnSelector.Calculate(message, list) ? 1 : 0;
}

int FormulaTableImpl::CellIndex(int row, int column, int line, const char* function) const
{
    CheckIndex(row, m_NumRows, line, "row", function);
    CheckIndex(column, m_NumColumns, line, "column", function);
    return row * m_NumColumns + column;
}
